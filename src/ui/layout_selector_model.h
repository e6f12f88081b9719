#pragma once

#include "core/layouts/layout_cycle.h"

#include <QRectF>
#include <QSizeF>
#include <Qt>
#include <vector>

namespace paneforge {

// The selector's strip of cards and its keyboard: where each card goes, which card has the focus,
// and what a key press does. The widget forwards its events here and paints what this says.
class LayoutSelectorModel {
public:
    enum class KeyAction { Ignored, FocusMoved, Select, Dismiss };

    static constexpr double cardWidth = 132;
    static constexpr double cardHeight = 100;
    static constexpr double cardSpacing = 8;
    static constexpr double inset = 16;
    static constexpr double panelHeight = 132;

    explicit LayoutSelectorModel(std::vector<LayoutSelectorItem> items);

    // The panel for `count` cards (at least room for one).
    static double panelWidth(int count);
    static QSizeF panelSize(int count) { return {panelWidth(count), panelHeight}; }
    // Card `index` in the panel's coordinates (top-left origin).
    static QRectF cardFrame(int index);

    const std::vector<LayoutSelectorItem>& items() const { return items_; }
    int count() const { return int(items_.size()); }
    int focusedIndex() const { return focused_; }
    // The card under a point of the panel, or -1.
    int cardAt(const QPointF& point) const;

    // Arrows and Tab move the focus with wrap-around, Return and keypad Enter pick the focused
    // card, Escape dismisses; other keys are not the selector's.
    KeyAction handleKey(int key, Qt::KeyboardModifiers modifiers);

private:
    std::vector<LayoutSelectorItem> items_;
    int focused_ = 0;
};

} // namespace paneforge
