#pragma once

#include "app/editor/grid_editor_model.h"

namespace paneforge {

// The zone editor's window over one display. It shows what its model says and forwards its
// events to it; closing it (or dropping it) never saves anything.
class GridEditorWindow {
public:
    virtual ~GridEditorWindow() = default;
    // In front of every other window, with the keyboard in the name field.
    virtual void show() = 0;
    virtual void close() = 0;
};

// Builds editor windows, each over the visible frame of its model. The model outlives the window.
class GridEditorWindowFactory {
public:
    virtual ~GridEditorWindowFactory() = default;
    virtual std::unique_ptr<GridEditorWindow> makeGridEditorWindow(GridEditorModel& model) = 0;
};

} // namespace paneforge
