#include "app/onboarding/quick_start_controller.h"
#include "ui/onboarding/permission_coach_window.h"
#include "ui/onboarding/quick_start_window.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

using namespace paneforge;

namespace {

class NoNativeWindows final : public NativeWindows {
public:
    int activations = 0;
    void configureOverlayWindow(NativeWindowId) override {}
    void activate(NativeWindowId) override { ++activations; }
    bool compositingAvailable() override { return true; }
};

QPushButton* button(QWidget& window, const QString& text) {
    for (auto* candidate : window.findChildren<QPushButton*>()) {
        if (candidate->text() == text) {
            return candidate;
        }
    }
    return nullptr;
}

} // namespace

class OnboardingWindowsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void quickStartShowsEachPagesChrome_data();
    void quickStartShowsEachPagesChrome();
    void coachTakesItsContentAndStaysPut();
};

void OnboardingWindowsTest::quickStartShowsEachPagesChrome_data() {
    QTest::addColumn<int>("index");
    for (int index = 0; index < 3; ++index) {
        QTest::addRow("page %d", index) << index;
    }
}

void OnboardingWindowsTest::quickStartShowsEachPagesChrome() {
    QFETCH(int, index);
    NoNativeWindows native;
    int closings = 0;
    QuickStartActions actions;
    actions.closed = [&] { ++closings; };
    QuickStartWindow window(native, actions);
    const QuickStartChrome chrome = QuickStartController::chrome(index);
    window.showPage(chrome);
    window.present();
    QCOMPARE(native.activations, 1);
    QCOMPARE(window.windowTitle(), QStringLiteral("Quick Start"));
    QStringList labels;
    for (const auto* label : window.findChildren<QLabel*>()) {
        labels << label->text();
    }
    QCOMPARE(labels, QStringList({chrome.title, chrome.body, chrome.stepText}));
    const QPushButton* primary = button(window, QStringLiteral("Open Zone Editor"));
    QCOMPARE(primary && primary->isVisible(), chrome.primaryActionTitle.has_value());
    QCOMPARE(button(window, QStringLiteral("Back"))->isEnabled(), chrome.backEnabled);
    QVERIFY(button(window, chrome.nextTitle)->isDefault());

    // Escape closes it like the title bar, and the controller hears of it once.
    QTest::keyClick(&window, Qt::Key_Escape);
    QVERIFY(!window.isVisible());
    QCOMPARE(closings, 1);
}

void OnboardingWindowsTest::coachTakesItsContentAndStaysPut() {
    NoNativeWindows native;
    int presses = 0;
    PermissionCoachWindow coach(native, [&] { ++presses; });
    coach.present({QStringLiteral("Permissions needed"), QStringLiteral("Message"),
                   QStringLiteral("Open Accessibility")});
    QVERIFY(coach.isVisible());
    coach.move(coach.pos() + QPoint(40, 30));
    const QPoint moved = coach.pos();
    coach.present({QStringLiteral("Permissions needed"), QStringLiteral("Other"),
                   QStringLiteral("Open Input Monitoring")});
    QCOMPARE(coach.pos(), moved);
    QCOMPARE(native.activations, 1);
    button(coach, QStringLiteral("Open Input Monitoring"))->click();
    QCOMPARE(presses, 1);
    coach.dismiss();
    QVERIFY(!coach.isVisible());
}

QTEST_MAIN(OnboardingWindowsTest)
#include "tst_onboarding_windows.moc"
