#include "app/input/event_tap_manager.h"
#include "app/input/hotkey_manager.h"
#include "app/runtime/notification_center.h"
#include "app/runtime/qt_scheduler.h"
#include "core/input/hotkey_formatter.h"
#include "core/input/key_code_table.h"
#include "manual_scheduler.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_space.h"
#include "platform/x11/x11_event_tap_api.h"
#include "platform/x11/x11_hotkey_api.h"
#include "platform/x11/x11_modifier_bits.h"
#include "platform/x11/x11_modifier_tracker.h"
#include "platform/x11/x11_window_service.h"
#include "platform/x11/xcb_client.h"
#include "platform/x11/xkb_keyboard_layout.h"
#include "x11_test_session.h"

#include <QRegularExpression>
#include <QTest>
#include <cstdlib>

using namespace paneforge;

namespace {
constexpr std::uint32_t kCommand = ModifierMapper::kCommandFlag;
constexpr std::uint32_t kShift = ModifierMapper::kShiftFlag;

// Event kinds in order, each flags change with its flags, runs of drags folded into one.
QStringList sequence(const QList<InputEvent>& events) {
    QStringList kinds;
    for (const auto& event : events) {
        const QString kind = event.type == InputEvent::FlagsChanged
                                 ? QStringLiteral("flags(0x%1)").arg(event.flags, 0, 16)
                             : event.type == InputEvent::LeftMouseDown    ? "down"
                             : event.type == InputEvent::LeftMouseUp      ? "up"
                             : event.type == InputEvent::LeftMouseDragged ? "drag"
                                                                          : "other";
        if (kind != "drag" || kinds.isEmpty() || kinds.last() != kind) {
            kinds << kind;
        }
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
constexpr std::uint32_t kKeyK = 0x28;
constexpr std::uint8_t kBadAccess = 10;

// A hot-key manager over its own connection to the server, with the lines it logs.
struct Hotkeys {
    explicit Hotkeys(const QByteArray& display)
        : api(display.constData()) {}
    X11HotkeyApi api;
    QtScheduler scheduler;
    QStringList log;
    HotkeyManager manager{api, scheduler, [this](const QString& line) { log << line; }};
};
} // namespace

// The keyboard and the pointer on a real server with openbox, driven by xdotool.
// EventTapManager over X11EventTapApi: a title-bar drag of xlogo is the window manager's pointer
// grab, through which raw events must keep coming; xdotool's absolute moves are warps, which make
// no raw motion, relative moves do. Global hot keys through HotkeyManager and X11HotkeyApi. The
// keyboard as the server describes it: modifier bits from its modifier mapping, key names from
// its XKB layout, switched at run time with setxkbmap.
class X11InputTest : public QObject {
    Q_OBJECT

public:
    explicit X11InputTest(X11TestSession& session)
        : session_(session)
        , display_(session.display().toLatin1()) {}

private:
    bool xdotool(const QStringList& arguments) { return session_.run("xdotool", arguments); }

    static DesktopPoint desktop(QPoint root) { return X11DesktopSpace::toDesktop(QPointF(root)); }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY(connection_.isValid());
        QString error;
        const auto logo = session_.startClient("xlogo", {"-geometry", "300x200+400+300"}, &error);
        QVERIFY2(logo, qPrintable(error));
        logo_ = *logo;
        // openbox binds Super+D among others; wait until its key grabs are in place.
        QVERIFY(X11TestSession::waitUntil(
            [&] { return isHeldByAnotherClient(x11Key(mac_key_codes::kD), XCB_MOD_MASK_4); }));
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

        // Each step waits for its event, as a hand would: raw events carry no state, so the tap
        // reads pointer and modifiers when it handles them.
        QStringList expected;
        const auto arrived = [&](const QStringList& more) {
            expected += more;
            return QTest::qWaitFor([&] { return sequence(events) == expected; }, 10000);
        };
        QVERIFY(xdotool({"mousemove", QString::number(start.x()), QString::number(start.y()),
                         "mousedown", "1"}));
        QVERIFY2(arrived({"down"}), qPrintable(sequence(events).join(' ')));
        QCOMPARE(events.last().location, desktop(start));
        QCOMPARE(events.last().flags, 0u);

        QVERIFY(xdotool({"mousemove_relative", "--", "12", "9"}));
        QVERIFY2(arrived({"drag"}), qPrintable(sequence(events).join(' ')));
        QCOMPARE(events.last().location, desktop(session_.pointer()));
        QCOMPARE(events.last().flags, 0u);

        QVERIFY(xdotool({"keydown", "super"}));
        QVERIFY2(arrived({"flags(0x100000)"}), qPrintable(sequence(events).join(' ')));
        QCOMPARE(events.last().flags, kCommand);
        QCOMPARE(ModifierMapper::toCarbonModifiersFromEventFlags(events.last().flags),
                 modifier_bits::kCommand);

        QVERIFY(xdotool({"mousemove_relative", "--", "15", "11"}));
        QVERIFY2(arrived({"drag"}), qPrintable(sequence(events).join(' ')));
        QCOMPARE(events.last().flags, kCommand); // a drag with the combination held

        const QPoint release = session_.pointer();
        QVERIFY(xdotool({"mouseup", "1"}));
        QVERIFY2(arrived({"up"}), qPrintable(sequence(events).join(' ')));
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
        QVERIFY2(arrived({"flags(0x0)", "flags(0x20000)", "flags(0x0)"}),
                 qPrintable(sequence(events).join(' ')));
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
    // Another client's grab of the combination, as a second program would hold it: the X error
    // code, or 0 when it succeeded.
    static int grab(const XcbClient& client, std::uint32_t x11Keycode, std::uint16_t modifiers) {
        auto* error = xcb_request_check(
            client.get(), xcb_grab_key_checked(client.get(), 0, client.root(), modifiers,
                                               static_cast<xcb_keycode_t>(x11Keycode),
                                               XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
        const int code = error ? error->error_code : 0;
        std::free(error);
        return code;
    }
    // Whether a third client would be refused the combination (its own grab goes with it).
    bool isHeldByAnotherClient(std::uint32_t x11Keycode, std::uint16_t modifiers) {
        return grab(XcbClient(display_.constData()), x11Keycode, modifiers) == kBadAccess;
    }

    // Presses `keys` ("shift+e ctrl+alt+k") one after another.
    bool press(const QString& keys) { return xdotool(QStringList{"key"} + keys.split(' ')); }

    static std::uint32_t x11Key(std::uint32_t macKeyCode) {
        return *KeyCodeTable::x11KeycodeFromMac(macKeyCode);
    }

private Q_SLOTS:

    void pressedHotKeyReachesItsCallback() {
        Hotkeys hotkeys(display_);
        QVERIFY(hotkeys.api.isConnected());
        HotkeyManager& manager = hotkeys.manager;
        int editor = 0;
        int next = 0;
        const std::uint32_t commandShift = modifier_bits::kCommand | modifier_bits::kShift;
        const std::uint32_t controlOption = modifier_bits::kControl | modifier_bits::kOption;
        manager.registerHotkey(1, {mac_key_codes::kE, commandShift}, [&] { ++editor; });
        manager.registerHotkey(5, {kKeyK, controlOption}, [&] { ++next; });
        QVERIFY(manager.isRegistered(1));
        QVERIFY(manager.isRegistered(5));
        // Our grabs are real: another client is refused the same combination.
        QVERIFY(
            isHeldByAnotherClient(x11Key(mac_key_codes::kE), XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT));

        QVERIFY(press("super+shift+e"));
        QTRY_COMPARE_WITH_TIMEOUT(editor, 1, 10000);
        QVERIFY(hotkeys.log.contains("HotkeyManager triggered (id=1)"));

        // Num Lock and Caps Lock held do not disable a hot key.
        QVERIFY(press("Num_Lock Caps_Lock super+shift+e"));
        QTRY_COMPARE_WITH_TIMEOUT(editor, 2, 10000);
        QVERIFY(press("Num_Lock Caps_Lock"));

        // Other modifiers are another combination. The server delivers in order, so once the
        // later hot key arrived the earlier press would have too.
        QVERIFY(press("shift+e ctrl+alt+k"));
        QTRY_COMPARE_WITH_TIMEOUT(next, 1, 10000);
        QCOMPARE(editor, 2);

        // Unregistered, the key triggers nothing and the combination is free again.
        manager.unregister(1);
        QVERIFY(
            !isHeldByAnotherClient(x11Key(mac_key_codes::kE), XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT));
        QVERIFY(press("super+shift+e ctrl+alt+k"));
        QTRY_COMPARE_WITH_TIMEOUT(next, 2, 10000);
        QCOMPARE(editor, 2);
    }

    void combinationOfAnotherClientIsRefused() {
        // Another program holds Super+Y with Caps Lock only: the plain variant succeeds first,
        // the refusal of a later one must release it again.
        auto other = std::make_unique<XcbClient>(display_.constData());
        QCOMPARE(grab(*other, x11Key(kKeyY), XCB_MOD_MASK_4 | XCB_MOD_MASK_LOCK), 0);

        Hotkeys hotkeys(display_);
        HotkeyManager& manager = hotkeys.manager;
        int refused = 0;
        int accepted = 0;
        QTest::ignoreMessage(QtCriticalMsg,
                             QRegularExpression("^X11HotkeyApi\\.register: keyCode=16 "
                                                "modifiers=256 .*already grabbed by another "
                                                "client \\(BadAccess\\); hot key id=4 not"));
        manager.registerHotkey(4, {kKeyY, modifier_bits::kCommand}, [&] { ++refused; });
        QVERIFY(!manager.isRegistered(4));
        QVERIFY(manager.hasCallback(4));
        QVERIFY(hotkeys.log.contains("RegisterEventHotKey failed: BadAccess (id=4)"));
        QVERIFY(!isHeldByAnotherClient(x11Key(kKeyY), XCB_MOD_MASK_4));

        // Other ids are unaffected.
        manager.registerHotkey(6, {kKeyY, modifier_bits::kCommand | modifier_bits::kControl},
                               [&] { ++accepted; });
        QVERIFY(manager.isRegistered(6));
        QVERIFY(press("super+ctrl+y"));
        QTRY_COMPARE_WITH_TIMEOUT(accepted, 1, 10000);
        QCOMPARE(refused, 0);

        // Once the other client is gone the combination registers and works.
        other.reset();
        manager.registerHotkey(4, {kKeyY, modifier_bits::kCommand}, [&] { ++refused; });
        QVERIFY(manager.isRegistered(4));
        QVERIFY(press("super+y"));
        QTRY_COMPARE_WITH_TIMEOUT(refused, 1, 10000);
    }

    void keysWithoutAnXKeyAreRefused() {
        Hotkeys hotkeys(display_);
        QTest::ignoreMessage(
            QtCriticalMsg, "X11HotkeyApi.register: keyCode=52 has no key on this keyboard (id=7)");
        hotkeys.manager.registerHotkey(7, {0x34, modifier_bits::kCommand}, [] {});
        QVERIFY(!hotkeys.manager.isRegistered(7));
        QVERIFY(hotkeys.log.contains("RegisterEventHotKey failed: no such key (id=7)"));
    }

    void eachPressTriggersOnce() {
        Hotkeys hotkeys(display_);
        HotkeyManager& manager = hotkeys.manager;
        int f5 = 0;
        int k = 0;
        manager.registerHotkey(8, {0x60 /* F5 */, modifier_bits::kControl}, [&] { ++f5; });
        manager.registerHotkey(9, {kKeyK, modifier_bits::kControl}, [&] { ++k; });
        // The release, the modifier's own events and the four grabbed lock variants add nothing.
        QVERIFY(session_.run("xdotool", {"keydown", "ctrl+F5", "keyup", "F5", "keydown", "F5",
                                         "keyup", "ctrl+F5", "key", "ctrl+k"}));
        QTRY_COMPARE_WITH_TIMEOUT(k, 1, 10000);
        QCOMPARE(f5, 2);
        QVERIFY(press("ctrl+F5 ctrl+k"));
        QTRY_COMPARE_WITH_TIMEOUT(k, 2, 10000);
        QCOMPARE(f5, 3);
    }

private:
    std::optional<QString> keyName(std::uint32_t keyCode) {
        const auto layout = layouts_.currentLayout();
        if (!layout) {
            return std::nullopt;
        }
        return translator_.translate(keyCode, *layout);
    }

private Q_SLOTS:
    void modifierBitsComeFromTheServerMapping() {
        QVERIFY(connection_.isValid());
        const auto bits = X11ModifierBits::read(connection_.raw());
        // The default keymap: Alt on Mod1, Num Lock on Mod2, Super on Mod4.
        QCOMPARE(bits.alt, std::uint16_t{XCB_MOD_MASK_1});
        QCOMPARE(bits.numLock, std::uint16_t{XCB_MOD_MASK_2});
        QCOMPARE(bits.super, std::uint16_t{XCB_MOD_MASK_4});
        QCOMPARE(bits.toModifierMask(XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_LOCK |
                                     XCB_MOD_MASK_2 | XCB_BUTTON_MASK_1),
                 modifier_bits::kCommand | modifier_bits::kShift);
        QCOMPARE(bits.toModifierMask(XCB_MOD_MASK_1 | XCB_MOD_MASK_CONTROL),
                 modifier_bits::kOption | modifier_bits::kControl);
        QCOMPARE(bits.toXModifiers(modifier_bits::kCommand | modifier_bits::kShift |
                                   modifier_bits::kOption | modifier_bits::kControl),
                 std::uint16_t{XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT | XCB_MOD_MASK_1 |
                               XCB_MOD_MASK_CONTROL});
    }

    void modifierBitsFollowARemappedServer() {
        // Super moved to Mod3: grabs and masks must use the server's bit, not the usual one.
        QVERIFY(session_.run("xmodmap", {"-e", "remove mod4 = Super_L Super_R", "-e",
                                         "add mod3 = Super_L Super_R"}));
        const auto bits = X11ModifierBits::read(connection_.raw());
        QVERIFY(session_.run("xmodmap", {"-e", "remove mod3 = Super_L Super_R", "-e",
                                         "add mod4 = Super_L Super_R"}));
        QCOMPARE(bits.super, std::uint16_t{XCB_MOD_MASK_3});
        QCOMPARE(bits.toModifierMask(XCB_MOD_MASK_3), modifier_bits::kCommand);
        QCOMPARE(bits.toModifierMask(XCB_MOD_MASK_4), 0u);
    }

    // Through the server's own keymap: the names check the key code table as well.
    void keyNamesFollowTheServerLayout_data() {
        QTest::addColumn<QList<quint32>>("keyCodes");
        QTest::addColumn<QString>("names"); // one character a key; "." for no text
        QTest::newRow("letters A to Z")
            << QList<quint32>{0x00, 0x0B, 0x08, 0x02, 0x0E, 0x03, 0x05, 0x04, 0x22,
                              0x26, 0x28, 0x25, 0x2E, 0x2D, 0x1F, 0x23, 0x0C, 0x0F,
                              0x01, 0x11, 0x20, 0x09, 0x0D, 0x07, 0x10, 0x06}
            << "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
        QTest::newRow("digits") << QList<quint32>{0x12, 0x13, 0x14, 0x15, 0x17,
                                                  0x16, 0x1A, 0x1C, 0x19, 0x1D}
                                << "1234567890";
        QTest::newRow("punctuation")
            << QList<quint32>{0x1B, 0x18, 0x21, 0x1E, 0x29, 0x27, 0x32, 0x2A, 0x2B, 0x2F, 0x2C}
            << R"(-=[];'`\,./)";
        // Keypad 5 with Num Lock off is KP_Begin; 0x34 is no key at all.
        QTest::newRow("no text") << QList<quint32>{0x57, 0x7A, 0x30, 0x33, 0x34} << ".....";
    }
    void keyNamesFollowTheServerLayout() {
        QFETCH(QList<quint32>, keyCodes);
        QFETCH(QString, names);
        QVERIFY(layouts_.isConnected());
        QString typed;
        for (const quint32 keyCode : keyCodes) {
            const auto name = keyName(keyCode);
            QVERIFY(!name || name->size() == 1);
            typed += name.value_or(QStringLiteral("."));
        }
        QCOMPARE(typed, names);
    }

    void hotKeyTextsUseTheLayout() {
        // In the Linux words: Super, not ⌘.
        const KeyNameProvider names(layouts_, translator_);
        const HotkeyFormatter formatter(names);
        QCOMPARE(formatter.format(
                     HotkeyDefinition{0x0E, modifier_bits::kCommand | modifier_bits::kShift}),
                 QStringLiteral("Super + Shift + E"));
        QCOMPARE(formatter.format(
                     HotkeyDefinition{0x2E, modifier_bits::kControl | modifier_bits::kOption}),
                 QStringLiteral("Ctrl + Alt + M"));
        QCOMPARE(names.getName(0x7A), QStringLiteral("Key 122")); // F1 types nothing
    }

    void keyNamesFollowALayoutSwitch() {
        QVERIFY(session_.run("setxkbmap", {"de"}));
        // The Y position types Z on a German keyboard, the semicolon position Ö.
        QCOMPARE(keyName(0x10).value_or(QString()), QStringLiteral("Z"));
        QCOMPARE(keyName(0x29).value_or(QString()), QString::fromUtf8("\u00D6"));
        QVERIFY(session_.run("setxkbmap", {"us"}));
        QCOMPARE(keyName(0x10).value_or(QString()), QStringLiteral("Y"));
        QCOMPARE(keyName(0x29).value_or(QString()), QStringLiteral(";"));
    }

    void translatorRefusesForeignLayouts() {
        const KeyboardLayout foreign;
        QCOMPARE(translator_.translate(0x0E, foreign), std::nullopt);
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
    XkbKeyboardLayoutProvider layouts_{display_.constData()};
    XkbKeyTranslator translator_;
};

int main(int argc, char** argv) {
    return runX11Test<X11InputTest>(argc, argv);
}

#include "tst_x11_input.moc"
