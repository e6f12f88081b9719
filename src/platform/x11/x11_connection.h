#pragma once

#include "platform/x11/xcb_client.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>
#include <xcb/xcb.h>

namespace paneforge {

// Paneforge's own connection to the X server (separate from Qt's), with the few property and
// message helpers the window and display services share. Main thread only.
class X11Connection {
public:
    // Connects to $DISPLAY; isValid() tells whether that worked.
    X11Connection();

    bool isValid() const { return client_.isValid(); }
    xcb_connection_t* raw() const { return client_.get(); }
    xcb_window_t root() const { return client_.root(); }
    int screenNumber() const { return client_.screenNumber(); }
    int rootWidth() const;
    int rootHeight() const;

    xcb_atom_t atom(const char* name);
    QString atomName(xcb_atom_t atom);

    std::vector<std::uint32_t> cardinals(xcb_window_t window, const char* property,
                                         xcb_atom_t type = XCB_ATOM_CARDINAL);
    std::optional<xcb_window_t> windowProperty(xcb_window_t window, const char* property);
    std::vector<xcb_window_t> windowList(xcb_window_t window, const char* property);
    std::vector<xcb_atom_t> atomList(xcb_window_t window, const char* property);
    QByteArray rawProperty(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
                           std::uint32_t maxLength = 1 << 16);
    std::optional<QString> utf8Property(xcb_window_t window, const char* property);
    bool hasProperty(xcb_window_t window, const char* property);

    // A 32-bit client message to the root window, as EWMH asks of pagers and tools.
    void sendRootMessage(xcb_window_t window, const char* type, const std::uint32_t (&data)[5]);
    void flush();

private:
    XcbClient client_;
    QHash<QByteArray, xcb_atom_t> atoms_;
};

} // namespace paneforge
