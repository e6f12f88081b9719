#include "app/input/event_tap_manager.h"
#include "app/runtime/notification_center.h"
#include "core/input/hotkey_formatter.h"
#include "manual_scheduler.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_space.h"
#include "platform/x11/x11_event_tap_api.h"
#include "platform/x11/x11_modifier_tracker.h"
#include "platform/x11/x11_window_service.h"
#include "x11_test_session.h"

#include <QHash>
#include <QTest>
#include <cstdlib>

using namespace paneforge;

namespace {

constexpr std::uint32_t kCommand = ModifierMapper::kCommandFlag;
constexpr std::uint32_t kShift = ModifierMapper::kShiftFlag;

QString kindOf(const InputEvent& event) {
    if (event.type == InputEvent::FlagsChanged) {
        return QStringLiteral("flags(0x%1)").arg(event.flags, 0, 16);
    }
    const QHash<int, QString> names{{InputEvent::LeftMouseDown, "down"},
                                    {InputEvent::LeftMouseUp, "up"},
                                    {InputEvent::LeftMouseDragged, "drag"}};
    return names.value(event.type, QStringLiteral("other"));
}

// Event kinds in order, each flags change with its flags, runs of drags folded into one.
QStringList sequence(const QList<InputEvent>& events) {
    QStringList kinds;
    for (const auto& event : events) {
        const QString kind = kindOf(event);
        if (kind == QLatin1String("drag") && !kinds.isEmpty() && kinds.last() == kind) {
            continue;
        }
        kinds << kind;
    }
    return kinds;
}

// An armed event tap manager that records what it delivers.
struct RecordingTap {
    RecordingTap(X11EventTapApi& api, ManualScheduler& scheduler, NotificationCenter& center)
        : manager(api, scheduler, center) {
        manager.setHandler([this](const InputEvent& event) { events << event; });
        manager.arm();
    }
    EventTapManager manager;
    QList<InputEvent> events;
};

} // namespace

// EventTapManager over X11EventTapApi against a real server, openbox and xlogo, driven by
// xdotool. A title-bar drag is the window manager's pointer grab, through which raw events must
// keep coming. xdotool's absolute moves are warps, which make no raw motion; relative moves do.
class X11EventTapTest : public QObject {
    Q_OBJECT

public:
    explicit X11EventTapTest(X11TestSession& session)
        : session_(session)
        , display_(session.display().toLatin1()) {}

private:
    bool xdotool(const QStringList& arguments) { return session_.run("xdotool", arguments); }

    QPoint pointer() {
        const auto reply = xcb_query_pointer_reply(
            connection_.raw(), xcb_query_pointer(connection_.raw(), connection_.root()), nullptr);
        const QPoint point = reply ? QPoint(reply->root_x, reply->root_y) : QPoint(-1, -1);
        std::free(reply);
        return point;
    }

