#pragma once

#include "app/ports/native_windows.h"

class QWidget;

namespace paneforge {

// Brings one of Paneforge's windows to the user: centred on the display under the pointer (where
// the eye is), in front, with the keyboard. An agent that the user never clicked must ask the
// window system for that explicitly.
void presentWindow(QWidget& window, NativeWindows& nativeWindows);

} // namespace paneforge
