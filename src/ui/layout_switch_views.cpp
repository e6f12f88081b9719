#include "ui/layout_switch_views.h"

#include "ui/layout_card_painter.h"
#include "ui/snap_overlay_model.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QScreen>
#include <algorithm>
#include <cmath>

namespace paneforge {

namespace {

constexpr double kHUDCornerRadius = 14;
constexpr double kHUDTextPixelSize = 24;
constexpr double kPanelCornerRadius = 12;

// A rounded plate in the window colour at `alpha` over a fully transparent window.
void paintPlate(QPainter& painter, const QWidget& widget, float alpha, double cornerRadius) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(widget.rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    QColor plate = widget.palette().color(QPalette::Window);
    plate.setAlphaF(alpha);
    painter.setPen(Qt::NoPen);
    painter.setBrush(plate);
    painter.drawRoundedRect(QRectF(widget.rect()), cornerRadius, cornerRadius);
}

// Closes its windows when dropped. They are deleted on the next turn of the event loop: the
// controller drops them from inside their own key and mouse handlers.
class QtLayoutSwitchWindow final : public LayoutSwitchWindow {
public:
    explicit QtLayoutSwitchWindow(std::vector<QWidget*> widgets) {
        for (QWidget* widget : widgets) {
            widgets_.emplace_back(widget);
        }
    }
    ~QtLayoutSwitchWindow() override {
        for (const QPointer<QWidget>& widget : widgets_) {
            if (widget) {
                widget->hide();
                widget->deleteLater();
            }
        }
    }

private:
    std::vector<QPointer<QWidget>> widgets_;
};

// The dimmed backdrop behind the selector; a click on it closes the selector.
class LayoutSelectorBackdrop final : public QWidget {
public:
    explicit LayoutSelectorBackdrop(std::function<void()> onDismiss)
        : onDismiss_(std::move(onDismiss)) {}

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.fillRect(rect(), QColor(0, 0, 0, 46));
    }
    void mousePressEvent(QMouseEvent*) override {
        if (const auto dismiss = std::exchange(onDismiss_, nullptr)) {
            dismiss();
        }
    }

private:
    std::function<void()> onDismiss_;
};

QRectF globalFrame(const DesktopRect& visibleFrame) {
    const QScreen* primary = QGuiApplication::primaryScreen();
    return desktopToGlobal(visibleFrame, primary ? QRectF(primary->geometry()) : QRectF());
}

QRect centredOn(const QRectF& frame, const QSize& size) {
    QRect rect(QPoint(), size);
    rect.moveCenter(frame.center().toPoint());
    return rect;
}

// See-through corners where translucency is composited; a rounded shape where it is not.
void roundTheCorners(QWidget& widget, bool translucent, double radius) {
    if (translucent) {
        widget.setAttribute(Qt::WA_TranslucentBackground);
        return;
    }
    QPainterPath path;
    path.addRoundedRect(QRectF(QPointF(0, 0), widget.size()), radius, radius);
    widget.setMask(QRegion(path.toFillPolygon().toPolygon()));
}

} // namespace

// Heads-up display

LayoutCycleHUDView::LayoutCycleHUDView(QString name, std::function<void()> onDismiss)
    : name_(std::move(name))
    , onDismiss_(std::move(onDismiss)) {
    setFont(nameFont(font()));
}

QSizeF LayoutCycleHUDView::plateSize(const QSizeF& textSize) {
    // Whole pixels, rounded up, so that the text always fits the plate it was measured for.
    return {std::ceil(std::max(textSize.width() + 40, 120.0)),
            std::ceil(std::max(textSize.height() + 20, 48.0))};
}

QFont LayoutCycleHUDView::nameFont(QFont base) {
    base.setPixelSize(int(kHUDTextPixelSize));
    base.setWeight(QFont::DemiBold);
    return base;
}

QSize LayoutCycleHUDView::sizeHint() const {
    return plateSize(QFontMetricsF(font()).size(Qt::TextSingleLine, name_)).toSize();
}

QString LayoutCycleHUDView::drawnText() const {
    return QFontMetricsF(font()).elidedText(name_, Qt::ElideRight, width() - 40);
}

void LayoutCycleHUDView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintPlate(painter, *this, 0.92F, kHUDCornerRadius);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(QRectF(rect()).adjusted(20, 10, -20, -10), Qt::AlignCenter, drawnText());
}

void LayoutCycleHUDView::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QWidget::keyPressEvent(event);
        return;
    }
    if (onDismiss_) {
        onDismiss_();
    }
}

void LayoutCycleHUDView::mousePressEvent(QMouseEvent*) {
    if (onDismiss_) {
        onDismiss_();
    }
}

// Selector

LayoutSelectorView::LayoutSelectorView(LayoutSelectorContent content,
                                       std::function<void(const QString&)> onSelect,
                                       std::function<void()> onDismiss)
    : model_(std::move(content.items))
    , layouts_(std::move(content.layouts))
    , onSelect_(std::move(onSelect))
    , onDismiss_(std::move(onDismiss)) {
    setFocusPolicy(Qt::StrongFocus);
    setFixedSize(LayoutSelectorModel::panelSize(model_.count()).toSize());
}