    static DesktopPoint desktop(QPoint root) { return X11DesktopSpace::toDesktop(QPointF(root)); }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(connection_.isValid());
        QString error;
        const auto logo = session_.startClient("xlogo", {"-geometry", "300x200+400+300"}, &error);
        QVERIFY2(logo, qPrintable(error));
        logo_ = *logo;
    }

    void titleBarDragWithCommandPressedMidDrag() {
        std::vector<std::uint32_t> extents;
        QVERIFY(X11TestSession::waitUntil([&] {
            extents = connection_.cardinals(logo_, "_NET_FRAME_EXTENTS");
            return extents.size() == 4 && extents[2] > 4; // a title bar to take hold of
        }));
        const auto window = X11WindowService::wrap(logo_);
        const auto before = windows_.frame(window);
        QVERIFY(before);
        const QPointF titleBar =
            X11DesktopSpace::toRoot({before->midX(), before->maxY() - extents[2] / 2.0});
        const QPoint start = titleBar.toPoint();

        int installed = 0;
        const auto observer =
            center_.observe(notifications::kEventTapInstalled, [&] { ++installed; });
        RecordingTap tap(api_, scheduler_, center_);
        EventTapManager& manager = tap.manager;
        const QList<InputEvent>& events = tap.events;
        QVERIFY(manager.isTapInstalled());
        QVERIFY(!manager.isRetrying());
        QCOMPARE(installed, 1);

        const auto n = [](int value) { return QString::number(value); };
        // Each step waits for its event, as a hand would: raw events carry no state, so the tap
        // reads pointer and modifiers when it handles them.
        QVERIFY(xdotool({"mousemove", n(start.x()), n(start.y())}));
        QVERIFY(xdotool({"mousedown", "1"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(events), QStringList({"down"}), 10000);
        QCOMPARE(events.last().location, desktop(start));
        QCOMPARE(events.last().flags, 0u);

        QVERIFY(xdotool({"mousemove_relative", "--", "12", "9"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(events), QStringList({"down", "drag"}), 10000);
        QCOMPARE(events.last().location, desktop(pointer()));
        QCOMPARE(events.last().flags, 0u);

        QVERIFY(xdotool({"keydown", "super"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(events),
                                  QStringList({"down", "drag", "flags(0x100000)"}), 10000);
        QCOMPARE(events.last().flags, kCommand);
        QCOMPARE(ModifierMapper::toCarbonModifiersFromEventFlags(events.last().flags),
                 modifier_bits::kCommand);

        QVERIFY(xdotool({"mousemove_relative", "--", "15", "11"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(events),
                                  QStringList({"down", "drag", "flags(0x100000)", "drag"}), 10000);
        QCOMPARE(events.last().flags, kCommand); // a drag with the combination held

        const QPoint release = pointer();
        QVERIFY(xdotool({"mouseup", "1"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(events),
                                  QStringList({"down", "drag", "flags(0x100000)", "drag", "up"}),
                                  10000);
        QCOMPARE(events.last().location, desktop(release));
        QCOMPARE(events.last().flags, kCommand);
        QCOMPARE(release, start + QPoint(27, 20));

        // The window manager really moved the window: the events came through its grab.
        QVERIFY(X11TestSession::waitUntil([&] {
            const auto after = windows_.frame(window);
            return after && after->x() == before->x() + 27 && after->y() == before->y() - 20;
        }));

        // Motion without the button is no drag; a key that is no modifier changes no flags.
        QVERIFY(xdotool({"keyup", "super"}));
        QVERIFY(xdotool({"mousemove_relative", "--", "5", "5", "key", "a", "keydown", "shift"}));
        QVERIFY(xdotool({"keyup", "shift"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(events),
                                  QStringList({"down", "drag", "flags(0x100000)", "drag", "up",
                                               "flags(0x0)", "flags(0x20000)", "flags(0x0)"}),
                                  10000);
        QCOMPARE(events[events.size() - 2].flags, kShift);

        // A dropped tap delivers nothing more.
        manager.stopInstalledTap();
        QVERIFY(!manager.isTapInstalled());
        const auto count = events.size();
        RecordingTap second(api_, scheduler_, center_);
        QVERIFY(xdotool({"mousedown", "1", "mouseup", "1"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(second.events), QStringList({"down", "up"}), 10000);
        QCOMPARE(events.size(), count);
    }

    void followsAChangedModifierMapping() {
        RecordingTap tap(api_, scheduler_, center_);
        const QList<InputEvent>& events = tap.events;

        // The left Super key becomes a Control key while the tap runs. The server tells every
        // client before it delivers the next key, so the press already counts as Control.
        QVERIFY(session_.run("xmodmap",
                             {"-e", "remove mod4 = Super_L", "-e", "add control = Super_L"}));
        QVERIFY(xdotool({"keydown", "Super_L", "keyup", "Super_L"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(events), QStringList({"flags(0x40000)", "flags(0x0)"}),
                                  10000);
        // And back.
        QVERIFY(session_.run("xmodmap",
                             {"-e", "remove control = Super_L", "-e", "add mod4 = Super_L"}));
        QVERIFY(xdotool({"keydown", "Super_L", "keyup", "Super_L"}));
        QTRY_COMPARE_WITH_TIMEOUT(
            sequence(events),
            QStringList({"flags(0x40000)", "flags(0x0)", "flags(0x100000)", "flags(0x0)"}), 10000);
    }

    void handlerMayDropItsOwnTap() {
        EventTapManager manager(api_, scheduler_, center_);
        QList<InputEvent> events;
        manager.setHandler([&](const InputEvent& event) {
            events << event;
            manager.stopInstalledTap();
        });
        manager.arm();
        QVERIFY(manager.isTapInstalled());
        // A tap on a connection of its own tells when the server has sent everything.
        RecordingTap witness(api_, scheduler_, center_);
        const QList<InputEvent>& seen = witness.events;

        // Both presses reach the dropped tap's connection in one read.
        QVERIFY(xdotool({"mousedown", "1", "mouseup", "1", "mousedown", "1", "mouseup", "1"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(events), QStringList({"down"}), 10000);
        QVERIFY(!manager.isTapInstalled());
        QVERIFY(xdotool({"mousedown", "1", "mouseup", "1"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(seen),
                                  QStringList({"down", "up", "down", "up", "down", "up"}), 10000);
        QCOMPARE(sequence(events), QStringList({"down"}));
    }

    // Raw key events carry no modifier state: the tap follows the keys from the state it saw at
    // its start. Key codes of a default keymap: Shift 50 and 62, Control 37, Alt 64, Super 133;
    // a negative code is the key's release.
    void modifierTracking_data() {
        QTest::addColumn<quint16>("heldAtStart");
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QList<uint>>("masks"); // at the start and after each change
        const uint command = modifier_bits::kCommand, shift = modifier_bits::kShift;
        const uint option = modifier_bits::kOption, control = modifier_bits::kControl;
        QTest::newRow("press and release") << quint16(0) << QList{37, 64, -37, -64}
                                           << QList{0u, control, control | option, option, 0u};
        QTest::newRow("a release twice is one change")
            << quint16(0) << QList{133, -133, -133} << QList{0u, command, 0u};
        QTest::newRow("both shift keys")
            << quint16(0) << QList{50, 62, -50, -62} << QList{0u, shift, 0u};
        QTest::newRow("no modifier key") << quint16(0) << QList{38, -38} << QList{0u};
        QTest::newRow("held before the start, then released")
            << quint16(XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT) << QList{-133, 133}
            << QList{command | shift, shift, command | shift};
        QTest::newRow("held before the start, pressed again")
            << quint16(XCB_MOD_MASK_4) << QList{133, -133} << QList{command, 0u};
        QTest::newRow("key codes above 255 are no keys")
            << quint16(0) << QList{256 + 50, 65536 + 37} << QList{0u};
    }
    void modifierTracking() {
        QFETCH(quint16, heldAtStart);
        QFETCH(QList<int>, keys);
        QFETCH(QList<uint>, masks);
        X11ModifierBits bits;
        bits.keyBits[50] = bits.keyBits[62] = XCB_MOD_MASK_SHIFT;
        bits.keyBits[37] = XCB_MOD_MASK_CONTROL;
        bits.keyBits[64] = XCB_MOD_MASK_1;
        bits.keyBits[133] = XCB_MOD_MASK_4;
        X11ModifierTracker tracker(bits, heldAtStart);
        QList<uint> seen{tracker.modifiers()};
        for (const int key : keys) {
            if (tracker.keyChanged(std::uint32_t(std::abs(key)), key > 0)) {
                seen << tracker.modifiers();
            }
        }
        QCOMPARE(seen, masks);
    }

private:
    X11TestSession& session_;
    QByteArray display_;
    X11EventTapApi api_{display_.constData()};
    ManualScheduler scheduler_;
    NotificationCenter center_;
    X11Connection connection_;
    ManualScheduler windowScheduler_;
    X11WindowService windows_{connection_, windowScheduler_, nullptr};
    xcb_window_t logo_ = XCB_NONE;
};

int main(int argc, char** argv) {
    return runWithX11Session(argc, argv, {}, [&](X11TestSession& session) {
        X11EventTapTest test(session);
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_x11_event_tap.moc"
