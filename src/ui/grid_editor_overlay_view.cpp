#include "ui/grid_editor_overlay_view.h"

#include "core/input/hotkey_definition.h"
#include "core/layouts/layout_thumbnail_renderer.h"
#include "core/policies/platform_words.h"

#include <QComboBox>
#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <QPushButton>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace paneforge {

namespace {

const QColor kSystemBlue(10, 132, 255);
const QColor kSystemRed(255, 69, 58);
// Without a compositor nothing can show through: a dark, calm backdrop that the lines and labels
// read well on.
const QColor kOpaqueBackdrop(28, 33, 41);
const QColor kTranslucentBackdrop(8, 12, 18, 150);
constexpr double kHoverBandWidth = 14.0;
constexpr int kPanelWidth = 640;
constexpr int kPanelTop = 24;

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(float(alpha));
    return color;
}

const char* const kPanelStyle = R"(
QFrame#editorPanel {
    background: rgb(30, 35, 44);
    border: 1px solid rgba(255, 255, 255, 46);
    border-radius: 12px;
}
QLabel { color: rgba(255, 255, 255, 210); font-size: 13px; }
QLabel#hint { color: rgba(255, 255, 255, 150); font-size: 12px; }
QLabel#problem { color: #ff6b61; }
QLineEdit {
    background: rgba(255, 255, 255, 22); color: white; font-size: 13px;
    border: 1px solid rgba(255, 255, 255, 64); border-radius: 6px; padding: 4px 8px;
    selection-background-color: #0a84ff; selection-color: white;
}
QLineEdit:focus { border: 1px solid #0a84ff; }
QComboBox, QPushButton {
    background: rgba(255, 255, 255, 30); color: white; font-size: 13px;
    border: 1px solid rgba(255, 255, 255, 56); border-radius: 6px; padding: 4px 12px;
}
QComboBox:hover, QPushButton:hover { background: rgba(255, 255, 255, 48); }
QComboBox { padding-right: 24px; }
QPushButton#presets { padding-right: 28px; }
QPushButton::menu-indicator {
    subcontrol-origin: padding; subcontrol-position: right center; right: 10px;
}
QComboBox QAbstractItemView, QMenu {
    background: #2b313b; color: white; border: 1px solid rgba(255, 255, 255, 46);
    selection-background-color: #0a84ff; font-size: 13px;
}
QMenu::item { padding: 5px 18px 5px 8px; }
QMenu::item:selected { background: #0a84ff; }
QPushButton:disabled { color: rgba(255, 255, 255, 80); background: rgba(255, 255, 255, 12); }
QPushButton#ok { background: #0a84ff; border-color: #0a84ff; font-weight: 600; }
QPushButton#ok:hover { background: #3399ff; }
QPushButton#ok:disabled {
    background: rgba(10, 132, 255, 60); border-color: rgba(10, 132, 255, 60);
    color: rgba(255, 255, 255, 110);
}
QPushButton#delete { color: #ff8a80; }
QPushButton#delete:disabled { color: rgba(255, 138, 128, 70); }
)";

QIcon presetIcon(const LayoutPreset& preset) {
    const QSize size(30, 20);
    QPixmap pixmap(size * 2);
    pixmap.setDevicePixelRatio(2.0);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 200));
    const GridDefinition grid(QString(), QString(), preset.verticalSplits, preset.horizontalSplits);
    const DesktopRect bounds(1, 1, size.width() - 2, size.height() - 2);
    for (const DesktopRect& cell : LayoutThumbnailRenderer::cellFrames(grid, bounds, 2.0)) {
        // The renderer's y goes up; the pixmap's down.
        painter.drawRoundedRect(
            QRectF(cell.minX(), size.height() - cell.maxY(), cell.width(), cell.height()), 1.5,
            1.5);
    }
    return QIcon(pixmap);
}

} // namespace

GridEditorOverlayView::GridEditorOverlayView(GridEditorModel& model, bool translucent)
    : model_(model)
    , translucent_(translucent) {
    setWindowTitle(QStringLiteral("Paneforge Zone Editor"));
    setMouseTracking(true);
    setFocusPolicy(Qt::NoFocus);
    if (translucent_) {
        setAttribute(Qt::WA_TranslucentBackground);
    }
    buildPanel();
    loadLayoutControls();
    refreshProblem();
    updateCursor();
    model_.setObserver([this](GridEditorModel::Change change) { modelChanged(change); });
}

GridEditorOverlayView::~GridEditorOverlayView() {
    model_.setObserver(nullptr);
}

