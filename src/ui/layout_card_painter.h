#pragma once

#include "core/layouts/grid_definition.h"

#include <QColor>
#include <QRectF>
#include <QString>

class QPainter;
class QPalette;

namespace paneforge {

// The colours of a layout card, from the platform's palette so that cards read on light and dark
// themes alike.
struct LayoutCardColors {
    QColor accent;
    QColor focusRing;
    QColor separator;
    QColor label;
    QColor thumbnailBackground;
    QColor cardBackground;

    static LayoutCardColors from(const QPalette& palette);
};

struct LayoutCardState {
    bool isActive = false;
    bool isFocused = false;
};

// One layout card: a thumbnail of the layout's zones (built like real snapping builds them) above
// its name, with a border that marks the active and the focused card. Shared by every window that
// shows layouts as cards.
namespace LayoutCardPainter {
// Where the thumbnail and the name go inside a card of `size` whose top-left corner is at 0,0.
QRectF thumbnailRect(const QSizeF& size);
QRectF nameRect(const QSizeF& size);
void paint(QPainter& painter, const QRectF& card, const GridDefinition& grid, const QString& name,
           LayoutCardState state, const LayoutCardColors& colors);
} // namespace LayoutCardPainter

} // namespace paneforge
