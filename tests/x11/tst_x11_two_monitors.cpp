#include "platform/x11/x11_display_services.h"
#include "platform/x11/xcb_client.h"
#include "x11_test_session.h"

#include <QTest>
#include <xcb/randr.h>

using namespace paneforge;

// Two monitors side by side (the Xvfb screen split with xrandr): dock struts that shrink only the
// monitor they touch, and visible frames that follow docks and monitors as they change.
class X11TwoMonitorsTest : public QObject {
    Q_OBJECT

public:
    explicit X11TwoMonitorsTest(X11TestSession& session)
        : session_(session) {}

private Q_SLOTS:
    void initTestCase() {
        QCOMPARE(displays_.getActiveDisplays().size(), size_t(2));
        left_ = *displays_.getDisplayId({10, 10});
        right_ = *displays_.getDisplayId({970, 10});
        QVERIFY(left_ != right_);
    }

    void titleNamesTheMonitor() {
        QCOMPARE(displays_.getDisplayTitle(right_),
                 QStringLiteral("RIGHT [External] (%1) @ 960x1080 @ 960,0")
                     .arg(displays_.getIdentifier(right_).stableId()));
    }

    void aDockStrutShrinksOnlyTheMonitorItTouches() {
        const DesktopRect rightBefore(960, 0, 960, 1080);
        QCOMPARE(*displays_.getVisibleFrame(right_), rightBefore);
        // trayer places itself on the first monitor: a 30-pixel panel along the left one's top.
        QString error;
        const auto panel =
            session_.startClient("trayer",
                                 {"--edge", "top", "--align", "left", "--widthtype", "pixel",
                                  "--width", "200", "--heighttype", "pixel", "--height", "30",
                                  "--SetDockType", "true", "--SetPartialStrut", "true"},
                                 &error);
        QVERIFY2(panel, qPrintable(error));
        QVERIFY(X11TestSession::waitUntil(
            [&] { return displays_.getVisibleFrame(left_)->height() == 1050; }));
        QCOMPARE(*displays_.getVisibleFrame(left_), DesktopRect(0, 0, 960, 1050));
        QCOMPARE(*displays_.getVisibleFrame(right_), rightBefore);
        // The window manager's single work area spans both monitors and would wrongly shrink the
        // right one too.
        QCOMPARE(session_.rootCardinals("_NET_WORKAREA").at(1), 30u);
    }

    void anotherMonitorOnTheOutputIsSeen() {
        // A monitor with an EDID (serial 57920) on the left monitor's output, as RandR reports it.
        xcb_connection_t* c = connection_.raw();
        const auto resources = owned(xcb_randr_get_screen_resources_current_reply(
            c, xcb_randr_get_screen_resources_current(c, connection_.root()), nullptr));
        QVERIFY(resources);
        const auto output = xcb_randr_get_screen_resources_current_outputs(resources.get())[0];
        xcb_randr_change_output_property(c, output, connection_.atom("EDID"), XCB_ATOM_INTEGER, 8,
                                         XCB_PROP_MODE_REPLACE, 128,
                                         QByteArray::fromHex("00ffffffffffff0010ac344140e2")
                                             .leftJustified(128, '\0')
                                             .constData());
        connection_.flush();
        QVERIFY(X11TestSession::waitUntil([&] {
            return displays_.getIdentifier(left_) == DisplayIdentifier(0x10AC, 0x4134, 57920);
        }));
    }

private:
    X11TestSession& session_;
    X11Connection connection_;
    X11DisplayServices displays_{connection_};
    DisplayId left_ = 0;
    DisplayId right_ = 0;
};

int main(int argc, char** argv) {
    return runX11Test<X11TwoMonitorsTest>(argc, argv, {.twoMonitors = true});
}

#include "tst_x11_two_monitors.moc"
