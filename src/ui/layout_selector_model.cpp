#include "ui/layout_selector_model.h"

#include <algorithm>

namespace paneforge {

LayoutSelectorModel::LayoutSelectorModel(std::vector<LayoutSelectorItem> items)
    : items_(std::move(items)) {
    std::vector<bool> isActive;
    isActive.reserve(items_.size());
    for (const LayoutSelectorItem& item : items_) {
        isActive.push_back(item.isActive);
    }
    focused_ = LayoutSelectorFocus::initialIndex(isActive);
}

double LayoutSelectorModel::panelWidth(int count) {
    const int n = std::max(count, 1);
    return n * cardWidth + 2 * inset + (n - 1) * cardSpacing;
}

QRectF LayoutSelectorModel::cardFrame(int index) {
    return {index * (cardWidth + cardSpacing) + inset, inset, cardWidth, cardHeight};
}

int LayoutSelectorModel::cardAt(const QPointF& point) const {
    for (int i = 0; i < count(); ++i) {
        if (cardFrame(i).contains(point)) {
            return i;
        }
    }
    return -1;
}

LayoutSelectorModel::KeyAction LayoutSelectorModel::handleKey(int key,
                                                              Qt::KeyboardModifiers modifiers) {
    const auto move = [this](bool forward) {
        focused_ = forward ? LayoutSelectorFocus::nextIndex(focused_, count())
                           : LayoutSelectorFocus::previousIndex(focused_, count());
        return KeyAction::FocusMoved;
    };
    switch (key) {
    case Qt::Key_Escape:
        return KeyAction::Dismiss;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return count() > 0 ? KeyAction::Select : KeyAction::Ignored;
    case Qt::Key_Tab:
        return move(!(modifiers & Qt::ShiftModifier));
    case Qt::Key_Backtab:
    case Qt::Key_Left:
    case Qt::Key_Up:
        return move(false);
    case Qt::Key_Right:
    case Qt::Key_Down:
        return move(true);
    default:
        return KeyAction::Ignored;
    }
}

} // namespace paneforge
