#include "app/runtime/notification_center.h"

#include "core/config/name_table.h"

#include <algorithm>
#include <cstdint>

namespace paneforge {

namespace {
constexpr auto kNames = nameTable<Notification>({
    {Notification::HotkeyChanged, "PaneforgeHotkeyChanged"},
    {Notification::PreferencesHotkeyChanged, "PaneforgePreferencesHotkeyChanged"},
    {Notification::LayoutSelectorHotkeyChanged, "PaneforgeLayoutSelectorHotkeyChanged"},
    {Notification::MoveWindowHotkeyChanged, "PaneforgeMoveWindowHotkeyChanged"},
    {Notification::NextLayoutHotkeyChanged, "PaneforgeNextLayoutHotkeyChanged"},
    {Notification::PreviousLayoutHotkeyChanged, "PaneforgePreviousLayoutHotkeyChanged"},
    {Notification::ConfigChanged, "PaneforgeConfigChanged"},
    {Notification::EventTapInstalled, "PaneforgeEventTapInstalled"},
    {Notification::ListenEventGrantCleared, "PaneforgeListenEventGrantCleared"},
});
} // namespace

QString notificationName(Notification notification) {
    return kNames.nameOf(notification);
}

struct NotificationCenter::Registry {
    struct Observer {
        std::uint64_t id;
        std::shared_ptr<Callback> callback;
    };
    std::map<Notification, std::vector<Observer>> observers;
    std::uint64_t nextId = 1;
};

class NotificationCenter::Token final : public NotificationCenter::Observation {
public:
    Token(std::weak_ptr<NotificationCenter::Registry> registry, Notification name, std::uint64_t id)
        : registry_(std::move(registry))
        , name_(name)
        , id_(id) {}
    ~Token() override {
        if (auto registry = registry_.lock()) {
            auto& list = registry->observers[name_];
            std::erase_if(list, [this](const auto& observer) { return observer.id == id_; });
        }
    }

private:
    std::weak_ptr<NotificationCenter::Registry> registry_;
    Notification name_;
    std::uint64_t id_;
};

NotificationCenter::NotificationCenter()
    : registry_(std::make_shared<Registry>()) {}
NotificationCenter::~NotificationCenter() = default;

NotificationCenter::ObservationToken NotificationCenter::observe(Notification name,
                                                                 Callback callback) {
    const auto id = registry_->nextId++;
    registry_->observers[name].push_back({id, std::make_shared<Callback>(std::move(callback))});
    return std::make_unique<Token>(registry_, name, id);
}

void NotificationCenter::post(Notification name) {
    const auto it = registry_->observers.find(name);
    if (it == registry_->observers.end()) {
        return;
    }
    // Observers may register or drop observations while being notified: work on a snapshot and
    // skip those dropped meanwhile.
    const auto snapshot = it->second;
    for (const auto& observer : snapshot) {
        const auto& current = registry_->observers[name];
        const bool stillObserving = std::any_of(current.begin(), current.end(),
                                                [&](const auto& o) { return o.id == observer.id; });
        if (stillObserving) {
            (*observer.callback)();
        }
    }
}

int NotificationCenter::observerCount(Notification name) const {
    const auto it = registry_->observers.find(name);
    return it == registry_->observers.end() ? 0 : static_cast<int>(it->second.size());
}

} // namespace paneforge
