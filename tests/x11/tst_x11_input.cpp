#include "app/input/event_tap_manager.h"
#include "app/input/hotkey_manager.h"
#include "app/runtime/notification_center.h"
#include "app/runtime/qt_scheduler.h"
#include "core/input/hotkey_formatter.h"
#include "core/input/key_code_table.h"
#include "manual_scheduler.h"
#include "platform/x11/x11_event_tap_api.h"
#include "platform/x11/x11_hotkey_api.h"
#include "platform/x11/x11_modifier_bits.h"
#include "platform/x11/x11_modifier_tracker.h"
#include "platform/x11/xcb_client.h"
#include "platform/x11/xkb_keyboard_layout.h"
#include "x11_test_session.h"

#include <QRegularExpression>
#include <QTest>
#include <cstdlib>

using namespace paneforge;

namespace {
// Event kinds in order, each flags change with its flags.
QStringList sequence(const QList<InputEvent>& events) {
    QStringList kinds;
    for (const auto& event : events) {
        kinds << (event.type == InputEvent::FlagsChanged
                      ? QStringLiteral("flags(0x%1)").arg(event.flags, 0, 16)
                  : event.type == InputEvent::LeftMouseDown ? "down"
                  : event.type == InputEvent::LeftMouseUp   ? "up"
                                                            : "other");
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
constexpr std::uint32_t kKeyY = 0x10;
constexpr std::uint8_t kBadAccess = 10;
} // namespace

// The keyboard and the pointer on a real server with openbox, driven by xdotool, where the agent's
// end-to-end tests do not reach: remapped modifiers, lock keys, other clients' grabs, XKB layouts.
class X11InputTest : public QObject {
    Q_OBJECT

public:
    explicit X11InputTest(X11TestSession& session)
        : session_(session)
        , display_(session.display().toLatin1()) {}

private Q_SLOTS:
    void followsAChangedModifierMapping() {
        RecordingTap tap(api_, scheduler_, center_);
        // The left Super key becomes a Control key while the tap runs. The server tells every
        // client before it delivers the next key, so the press already counts as Control.
        QVERIFY(session_.run("xmodmap",
                             {"-e", "remove mod4 = Super_L", "-e", "add control = Super_L"}));
        QVERIFY(xdotool({"key", "Super_L"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(tap.events),
                                  QStringList({"flags(0x40000)", "flags(0x0)"}), 10000);
        QVERIFY(session_.run("xmodmap",
                             {"-e", "remove control = Super_L", "-e", "add mod4 = Super_L"}));
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
        // Both presses reach the dropped tap's connection in one read.
        QVERIFY(xdotool({"mousedown", "1", "mouseup", "1", "mousedown", "1", "mouseup", "1"}));
        QTRY_COMPARE_WITH_TIMEOUT(sequence(witness.events),
                                  QStringList({"down", "up", "down", "up"}), 10000);
        QVERIFY(!manager.isTapInstalled());
        QCOMPARE(sequence(events), QStringList({"down"}));
    }

    // Raw key events carry no modifier state: the tap follows the keys from the state it saw at
    // its start. Key codes of a default keymap: Shift 50 and 62, Super 133; a negative code is
    // the key's release.
    void modifierTracking_data() {
        QTest::addColumn<quint16>("heldAtStart");
        QTest::addColumn<QList<int>>("keys");
        QTest::addColumn<QList<uint>>("masks"); // at the start and after each change
        const uint command = modifier_bits::kCommand, shift = modifier_bits::kShift;
        QTest::newRow("a release twice is one change")
            << quint16(0) << QList{133, -133, -133} << QList{0u, command, 0u};
        QTest::newRow("both shift keys")
            << quint16(0) << QList{50, 62, -50, -62} << QList{0u, shift, 0u};
        QTest::newRow("held before the start, then released")
            << quint16(XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_2) << QList{-133, 133}
            << QList{command | shift, shift, command | shift};
        QTest::newRow("key codes above 255 are no keys")
            << quint16(0) << QList{256 + 50, 65536 + 133} << QList{0u};
    }
    void modifierTracking() {
        QFETCH(quint16, heldAtStart);
        QFETCH(QList<int>, keys);
        QFETCH(QList<uint>, masks);
        X11ModifierBits bits;
        bits.keyBits[50] = bits.keyBits[62] = XCB_MOD_MASK_SHIFT;
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

    void combinationOfAnotherClientIsRefused() {
        // Another program holds Super+Y with Caps Lock only: the plain variant succeeds first,
        // the refusal of a later one must release it again.
        XcbClient other(display_.constData());
        QCOMPARE(grab(other, kKeyY, XCB_MOD_MASK_4 | XCB_MOD_MASK_LOCK), 0);
        X11HotkeyApi api(display_.constData());
        QtScheduler scheduler;
        HotkeyManager manager(api, scheduler, [](const QString&) {});
        QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^X11HotkeyApi\\.register: "));
        manager.registerHotkey(4, {kKeyY, modifier_bits::kCommand}, [] {});
        QVERIFY(!manager.isRegistered(4));
        QVERIFY(!isHeldByAnotherClient(kKeyY, XCB_MOD_MASK_4));
        // A key this keyboard does not have is refused as well.
        QTest::ignoreMessage(QtCriticalMsg, QRegularExpression("^X11HotkeyApi\\.register: "));
        manager.registerHotkey(7, {0x34, modifier_bits::kCommand}, [] {});
        QVERIFY(!manager.isRegistered(7));
    }

    void keyNamesFollowTheServerLayout() {
        // Through the server's own keymap: the Y position types Z on a German keyboard.
        const KeyNameProvider names(layouts_, translator_);
        QVERIFY(session_.run("setxkbmap", {"de"}));
        QCOMPARE(names.getName(kKeyY), QStringLiteral("Z"));
        QVERIFY(session_.run("setxkbmap", {"us"}));
        QCOMPARE(names.getName(kKeyY), QStringLiteral("Y"));
    }

private:
    bool xdotool(const QStringList& arguments) { return session_.run("xdotool", arguments); }
    // Another client's grab of the combination: the X error code, or 0 when it succeeded.
    static int grab(const XcbClient& client, std::uint32_t macKeyCode, std::uint16_t modifiers) {
        const auto key = static_cast<xcb_keycode_t>(*KeyCodeTable::x11KeycodeFromMac(macKeyCode));
        const auto error = owned(xcb_request_check(
            client.get(), xcb_grab_key_checked(client.get(), 0, client.root(), modifiers, key,
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC)));
        return error ? error->error_code : 0;
    }
    // Whether a third client would be refused the combination (its own grab goes with it).
    bool isHeldByAnotherClient(std::uint32_t macKeyCode, std::uint16_t modifiers) {
        return grab(XcbClient(display_.constData()), macKeyCode, modifiers) == kBadAccess;
    }

    X11TestSession& session_;
    QByteArray display_;
    X11EventTapApi api_{display_.constData()};
    ManualScheduler scheduler_;
    NotificationCenter center_;
    XkbKeyboardLayoutProvider layouts_{display_.constData()};
    XkbKeyTranslator translator_;
};

int main(int argc, char** argv) {
    return runX11Test<X11InputTest>(argc, argv);
}

#include "tst_x11_input.moc"