bool LayoutSelectorView::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && dismissOnDeactivation_ && isVisible() &&
        !closing_) {
        closing_ = true;
        onDismiss_();
    }
    return QWidget::event(event);
}

bool LayoutSelectorView::focusNextPrevChild(bool) {
    // Tab and Shift-Tab move between the cards, not between widgets.
    return false;
}

void LayoutSelectorView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintPlate(painter, *this, 0.96F, kPanelCornerRadius);

    const LayoutCardColors colors = LayoutCardColors::from(palette());
    for (int i = 0; i < model_.count(); ++i) {
        const LayoutSelectorItem& item = model_.items()[std::size_t(i)];
        LayoutCardPainter::paint(painter, LayoutSelectorModel::cardFrame(i),
                                 layouts_[std::size_t(i)], item.name,
                                 {item.isActive, i == model_.focusedIndex()}, colors);
    }
}

void LayoutSelectorView::keyPressEvent(QKeyEvent* event) {
    if (closing_) {
        return;
    }
    switch (model_.handleKey(event->key(), event->modifiers())) {
    case LayoutSelectorModel::KeyAction::Ignored:
        QWidget::keyPressEvent(event);
        return;
    case LayoutSelectorModel::KeyAction::FocusMoved:
        update();
        return;
    case LayoutSelectorModel::KeyAction::Select:
        select(model_.focusedIndex());
        return;
    case LayoutSelectorModel::KeyAction::Dismiss:
        closing_ = true;
        onDismiss_();
        return;
    }
}

void LayoutSelectorView::mousePressEvent(QMouseEvent* event) {
    const int index = model_.cardAt(event->position());
    if (index >= 0 && !closing_) {
        select(index);
    }
}

void LayoutSelectorView::select(int index) {
    closing_ = true;
    onSelect_(model_.items()[std::size_t(index)].id);
}

// The windows

std::unique_ptr<LayoutSwitchWindow> QtLayoutSwitchViews::showHUD(const QString& name,
                                                                 const DesktopRect& visibleFrame,
                                                                 std::function<void()> onDismiss) {
    auto* hud = new LayoutCycleHUDView(name, std::move(onDismiss));
    // Over everything and never focused: the user's application keeps the keyboard.
    hud->setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                        Qt::WindowDoesNotAcceptFocus | Qt::X11BypassWindowManagerHint);
    hud->setAttribute(Qt::WA_ShowWithoutActivating);
    hud->setAttribute(Qt::WA_X11DoNotAcceptFocus);
    hud->setWindowTitle(QStringLiteral("Paneforge Layout"));
    hud->setGeometry(centredOn(globalFrame(visibleFrame), hud->sizeHint()));
    roundTheCorners(*hud, nativeWindows_.compositingAvailable(), kHUDCornerRadius);
    hud->show();
    nativeWindows_.configureOverlayWindow(static_cast<NativeWindowId>(hud->winId()));
    return std::make_unique<QtLayoutSwitchWindow>(std::vector<QWidget*>{hud});
}

std::unique_ptr<LayoutSwitchWindow>
QtLayoutSwitchViews::showSelector(const DesktopRect& visibleFrame, LayoutSelectorContent content,
                                  std::function<void(const QString&)> onSelect,
                                  std::function<void()> onDismiss) {
    const QRectF frame = globalFrame(visibleFrame);
    const bool translucent = nativeWindows_.compositingAvailable();
    std::vector<QWidget*> widgets;
    // Dimming needs translucency; without it a click elsewhere takes the keyboard and that
    // closes the selector instead.
    if (translucent) {
        auto* backdrop = new LayoutSelectorBackdrop(onDismiss);
        backdrop->setWindowFlags(Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                                 Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint);
        backdrop->setAttribute(Qt::WA_ShowWithoutActivating);
        backdrop->setAttribute(Qt::WA_TranslucentBackground);
        backdrop->setWindowTitle(QStringLiteral("Paneforge Layout Backdrop"));
        backdrop->setGeometry(frame.toAlignedRect());
        backdrop->show();
        widgets.push_back(backdrop);
    }
    auto* panel =
        new LayoutSelectorView(std::move(content), std::move(onSelect), std::move(onDismiss));
    panel->setWindowFlags(Qt::Dialog | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint);
    panel->setWindowTitle(QStringLiteral("Switch Layout"));
    panel->setDismissedOnDeactivation(!translucent);
    panel->setGeometry(centredOn(frame, panel->size()));
    roundTheCorners(*panel, translucent, kPanelCornerRadius);
    panel->show();
    panel->raise();
    panel->activateWindow();
    panel->setFocus();
    nativeWindows_.activate(static_cast<NativeWindowId>(panel->winId()));
    widgets.push_back(panel);
    return std::make_unique<QtLayoutSwitchWindow>(std::move(widgets));
}

} // namespace paneforge
