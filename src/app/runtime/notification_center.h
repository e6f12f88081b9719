#pragma once

#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace paneforge {

// Names of the process-wide notifications.
namespace notifications {
inline const QString kHotkeyChanged = QStringLiteral("PaneforgeHotkeyChanged");
inline const QString kPreferencesHotkeyChanged =
    QStringLiteral("PaneforgePreferencesHotkeyChanged");
inline const QString kLayoutSelectorHotkeyChanged =
    QStringLiteral("PaneforgeLayoutSelectorHotkeyChanged");
inline const QString kMoveWindowHotkeyChanged = QStringLiteral("PaneforgeMoveWindowHotkeyChanged");
inline const QString kNextLayoutHotkeyChanged = QStringLiteral("PaneforgeNextLayoutHotkeyChanged");
inline const QString kPreviousLayoutHotkeyChanged =
    QStringLiteral("PaneforgePreviousLayoutHotkeyChanged");
inline const QString kConfigChanged = QStringLiteral("PaneforgeConfigChanged");
inline const QString kEventTapInstalled = QStringLiteral("PaneforgeEventTapInstalled");
inline const QString kListenEventGrantCleared = QStringLiteral("PaneforgeListenEventGrantCleared");
} // namespace notifications

// Named notifications without payload, delivered synchronously to every observer in the order
// they registered. Observation lasts as long as the returned token is kept.
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

    [[nodiscard]] ObservationToken observe(const QString& name, Callback callback);
    void post(const QString& name);

    int observerCount(const QString& name) const;

private:
    struct Registry;
    class Token;
    std::shared_ptr<Registry> registry_;
};

} // namespace paneforge
