#pragma once

#include "app/editor/grid_editor_model.h"

#include <QColor>
#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace paneforge {

// The zone editor's window content, covering the edited display's visible frame: the backdrop,
// the zones with their sizes, the split lines, and a header panel with the name field, the
// layout popup, the presets and the buttons. Every event goes to the model; every paint shows
// what the model says.
class GridEditorOverlayView final : public QWidget {
public:
    // `translucent`: whether the desktop may show through (a compositor runs); otherwise the
    // backdrop is opaque.
    GridEditorOverlayView(GridEditorModel& model, bool translucent);
    ~GridEditorOverlayView() override;

    GridEditorModel& model() { return model_; }
    QLineEdit& nameField() { return *nameField_; }
    QComboBox& layoutPopup() { return *layoutPopup_; }
    QPushButton& presetButton() { return *presetButton_; }
    QPushButton& okButton() { return *okButton_; }
    QPushButton& cancelButton() { return *cancelButton_; }
    QPushButton& saveAsNewButton() { return *saveAsNewButton_; }
    QPushButton& deleteButton() { return *deleteButton_; }
    QLabel& problemLabel() { return *problemLabel_; }
    QWidget& panel() { return *panel_; }

    // Width and colour of each line style; the pending line is drawn Active.
    struct LineStyle {
        double width;
        QColor color;
    };
    static LineStyle lineStyle(EditorLineStyle style);
    static QString problemText(DisplayLayoutError problem, const QString& name);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildPanel();
    void placePanel();
    void modelChanged(GridEditorModel::Change change);
    void loadLayoutControls();
    void refreshButtons();
    void refreshProblem();
    void updateCursor();
    std::optional<NormalizedPoint> normalized(const QPointF& position) const;
    // A line's position in the view.
    double linePosition(GridLineOrientation orientation, double value) const;

    GridEditorModel& model_;
    bool translucent_;
    QWidget* panel_ = nullptr;
    QLineEdit* nameField_ = nullptr;
    QComboBox* layoutPopup_ = nullptr;
    QPushButton* presetButton_ = nullptr;
    QPushButton* okButton_ = nullptr;
    QPushButton* cancelButton_ = nullptr;
    QPushButton* saveAsNewButton_ = nullptr;
    QPushButton* deleteButton_ = nullptr;
    QLabel* problemLabel_ = nullptr;
};

} // namespace paneforge
