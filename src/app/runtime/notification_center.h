#pragma once

#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace paneforge {

// The process-wide notifications. Their names are the texts other processes and the diagnostic
// log know them by.
enum class Notification {
    HotkeyChanged,
    PreferencesHotkeyChanged,
    LayoutSelectorHotkeyChanged,
    MoveWindowHotkeyChanged,
    NextLayoutHotkeyChanged,
    PreviousLayoutHotkeyChanged,
    ConfigChanged,
    EventTapInstalled,
    ListenEventGrantCleared,
};

// "PaneforgeConfigChanged" and the others.
QString notificationName(Notification notification);

namespace notifications {
inline constexpr Notification kHotkeyChanged = Notification::HotkeyChanged;
inline constexpr Notification kPreferencesHotkeyChanged = Notification::PreferencesHotkeyChanged;
inline constexpr Notification kLayoutSelectorHotkeyChanged =
    Notification::LayoutSelectorHotkeyChanged;
inline constexpr Notification kMoveWindowHotkeyChanged = Notification::MoveWindowHotkeyChanged;
inline constexpr Notification kNextLayoutHotkeyChanged = Notification::NextLayoutHotkeyChanged;
inline constexpr Notification kPreviousLayoutHotkeyChanged =
    Notification::PreviousLayoutHotkeyChanged;
inline constexpr Notification kConfigChanged = Notification::ConfigChanged;
inline constexpr Notification kEventTapInstalled = Notification::EventTapInstalled;
inline constexpr Notification kListenEventGrantCleared = Notification::ListenEventGrantCleared;
} // namespace notifications

// Notifications without payload, delivered synchronously to every observer in the order they
// registered. Observation lasts as long as the returned token is kept.
class NotificationCenter {
public:
    using Callback = std::function<void()>;

    class Observation {
    public:
        virtual ~Observation() = default;
    };
    using ObservationToken = std::unique_ptr<Observation>;

    NotificationCenter();
    ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    [[nodiscard]] ObservationToken observe(Notification name, Callback callback);
    void post(Notification name);

    int observerCount(Notification name) const;

private:
    struct Registry;
    class Token;
    std::shared_ptr<Registry> registry_;
};

} // namespace paneforge
