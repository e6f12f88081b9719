#include "app/onboarding/quick_start_controller.h"
#include "platform_fakes.h"
#include "ui/onboarding/permission_coach_window.h"
#include "ui/onboarding/quick_start_window.h"

#include <QLabel>
#include <QPushButton>
#include <QtTest>

using namespace paneforge;

namespace {

// The visible, enabled buttons by their titles.
QStringList usableButtons(QWidget& window) {
    QStringList titles;
    for (const auto* button : window.findChildren<QPushButton*>()) {
        if (button->isVisible() && button->isEnabled()) {
            titles << button->text() + (button->isDefault() ? QStringLiteral("*") : QString());
        }
    }
    return titles;
}

} // namespace

class OnboardingWindowsTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void quickStartShowsEachPagesChrome_data() {
        QTest::addColumn<int>("index");
        QTest::addColumn<QString>("step");
        QTest::addColumn<QStringList>("buttons"); // * marks the one Return presses
        QTest::newRow("welcome") << 0 << "1 of 3" << QStringList{"Skip", "Next*"};
        QTest::newRow("layout") << 1 << "2 of 3"
                                << QStringList{"Open Zone Editor", "Skip", "Back", "Next*"};
        QTest::newRow("snap") << 2 << "3 of 3" << QStringList{"Skip", "Back", "Done*"};
    }
    void quickStartShowsEachPagesChrome() {
        QFETCH(int, index);
        fakes::NativeWindowsRecord native;
        int closings = 0;
        QuickStartActions actions;
        actions.closed = [&] { ++closings; };
        QuickStartWindow window(native, actions);
        window.showPage(QuickStartController::chrome(index));
        window.present();
        QCOMPARE(native.activated.size(), std::size_t{1});
        QStringList labels;
        for (const auto* label : window.findChildren<QLabel*>()) {
            labels << label->text();
        }
        QFETCH(QString, step);
        QVERIFY2(labels.contains(step), qPrintable(labels.join(QLatin1Char('|'))));
        QTEST(usableButtons(window), "buttons");

        // Escape closes it like the title bar, and the controller hears of it once.
        QTest::keyClick(&window, Qt::Key_Escape);
        QVERIFY(!window.isVisible());
        QCOMPARE(closings, 1);
    }

    void coachTakesItsContentAndStaysPut() {
        fakes::NativeWindowsRecord native;
        int presses = 0;
        PermissionCoachWindow coach(native, [&] { ++presses; });
        coach.present({QStringLiteral("Permissions needed"), QStringLiteral("Message"),
                       QStringLiteral("Open Accessibility")});
        coach.move(coach.pos() + QPoint(40, 30));
        const QPoint moved = coach.pos();
        coach.present({QStringLiteral("Permissions needed"), QStringLiteral("Other"),
                       QStringLiteral("Open Input Monitoring")});
        QCOMPARE(coach.pos(), moved);
        QCOMPARE(native.activated.size(), std::size_t{1});
        QCOMPARE(usableButtons(coach), QStringList{"Open Input Monitoring*"});
        coach.findChild<QPushButton*>()->click();
        QCOMPARE(presses, 1);
    }
};

QTEST_MAIN(OnboardingWindowsTest)
#include "tst_onboarding_windows.moc"