void GridEditorOverlayView::buildPanel() {
    auto* panel = new QFrame(this);
    panel_ = panel;
    panel->setObjectName(QStringLiteral("editorPanel"));
    panel->setStyleSheet(QString::fromLatin1(kPanelStyle));
    // The panel is dark whatever the desktop's theme: arrows and other parts the style draws
    // from the palette follow it.
    QPalette dark = panel->palette();
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::ButtonText, QPalette::Text, QPalette::BrightText}) {
        dark.setColor(role, Qt::white);
    }
    for (const QPalette::ColorRole role : {QPalette::Window, QPalette::Button, QPalette::Base}) {
        dark.setColor(role, QColor(43, 49, 59));
    }
    panel->setPalette(dark);
    // Clicks on the panel are the panel's, never a new line behind it.
    panel->setAttribute(Qt::WA_NoMousePropagation);
    panel->setCursor(Qt::ArrowCursor);
    panel->installEventFilter(this);

    nameField_ = new QLineEdit(panel);
    nameField_->setPlaceholderText(QStringLiteral("Layout name"));
    nameField_->setMinimumWidth(160);
    connect(nameField_, &QLineEdit::textEdited, this, [this](const QString& text) {
        model_.setName(text);
        refreshButtons();
    });

    layoutPopup_ = new QComboBox(panel);
    layoutPopup_->setMinimumWidth(120);
    layoutPopup_->setToolTip(QStringLiteral("Edit another layout of this display"));
    connect(layoutPopup_, &QComboBox::activated, this,
            [this](int index) { model_.selectLayout(layoutPopup_->itemData(index).toString()); });

    presetButton_ = new QPushButton(QStringLiteral("Presets"), panel);
    presetButton_->setObjectName(QStringLiteral("presets"));
    presetButton_->setToolTip(QStringLiteral("Start from a ready-made arrangement"));
    auto* presets = new QMenu(presetButton_);
    for (const LayoutPreset& preset : LayoutPresetCatalog::all()) {
        const QAction* action = presets->addAction(presetIcon(preset), preset.title);
        connect(action, &QAction::triggered, this,
                [this, id = preset.id] { model_.applyPreset(id); });
    }
    presetButton_->setMenu(presets);

    deleteButton_ = new QPushButton(QStringLiteral("Delete"), panel);
    deleteButton_->setObjectName(QStringLiteral("delete"));
    cancelButton_ = new QPushButton(QStringLiteral("Cancel"), panel);
    saveAsNewButton_ = new QPushButton(QStringLiteral("Save as new"), panel);
    okButton_ = new QPushButton(QStringLiteral("OK"), panel);
    okButton_->setObjectName(QStringLiteral("ok"));
    for (QPushButton* button : {deleteButton_, cancelButton_, saveAsNewButton_, okButton_}) {
        // Return and Escape belong to the editor, whichever control has the keyboard.
        button->setAutoDefault(false);
        button->setFocusPolicy(Qt::NoFocus);
    }
    presetButton_->setFocusPolicy(Qt::NoFocus);
    connect(deleteButton_, &QPushButton::clicked, this, [this] { model_.deleteLayout(); });
    connect(cancelButton_, &QPushButton::clicked, this, [this] { model_.cancel(); });
    connect(saveAsNewButton_, &QPushButton::clicked, this, [this] { model_.saveAsNew(); });
    connect(okButton_, &QPushButton::clicked, this, [this] { model_.ok(); });

    problemLabel_ = new QLabel(panel);
    problemLabel_->setObjectName(QStringLiteral("problem"));
    problemLabel_->setWordWrap(true);

    // Keys and modifiers in the platform's own words (Escape 53, Return 36).
    const PlatformWords words = PlatformWords::current();
    auto* hint = new QLabel(
        QStringLiteral("Click to add a line (%1: vertical) \u00B7 Drag a line to move it\n"
                       "Right-click a line to remove it \u00B7 %2 cancels \u00B7 %3 saves")
            .arg(words.modifierName(modifier_bits::kShift),
                 words.fixedKeyName(53).value_or(QString()),
                 words.fixedKeyName(36).value_or(QString())),
        panel);
    hint->setObjectName(QStringLiteral("hint"));
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignCenter);

    auto* top = new QHBoxLayout;
    top->setSpacing(8);
    top->addWidget(nameField_, 1);
    top->addWidget(layoutPopup_);
    top->addWidget(presetButton_);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addWidget(deleteButton_);
    buttons->addStretch(1);
    buttons->addWidget(cancelButton_);
    buttons->addWidget(saveAsNewButton_);
    buttons->addWidget(okButton_);

    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(16, 14, 16, 12);
    layout->setSpacing(10);
    layout->addLayout(top);
    layout->addLayout(buttons);
    layout->addWidget(problemLabel_);
    layout->addWidget(hint);
}

