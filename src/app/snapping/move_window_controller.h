#pragma once

#include "app/ports/display_services.h"
#include "app/ports/window_service.h"

namespace paneforge {

// Moves the focused window (or, without one, the window under the pointer) to the next display in
// the spatial order, keeping its position and size proportional to the visible frames. Every
// missing piece ends the move silently; the window service logs the frame it sets.
class MoveWindowController {
public:
    MoveWindowController(WindowService& windows, DisplayFrameService& frames,
                         DisplayService& displays)
        : windows_(windows)
        , frames_(frames)
        , displays_(displays) {}

    void moveFrontmostWindowToNextDisplay();

private:
    WindowService& windows_;
    DisplayFrameService& frames_;
    DisplayService& displays_;
};

} // namespace paneforge
