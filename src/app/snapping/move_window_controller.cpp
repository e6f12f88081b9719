#include "app/snapping/move_window_controller.h"

#include "core/policies/display_cycle.h"

namespace paneforge {

void MoveWindowController::moveFrontmostWindowToNextDisplay() {
    WindowRef window = windows_.focusedWindow();
    if (!window) {
        window = windows_.windowUnderPoint(frames_.pointerLocation());
    }
    if (!window) {
        return;
    }
    const auto frame = windows_.frame(window);
    if (!frame) {
        return;
    }
    auto current = frames_.getDisplayId({frame->midX(), frame->midY()});
    if (!current) {
        current = frames_.getDisplayId(frame->origin());
    }
    if (!current) {
        return;
    }
    std::vector<DisplaySortItem> candidates;
    for (const DisplayId id : displays_.getActiveDisplays()) {
        if (const auto displayFrame = frames_.getFrame(id)) {
            candidates.push_back({id, *displayFrame});
        }
    }
    const auto target = DisplayCycle::nextId(*current, candidates);
    if (!target) {
        return;
    }
    const auto source = frames_.getVisibleFrame(*current);
    const auto destination = frames_.getVisibleFrame(*target);
    if (!source || !destination) {
        return;
    }
    windows_.setFrame(window, WindowDisplayMapper::mappedFrame(*frame, *source, *destination));
}

} // namespace paneforge
