#pragma once

#include <QtGlobal>

namespace paneforge {

// Gives the zone overlay's native window what Qt's flags cannot: the floating level, presence on
// every space and beside full-screen windows, no shadow, and clicks passed through.
// `nativeView` is QWidget::winId(), the NSView of the widget.
void configureOverlayNativeWindow(quintptr nativeView);
// The zone editor's window: floating and on every space like the overlay, but it takes the mouse
// and can become key.
void configureEditorNativeWindow(quintptr nativeView);

} // namespace paneforge
