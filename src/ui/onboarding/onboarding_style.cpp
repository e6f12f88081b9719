#include "ui/onboarding/onboarding_style.h"

#include <QWidget>

namespace paneforge {

void OnboardingStyle::setPointSize(QWidget& widget, double points) {
    QFont font = widget.font();
    font.setPointSizeF(points);
    widget.setFont(font);
}

void OnboardingStyle::setTextTone(QWidget& widget, Tone tone) {
    // The text colour mixed towards the background: secondary keeps 70 %, tertiary 50 %.
    QPalette palette = widget.palette();
    const QColor text = palette.color(QPalette::WindowText);
    const QColor background = palette.color(QPalette::Window);
    const double keep = tone == Tone::Secondary ? 0.7 : 0.5;
    const auto mix = [keep](int a, int b) { return static_cast<int>(a * keep + b * (1 - keep)); };
    palette.setColor(QPalette::WindowText, QColor(mix(text.red(), background.red()),
                                                  mix(text.green(), background.green()),
                                                  mix(text.blue(), background.blue())));
    widget.setPalette(palette);
}

} // namespace paneforge
