#pragma once

#include "app/ports/grid_editor_view.h"
#include "app/ports/native_windows.h"
#include "ui/grid_editor_overlay_view.h"

#include <QRectF>
#include <functional>
#include <memory>

namespace paneforge {

// What an editor window needs to know about the platform it runs on.
struct GridEditorEnvironment {
    NativeWindows& nativeWindows;
    // The primary screen's geometry in Qt's global coordinates, read afresh for each window.
    std::function<QRectF()> primaryScreenGeometry;
};

// The zone editor's window: borderless, exactly over the edited visible frame, kept above the
// other windows, yet an ordinary managed window so that it can take the keyboard (on X11 an
// override-redirect window cannot be given the focus reliably).
class QtGridEditorWindow final : public GridEditorWindow {
public:
    QtGridEditorWindow(GridEditorModel& model, const GridEditorEnvironment& environment);
    ~QtGridEditorWindow() override;

    void show() override;
    void close() override;

    GridEditorOverlayView& view() { return *view_; }

private:
    NativeWindows& nativeWindows_;
    std::unique_ptr<GridEditorOverlayView> view_;
};

class QtGridEditorWindowFactory final : public GridEditorWindowFactory {
public:
    explicit QtGridEditorWindowFactory(GridEditorEnvironment environment)
        : environment_(std::move(environment)) {}
    std::unique_ptr<GridEditorWindow> makeGridEditorWindow(GridEditorModel& model) override {
        return std::make_unique<QtGridEditorWindow>(model, environment_);
    }

private:
    GridEditorEnvironment environment_;
};

} // namespace paneforge
