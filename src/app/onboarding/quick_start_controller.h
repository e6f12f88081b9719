#pragma once

#include "app/ports/onboarding_views.h"
#include "app/runtime/weak_guard.h"

#include <functional>
#include <memory>

namespace paneforge {

// The quick start guide: three pages shown in one window made on first use. However the window
// is left, the guide counts as completed.
class QuickStartController {
public:
    using ViewMaker = std::function<std::unique_ptr<QuickStartView>(QuickStartActions)>;

    // onOpenZoneEditor: "Open Zone Editor" (the guide stays open); onCompleted: the window closed.
    QuickStartController(ViewMaker makeView, std::function<void()> onOpenZoneEditor,
                         std::function<void()> onCompleted);

    // From the first page, in front and with the keyboard.
    void show();

    bool isShown() const { return view_ && view_->isVisible(); }
    int currentIndex() const { return index_; }

    // What the window shows on page `index` (which must hold a page).
    static QuickStartChrome chrome(int index);

private:
    void showPage(int index);
    void goNext();
    void goBack();

    ViewMaker makeView_;
    std::function<void()> onOpenZoneEditor_;
    std::function<void()> onCompleted_;
    std::unique_ptr<QuickStartView> view_;
    int index_ = 0;
    WeakGuard<QuickStartController> guard_{this};
};

} // namespace paneforge
