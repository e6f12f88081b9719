#include "manual_scheduler.h"
#include "platform/x11/x11_display_services.h"
#include "platform/x11/x11_window_service.h"
#include "x11_test_session.h"

#include <QGuiApplication>
#include <QTest>
#include <cmath>

using namespace paneforge;

// Reads and sets real windows' frames under openbox, on one monitor.
class X11WindowsTest : public QObject {
    Q_OBJECT

public:
    explicit X11WindowsTest(X11TestSession& session)
        : session_(session) {}

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(connection_.isValid());
        QString error;
        const auto logo = session_.startClient("xlogo", {"-geometry", "300x200+500+300"}, &error);
        QVERIFY2(logo, qPrintable(error));
        logo_ = *logo;
        const auto term = session_.startClient("xterm", {"-geometry", "80x24+40+40"}, &error);
        QVERIFY2(term, qPrintable(error));
        term_ = *term;
    }

    void windowUnderPointAndItsOuterFrame() {
        const auto window = X11WindowService::wrap(logo_);
        std::optional<DesktopRect> frame;
        QVERIFY(X11TestSession::waitUntil(
            [&] { return (frame = windows_.frame(window)) && frame->width() >= 300; }));
        // xlogo asked for a 300x200 client; the outer frame adds openbox's decorations.
        QVERIFY(frame->width() >= 300 && frame->height() > 200);
        const DesktopPoint centre{frame->midX(), frame->midY()};
        QCOMPARE(X11WindowService::clientOf(windows_.windowUnderPoint(centre)), logo_);
        // A point on the title bar (top edge, y up) still names the client.
        const DesktopPoint titleBar{frame->midX(), frame->maxY() - 3};
        QCOMPARE(X11WindowService::clientOf(windows_.windowUnderPoint(titleBar)), logo_);
        QVERIFY(windows_.isStandardWindow(window));
        QVERIFY(windows_.describeWindow(window).contains("cocoaFrame=("));
        QVERIFY(!windows_.windowUnderPoint({5000, 5000}));
    }

    void setsAnExactOuterFrame_data() {
        QTest::addColumn<bool>("terminal");
        QTest::addColumn<DesktopRect>("requested");
        QTest::newRow("xlogo") << false << DesktopRect(100, 150, 640, 480);
        QTest::newRow("xlogo elsewhere") << false << DesktopRect(1000, 20, 500, 700);
        QTest::newRow("xterm") << true << DesktopRect(300, 200, 700, 500);
    }
    void setsAnExactOuterFrame() {
        QFETCH(bool, terminal);
        QFETCH(DesktopRect, requested);
        const auto window = X11WindowService::wrap(terminal ? term_ : logo_);
        windows_.setFrame(window, requested);
        if (!terminal) {
            QVERIFY2(X11TestSession::waitUntil([&] {
                         const auto f = windows_.frame(window);
                         return f == requested;
                     }),
                     qPrintable(windows_.describeWindow(window)));
        } else {
            // Terminals round their size to whole character cells; the top-left corner is exact.
            QVERIFY2(X11TestSession::waitUntil([&] {
                         const auto f = windows_.frame(window);
                         return f && f->x() == requested.x() && f->maxY() == requested.maxY() &&
                                std::abs(f->width() - requested.width()) < 20 &&
                                std::abs(f->height() - requested.height()) < 30;
                     }),
                     qPrintable(windows_.describeWindow(window)));
        }
        scheduler_.advance(X11WindowService::verifyDelay);
        QVERIFY(log_.last().startsWith("X11WindowService.setFrame requested="));
        QVERIFY(log_.last().contains("retried=false"));
    }

    void singleMonitorUsesTheWorkArea() {
        X11DisplayServices displays(connection_);
        const auto ids = displays.getActiveDisplays();
        QCOMPARE(ids.size(), size_t(1));
        QCOMPARE(*displays.getFrame(ids[0]), DesktopRect(0, 0, 1920, 1080));
        const auto area = session_.rootCardinals("_NET_WORKAREA");
        QCOMPARE(displays.getVisibleFrame(ids[0])->height(), double(area[3]));
        QCOMPARE(displays.getDisplayId({1919, 1079}), std::optional(ids[0]));
        QVERIFY(!displays.getDisplayId({1920, 10}));
        QVERIFY(displays.getDisplayTitle(ids[0]).endsWith(") @ 1920x1080 @ 0,0"));
    }

private:
    X11TestSession& session_;
    X11Connection connection_;
    ManualScheduler scheduler_;
    QStringList log_;
    X11WindowService windows_{connection_, scheduler_,
                              [this](const QString& line) { log_ << line; }};
    std::uint32_t logo_ = 0;
    std::uint32_t term_ = 0;
};

int main(int argc, char** argv) {
    return runWithX11Session(argc, argv, {}, [&](X11TestSession& session) {
        X11WindowsTest test(session);
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_x11_windows.moc"
