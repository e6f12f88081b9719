#pragma once

#include "ui/snap_overlay_model.h"

#include <QColor>
#include <QWidget>

namespace paneforge {

// Paints a SnapOverlayModel: outlines first, then the chosen zones' fill.
class SnapOverlayView : public QWidget {
public:
    explicit SnapOverlayView(QWidget* parent = nullptr);

    void setModel(SnapOverlayModel model);
    const SnapOverlayModel& model() const { return model_; }

    // The platform's accent colour (highlight where Qt has no accent role).
    static QColor accentColor(const QPalette& palette);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SnapOverlayModel model_;
};

} // namespace paneforge
