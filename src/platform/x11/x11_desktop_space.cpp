#include "platform/x11/x11_desktop_space.h"

#include <QGuiApplication>
#include <QScreen>

namespace paneforge {

QRect X11DesktopSpace::primaryGeometry() {
    const QScreen* primary = QGuiApplication::primaryScreen();
    return primary ? primary->geometry() : QRect();
}

double X11DesktopSpace::primaryMaxY() {
    return primaryGeometry().height();
}

DesktopPoint X11DesktopSpace::toDesktop(QPointF rootPoint) {
    const QRect p = primaryGeometry();
    return {rootPoint.x() - p.x(), p.y() + p.height() - rootPoint.y()};
}

QPointF X11DesktopSpace::toRoot(DesktopPoint point) {
    const QRect p = primaryGeometry();
    return {point.x + p.x(), p.y() + p.height() - point.y};
}

DesktopRect X11DesktopSpace::toDesktop(const QRectF& r) {
    const QRect p = primaryGeometry();
    return DesktopRect(r.x() - p.x(), p.y() + p.height() - (r.y() + r.height()), r.width(),
                       r.height());
}

QRectF X11DesktopSpace::toRoot(const DesktopRect& rect) {
    const QRect p = primaryGeometry();
    const DesktopRect s = rect.standardized();
    return QRectF(s.minX() + p.x(), p.y() + p.height() - s.maxY(), s.width(), s.height());
}

} // namespace paneforge
