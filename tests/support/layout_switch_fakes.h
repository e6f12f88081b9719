#pragma once

// The windows of layout switching as plain records: what is on screen now, with the callbacks a
// click or a key would call. Dropping a window takes it off the record.

#include "app/ports/layout_switch_views.h"

#include <optional>

namespace fakes {

using namespace paneforge;

class LayoutSwitchScreen final : public LayoutSwitchViews {
public:
    struct HUD {
        QString name;
        DesktopRect frame;
        std::function<void()> dismiss;
    };
    struct Selector {
        DesktopRect frame;
        LayoutSelectorContent content;
        std::function<void(const QString&)> select;
        std::function<void()> dismiss;
    };
    std::optional<HUD> hud;
    std::optional<Selector> selector;
    int hudsShown = 0;

    std::unique_ptr<LayoutSwitchWindow> showHUD(const QString& name, const DesktopRect& frame,
                                                std::function<void()> dismiss) override {
        ++hudsShown;
        hud = HUD{name, frame, std::move(dismiss)};
        return std::make_unique<Window>([this] { hud.reset(); });
    }
    std::unique_ptr<LayoutSwitchWindow> showSelector(const DesktopRect& frame,
                                                     LayoutSelectorContent content,
                                                     std::function<void(const QString&)> select,
                                                     std::function<void()> dismiss) override {
        selector = Selector{frame, std::move(content), std::move(select), std::move(dismiss)};
        return std::make_unique<Window>([this] { selector.reset(); });
    }
    // What a click on a card does (the callback outlives the window it closes).
    void pick(const QString& id) {
        const auto select = selector->select;
        select(id);
    }

private:
    class Window final : public LayoutSwitchWindow {
    public:
        explicit Window(std::function<void()> closed)
            : closed_(std::move(closed)) {}
        ~Window() override { closed_(); }

    private:
        std::function<void()> closed_;
    };
};

} // namespace fakes
