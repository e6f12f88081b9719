#include "app/onboarding/quick_start_controller.h"

#include "core/policies/quick_start_guide.h"

namespace paneforge {

QuickStartController::QuickStartController(ViewMaker makeView,
                                           std::function<void()> onOpenZoneEditor,
                                           std::function<void()> onCompleted)
    : makeView_(std::move(makeView))
    , onOpenZoneEditor_(std::move(onOpenZoneEditor))
    , onCompleted_(std::move(onCompleted)) {}

QuickStartChrome QuickStartController::chrome(int index) {
    const auto page = QuickStartGuide::page(index).value();
    return {page.title,
            page.body,
            QStringLiteral("%1 of %2").arg(index + 1).arg(QuickStartGuide::pages().size()),
            page.primaryActionTitle,
            QuickStartGuide::previousIndex(index).has_value(),
            QuickStartGuide::isLast(index) ? QStringLiteral("Done") : QStringLiteral("Next")};
}

void QuickStartController::show() {
    if (!view_) {
        QuickStartActions actions;
        actions.next = guard_.wrap([](QuickStartController& self) { self.goNext(); });
        actions.back = guard_.wrap([](QuickStartController& self) { self.goBack(); });
        actions.skip = guard_.wrap([](QuickStartController& self) { self.view_->dismiss(); });
        actions.primaryAction = guard_.wrap([](QuickStartController& self) {
            if (self.onOpenZoneEditor_) {
                self.onOpenZoneEditor_();
            }
        });
        actions.closed = guard_.wrap([](QuickStartController& self) {
            if (self.onCompleted_) {
                self.onCompleted_();
            }
        });
        view_ = makeView_(std::move(actions));
    }
    showPage(0);
    view_->present();
}

void QuickStartController::showPage(int index) {
    index_ = index;
    view_->showPage(chrome(index));
}

void QuickStartController::goNext() {
    if (const auto next = QuickStartGuide::nextIndex(index_)) {
        showPage(*next);
    } else {
        view_->dismiss();
    }
}

void QuickStartController::goBack() {
    if (const auto previous = QuickStartGuide::previousIndex(index_)) {
        showPage(*previous);
    }
}

} // namespace paneforge
