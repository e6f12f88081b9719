#pragma once

class QWidget;

namespace paneforge {

// The onboarding windows' type: sizes in points and quieter tones for secondary text, taken from
// the window's palette so that they read on light and dark themes alike.
namespace OnboardingStyle {
enum class Tone { Secondary, Tertiary };
void setPointSize(QWidget& widget, double points);
void setTextTone(QWidget& widget, Tone tone);
} // namespace OnboardingStyle

} // namespace paneforge
