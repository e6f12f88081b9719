#pragma once

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace paneforge {

// What libxcb hands out (replies, errors, events) is allocated with malloc and released with free.
struct XcbFree {
    void operator()(void* p) const noexcept { std::free(p); }
};
template <typename T> using XcbOwned = std::unique_ptr<T, XcbFree>;

// Takes over a reply, error or event from libxcb; null stays null.
template <typename T> XcbOwned<T> owned(T* raw) noexcept {
    return XcbOwned<T>(raw);
}

// One client connection to an X server, closed when it goes (the server then drops whatever this
// client held: grabs, event selections). Each service that reads events of its own holds one, so
// that no service drains another's queue.
class XcbClient {
public:
    XcbClient() = default;
    // Connects to `displayName`, or to $DISPLAY when none; isValid() tells whether that worked.
    explicit XcbClient(const char* displayName);

    // Connected, and the connection has not failed since.
    bool isValid() const { return connection_ && !xcb_connection_has_error(connection_.get()); }
    xcb_connection_t* get() const { return connection_.get(); }
    int screenNumber() const { return screenNumber_; }
    // The screen the display name chose, or none.
    const xcb_screen_t* screen() const { return screen_; }
    xcb_window_t root() const { return screen_ ? screen_->root : xcb_window_t{XCB_NONE}; }

private:
    struct Disconnect {
        void operator()(xcb_connection_t* c) const noexcept { xcb_disconnect(c); }
    };
    std::unique_ptr<xcb_connection_t, Disconnect> connection_;
    const xcb_screen_t* screen_ = nullptr;
    int screenNumber_ = 0;
};

} // namespace paneforge
