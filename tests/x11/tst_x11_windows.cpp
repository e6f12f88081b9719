#include "manual_scheduler.h"
#include "platform/x11/x11_compositor.h"
#include "platform/x11/x11_window_service.h"
#include "x11_test_session.h"

#include <QTest>

using namespace paneforge;

// Sets real windows' frames under openbox where the window manager does not simply carry out the
// move: a maximized window, a window moved away.
class X11WindowsTest : public QObject {
    Q_OBJECT

public:
    explicit X11WindowsTest(X11TestSession& session)
        : session_(session) {}

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(!hasCompositingManager(connection_)); // this session runs no compositor
        QString error;
        logo_ = session_.startClient("xlogo", {"-geometry", "300x200+500+300"}, &error).value_or(0);
        QVERIFY2(logo_, qPrintable(error));
    }

    void maximizedWindowIsRestoredToTheRequestedFrame() {
        connection_.sendRootMessage(logo_, "_NET_WM_STATE",
                                    {1 /* add */, connection_.atom("_NET_WM_STATE_MAXIMIZED_VERT"),
                                     connection_.atom("_NET_WM_STATE_MAXIMIZED_HORZ"), 2, 0});
        connection_.flush();
        QVERIFY(X11TestSession::waitUntil([&] {
            const auto frame = windows_.frame(logo());
            return frame && frame->width() == 1920;
        }));
        // The size is worked out from the borderless maximized frame; the check sees the borders
        // back and asks again.
        const DesktopRect requested(100, 150, 640, 480);
        windows_.setFrame(logo(), requested);
        QVERIFY(X11TestSession::waitUntil([&] {
            const auto frame = windows_.frame(logo());
            return frame && frame->x() == 100 && frame->width() < 1920;
        }));
        QVERIFY(lastCheckRetried());
        QVERIFY(landsAt(requested));
    }

    void windowMovedAwayIsPutBackOnce() {
        const DesktopRect requested(300, 100, 500, 400);
        windows_.setFrame(logo(), requested);
        QVERIFY(landsAt(requested));
        // Before the check runs, something else moves the window: the check puts its corner
        // back where it was asked to go, keeping the size.
        QVERIFY(
            session_.run("xdotool", {"windowmove", "--sync", QString::number(logo_), "40", "40"}));
        QVERIFY(X11TestSession::waitUntil([&] { return windows_.frame(logo()) != requested; }));
        QVERIFY(lastCheckRetried());
        QVERIFY2(landsAt(requested), qPrintable(windows_.describeWindow(logo())));
        QCOMPARE(scheduler_.activeTimerCount(), 0); // one retry, no loop
    }

private:
    WindowRef logo() const { return X11WindowService::wrap(logo_); }
    bool landsAt(const DesktopRect& expected) {
        return X11TestSession::waitUntil([&] { return windows_.frame(logo()) == expected; });
    }
    // Whether the check that follows a set frame asked the window manager again.
    bool lastCheckRetried() {
        log_.clear();
        scheduler_.advance(X11WindowService::verifyDelay);
        return !log_.isEmpty() && log_.last().contains("retried=true");
    }

    X11TestSession& session_;
    X11Connection connection_;
    ManualScheduler scheduler_;
    QStringList log_;
    X11WindowService windows_{connection_, scheduler_,
                              [this](const QString& line) { log_ << line; }};
    std::uint32_t logo_ = 0;
};

int main(int argc, char** argv) {
    return runX11Test<X11WindowsTest>(argc, argv);
}

#include "tst_x11_windows.moc"
