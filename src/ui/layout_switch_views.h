#pragma once

#include "app/ports/layout_switch_views.h"
#include "app/ports/native_windows.h"
#include "ui/layout_selector_model.h"

#include <QWidget>
#include <functional>

namespace paneforge {

// The heads-up display's content: the layout's name on a rounded plate in the window colour.
class LayoutCycleHUDView final : public QWidget {
public:
    LayoutCycleHUDView(QString name, std::function<void()> onDismiss);

    // The plate for text of `textSize`: the text with 20 points either side and 10 above and
    // below, never smaller than 120 by 48.
    static QSizeF plateSize(const QSizeF& textSize);
    static QFont nameFont(QFont base);

    const QString& name() const { return name_; }
    // The name as drawn: cut at the tail only when it does not fit the plate.
    QString drawnText() const;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QString name_;
    std::function<void()> onDismiss_;
};

// The selector's panel: the strip of layout cards, with the keyboard.
class LayoutSelectorView final : public QWidget {
public:
    LayoutSelectorView(LayoutSelectorContent content, std::function<void(const QString&)> onSelect,
                       std::function<void()> onDismiss);

    const LayoutSelectorModel& model() const { return model_; }
    // Closing when another window takes the keyboard, for when there is no backdrop to click.
    void setDismissedOnDeactivation(bool dismissed) { dismissOnDeactivation_ = dismissed; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void select(int index);

    LayoutSelectorModel model_;
    std::vector<GridDefinition> layouts_;
    std::function<void(const QString&)> onSelect_;
    std::function<void()> onDismiss_;
    bool dismissOnDeactivation_ = false;
    bool closing_ = false;
};

// The Qt windows of layout switching, placed on the visible frame they are given, with the
// platform's native touches.
class QtLayoutSwitchViews final : public LayoutSwitchViews {
public:
    explicit QtLayoutSwitchViews(NativeWindows& nativeWindows)
        : nativeWindows_(nativeWindows) {}

    std::unique_ptr<LayoutSwitchWindow> showHUD(const QString& name,
                                                const DesktopRect& visibleFrame,
                                                std::function<void()> onDismiss) override;
    std::unique_ptr<LayoutSwitchWindow> showSelector(const DesktopRect& visibleFrame,
                                                     LayoutSelectorContent content,
                                                     std::function<void(const QString&)> onSelect,
                                                     std::function<void()> onDismiss) override;

private:
    NativeWindows& nativeWindows_;
};

} // namespace paneforge
