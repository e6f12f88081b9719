#include "manual_scheduler.h"
#include "platform/x11/x11_compositor.h"
#include "platform/x11/x11_window_service.h"
#include "x11_test_session.h"

#include <QTest>

using namespace paneforge;

// Moves the window manager does not simply carry out, and the compositor check, under openbox.
class X11WindowMovesTest : public QObject {
    Q_OBJECT

public:
    explicit X11WindowMovesTest(X11TestSession& session)
        : session_(session) {}

private:
    bool maximized() {
        int states = 0;
        for (const xcb_atom_t state : connection_.atomList(logo_, "_NET_WM_STATE")) {
            states += state == connection_.atom("_NET_WM_STATE_MAXIMIZED_VERT") ||
                      state == connection_.atom("_NET_WM_STATE_MAXIMIZED_HORZ");
        }
        return states == 2;
    }
    bool landsAt(const DesktopRect& expected) {
        return X11TestSession::waitUntil([&] { return windows_.frame(window_) == expected; });
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(connection_.isValid());
        QString error;
        const auto logo = session_.startClient("xlogo", {"-geometry", "300x200+500+300"}, &error);
        QVERIFY2(logo, qPrintable(error));
        logo_ = *logo;
        window_ = X11WindowService::wrap(logo_);
    }

    void maximizedWindowIsRestoredToTheRequestedFrame() {
        constexpr std::uint32_t kAdd = 1;
        connection_.sendRootMessage(logo_, "_NET_WM_STATE",
                                    {kAdd, connection_.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                                     connection_.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2, 0});
        connection_.flush();
        QVERIFY(X11TestSession::waitUntil([&] {
            const auto frame = windows_.frame(window_);
            return maximized() && frame && frame->width() == 1920;
        }));
        const DesktopRect requested(100, 150, 640, 480);
        windows_.setFrame(window_, requested);
        QVERIFY(X11TestSession::waitUntil([&] {
            const auto frame = windows_.frame(window_);
            return !maximized() && frame && frame->x() == 100;
        }));
        // The size was worked out from the borderless maximized frame; the check sees the
        // borders back and asks again.
        scheduler_.advance(X11WindowService::verifyDelay);
        QVERIFY2(log_.last().contains("retried=true"), qPrintable(log_.last()));
        QVERIFY(landsAt(requested));
    }

    void windowMovedAwayIsPutBackOnce() {
        const DesktopRect requested(300, 100, 500, 400);
        windows_.setFrame(window_, requested);
        QVERIFY(landsAt(requested));
        // Before the check runs, something else moves the window: the check puts its corner
        // back where it was asked to go, keeping the size.
        QVERIFY(
            session_.run("xdotool", {"windowmove", "--sync", QString::number(logo_), "40", "40"}));
        QVERIFY(X11TestSession::waitUntil([&] { return windows_.frame(window_) != requested; }));
        scheduler_.advance(X11WindowService::verifyDelay);
        QVERIFY2(log_.last().startsWith("X11WindowService.setFrame requested=(300.0,100.0 "
                                        "500.0x400.0)") &&
                     log_.last().contains("retried=true"),
                 qPrintable(log_.last()));
        QVERIFY2(landsAt(requested), qPrintable(windows_.describeWindow(window_)));
        QCOMPARE(scheduler_.activeTimerCount(), 0); // one retry, no loop
    }

    void compositorIsSeenWhileItRuns() {
        QVERIFY(!hasCompositingManager(connection_));
        QProcess* compositor = session_.startProcess("xcompmgr", {});
        QVERIFY(X11TestSession::waitUntil([&] { return hasCompositingManager(connection_); }));
        compositor->terminate();
        QVERIFY(compositor->waitForFinished(10000));
        QVERIFY(X11TestSession::waitUntil([&] { return !hasCompositingManager(connection_); }));
    }

private:
    X11TestSession& session_;
    X11Connection connection_;
    ManualScheduler scheduler_;
    QStringList log_;
    X11WindowService windows_{connection_, scheduler_,
                              [this](const QString& line) { log_ << line; }};
    xcb_window_t logo_ = XCB_NONE;
    WindowRef window_;
};

int main(int argc, char** argv) {
    return runWithX11Session(argc, argv, {}, [&](X11TestSession& session) {
        X11WindowMovesTest test(session);
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_x11_window_moves.moc"