void GridEditorOverlayView::placePanel() {
    const int width = std::min(kPanelWidth, std::max(0, this->width() - 32));
    panel_->setFixedWidth(width);
    panel_->adjustSize();
    panel_->move((this->width() - width) / 2, kPanelTop);
}

void GridEditorOverlayView::resizeEvent(QResizeEvent*) {
    placePanel();
}

// The model's news

void GridEditorOverlayView::modelChanged(GridEditorModel::Change change) {
    switch (change) {
    case GridEditorModel::Change::Drawing:
        update();
        updateCursor();
        break;
    case GridEditorModel::Change::Layout:
        loadLayoutControls();
        break;
    case GridEditorModel::Change::Problem:
        refreshProblem();
        break;
    }
}

void GridEditorOverlayView::loadLayoutControls() {
    if (nameField_->text() != model_.name()) {
        nameField_->setText(model_.name());
    }
    {
        const QSignalBlocker blocker(layoutPopup_);
        layoutPopup_->clear();
        for (const GridDefinition& layout : model_.layouts()) {
            layoutPopup_->addItem(layout.displayName(), layout.id());
        }
        layoutPopup_->setCurrentIndex(layoutPopup_->findData(model_.grid().id()));
    }
    refreshButtons();
}

void GridEditorOverlayView::refreshButtons() {
    okButton_->setEnabled(model_.canSave());
    saveAsNewButton_->setEnabled(model_.canSave());
    deleteButton_->setEnabled(model_.canDelete());
}

QString GridEditorOverlayView::problemText(DisplayLayoutError problem, const QString& name) {
    switch (problem) {
    case DisplayLayoutError::DuplicateName:
        return QStringLiteral("This display already has a layout called \u201C%1\u201D. Choose "
                              "another name.")
            .arg(name);
    case DisplayLayoutError::EmptyName:
        return QStringLiteral("Give the layout a name first.");
    case DisplayLayoutError::LayoutNotOwned:
        return QStringLiteral("That layout is no longer stored for this display.");
    case DisplayLayoutError::LastLayout:
        return QStringLiteral("A display keeps at least one layout.");
    }
    return {};
}

void GridEditorOverlayView::refreshProblem() {
    const auto problem = model_.problem();
    problemLabel_->setVisible(problem.has_value());
    if (problem) {
        problemLabel_->setText(problemText(*problem, model_.name().trimmed()));
    }
    placePanel();
}

void GridEditorOverlayView::updateCursor() {
    std::optional<GridLineOrientation> orientation;
    if (model_.pendingSplit()) {
        orientation = model_.pendingSplit()->orientation;
    } else if (model_.hoveredSplit()) {
        orientation = model_.hoveredSplit()->orientation;
    }
    if (!orientation) {
        setCursor(Qt::CrossCursor);
    } else {
        // A vertical line moves sideways, a horizontal one up and down.
        setCursor(*orientation == GridLineOrientation::Vertical ? Qt::SplitHCursor
                                                                : Qt::SplitVCursor);
    }
}

// Events

std::optional<NormalizedPoint> GridEditorOverlayView::normalized(const QPointF& position) const {
    return GridEditorModel::normalize(position.x(), position.y(), width(), height());
}

void GridEditorOverlayView::mousePressEvent(QMouseEvent* event) {
    const auto point = normalized(event->position());
    if (event->button() == Qt::LeftButton) {
        model_.primaryPressed(point, event->modifiers().testFlag(Qt::ShiftModifier));
    } else if (event->button() == Qt::RightButton) {
        model_.secondaryClicked(point);
    }
}

void GridEditorOverlayView::mouseMoveEvent(QMouseEvent* event) {
    const auto point = normalized(event->position());
    if (event->buttons().testFlag(Qt::LeftButton)) {
        model_.primaryDragged(point, event->modifiers().testFlag(Qt::ShiftModifier));
    } else {
        model_.pointerMoved(point);
    }
}

void GridEditorOverlayView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) {
        model_.primaryReleased(normalized(event->position()));
    }
}

void GridEditorOverlayView::keyPressEvent(QKeyEvent* event) {
    EditorKey key = EditorKey::Other;
    switch (event->key()) {
    case Qt::Key_Escape:
        key = EditorKey::Escape;
        break;
    case Qt::Key_Return:
        key = EditorKey::Return;
        break;
    case Qt::Key_Enter:
        key = EditorKey::KeypadEnter;
        break;
    case Qt::Key_Shift:
        model_.shiftChanged(true);
        return;
    default:
        break;
    }
    if (!model_.keyDown(key)) {
        QWidget::keyPressEvent(event);
    }
}

void GridEditorOverlayView::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Shift) {
        model_.shiftChanged(false);
        return;
    }
    QWidget::keyReleaseEvent(event);
}

void GridEditorOverlayView::leaveEvent(QEvent*) {
    model_.pointerMoved(std::nullopt);
}

bool GridEditorOverlayView::eventFilter(QObject* watched, QEvent* event) {
    // Over the panel the pointer is off the lines.
    if (watched == panel_ && event->type() == QEvent::Enter) {
        model_.pointerMoved(std::nullopt);
    }
    return QWidget::eventFilter(watched, event);
}

// Painting

GridEditorOverlayView::LineStyle GridEditorOverlayView::lineStyle(EditorLineStyle style) {
    switch (style) {
    case EditorLineStyle::Normal:
        return {2.0, withAlpha(Qt::white, 0.85)};
    case EditorLineStyle::Dim:
        return {2.0, withAlpha(Qt::white, 0.4)};
    case EditorLineStyle::Hover:
        return {7.0, withAlpha(kSystemBlue, 0.95)};
    case EditorLineStyle::Flash:
        return {5.0, withAlpha(kSystemRed, 0.95)};
    case EditorLineStyle::Active:
        return {6.0, withAlpha(kSystemBlue, 0.95)};
    }
    return {2.0, Qt::white};
}

double GridEditorOverlayView::linePosition(GridLineOrientation orientation, double value) const {
    return orientation == GridLineOrientation::Vertical ? width() * value : height() * value;
}

void GridEditorOverlayView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), translucent_ ? kTranslucentBackdrop : kOpaqueBackdrop);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    painter.setRenderHint(QPainter::Antialiasing);

    // Zones as windows will get them, with their size in points.
    const DesktopRect& frame = model_.visibleFrame();
    const double scaleX = frame.width() > 0 ? width() / frame.width() : 1.0;
    const double scaleY = frame.height() > 0 ? height() / frame.height() : 1.0;
    QFont labelFont = font();
    labelFont.setPixelSize(15);
    labelFont.setWeight(QFont::DemiBold);
    painter.setFont(labelFont);
    const QFontMetricsF metrics(labelFont);
    for (const EditorZone& zone : model_.zones()) {
        // The zone's y counts up from the bottom of the frame.
        const QRectF rect(zone.frame.minX() * scaleX, (frame.height() - zone.frame.maxY()) * scaleY,
                          zone.frame.width() * scaleX, zone.frame.height() * scaleY);
        if (rect.width() < 1 || rect.height() < 1) {
            continue;
        }
        painter.setPen(QPen(QColor(255, 255, 255, 60), 1.0));
        painter.setBrush(QColor(255, 255, 255, 14));
        painter.drawRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
        // A size the header would cover is shown in the part of the zone below it.
        QRectF labelArea = rect;
        const QRectF header = QRectF(panel_->geometry()).adjusted(0, 0, 0, 8);
        const QSizeF labelSize(metrics.horizontalAdvance(zone.label), metrics.height());
        QRectF label(QPointF(), labelSize);
        label.moveCenter(rect.center());
        if (label.intersects(header)) {
            labelArea.setTop(std::max(rect.top(), header.bottom()));
        }
        if (labelArea.width() > labelSize.width() + 16 &&
            labelArea.height() > labelSize.height() + 8) {
            painter.setPen(QColor(255, 255, 255, 180));
            painter.drawText(labelArea, Qt::AlignCenter, zone.label);
        }
    }

    if (const auto& hovered = model_.hoveredSplit()) {
        const double at = linePosition(hovered->orientation, hovered->value);
        const QRectF band = hovered->orientation == GridLineOrientation::Vertical
                                ? QRectF(at - kHoverBandWidth / 2, 0, kHoverBandWidth, height())
                                : QRectF(0, at - kHoverBandWidth / 2, width(), kHoverBandWidth);
        painter.fillRect(band, withAlpha(kSystemBlue, 0.35));
    }

    painter.setRenderHint(QPainter::Antialiasing, false);
    for (const EditorLine& line : model_.lines()) {
        const LineStyle style = lineStyle(line.style);
        QPen pen(style.color, style.width);
        pen.setCapStyle(Qt::FlatCap);
        painter.setPen(pen);
        const double at = linePosition(line.orientation, line.value);
        if (line.orientation == GridLineOrientation::Vertical) {
            painter.drawLine(QPointF(at, 0), QPointF(at, height()));
        } else {
            painter.drawLine(QPointF(0, at), QPointF(width(), at));
        }
    }
}

} // namespace paneforge
