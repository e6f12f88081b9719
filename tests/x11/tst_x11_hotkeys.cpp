#include "app/input/hotkey_manager.h"
#include "app/runtime/qt_scheduler.h"
#include "core/input/key_code_table.h"
#include "platform/x11/x11_hotkey_api.h"
#include "x11_test_session.h"

#include <QRegularExpression>
#include <QTest>
#include <cstdlib>

using namespace paneforge;

namespace {
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

// Global hot keys through HotkeyManager and X11HotkeyApi on a real server with openbox, pressed
// with xdotool.
class X11HotkeysTest : public QObject {
    Q_OBJECT

public:
    explicit X11HotkeysTest(X11TestSession& session)
        : session_(session)
        , display_(session.display().toLatin1()) {}

private:
    // Another client's connection to the server, as a second program would hold it.
    struct OtherClient {
        explicit OtherClient(const QByteArray& display)
            : connection(xcb_connect(display.constData(), nullptr))
            , root(xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root) {}
        ~OtherClient() { xcb_disconnect(connection); }
        OtherClient(const OtherClient&) = delete;
        OtherClient& operator=(const OtherClient&) = delete;

        // The X error code of the grab; 0 when it succeeded.
        int grab(std::uint32_t x11Keycode, std::uint16_t modifiers) {
            auto* error = xcb_request_check(
                connection, xcb_grab_key_checked(connection, 0, root, modifiers,
                                                 static_cast<xcb_keycode_t>(x11Keycode),
                                                 XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
            const int code = error ? error->error_code : 0;
            std::free(error);
            return code;
        }

        xcb_connection_t* connection;
        xcb_window_t root;
    };

    // Whether a third client would be refused the combination (its own grab goes with it).
    bool isHeldByAnotherClient(std::uint32_t x11Keycode, std::uint16_t modifiers) {
        OtherClient probe(display_);
        return probe.grab(x11Keycode, modifiers) == kBadAccess;
    }

    bool press(const QString& keys) { return session_.run("xdotool", {"key", keys}); }

    static std::uint32_t x11Key(std::uint32_t macKeyCode) {
        return *KeyCodeTable::x11KeycodeFromMac(macKeyCode);
    }

private Q_SLOTS:
    void initTestCase() {
        // openbox binds Super+D among others; wait until its key grabs are in place.
        QVERIFY(X11TestSession::waitUntil(
            [&] { return isHeldByAnotherClient(x11Key(mac_key_codes::kD), XCB_MOD_MASK_4); }));
    }

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
        QVERIFY(press("Num_Lock"));
        QVERIFY(press("Caps_Lock"));
        QVERIFY(press("super+shift+e"));
        QTRY_COMPARE_WITH_TIMEOUT(editor, 2, 10000);
        QVERIFY(press("Num_Lock"));
        QVERIFY(press("Caps_Lock"));

        // Other modifiers are another combination. The server delivers in order, so once the
        // later hot key arrived the earlier press would have too.
        QVERIFY(press("shift+e"));
        QVERIFY(press("ctrl+alt+k"));
        QTRY_COMPARE_WITH_TIMEOUT(next, 1, 10000);
        QCOMPARE(editor, 2);

        // Unregistered, the key triggers nothing and the combination is free again.
        manager.unregister(1);
        QVERIFY(
            !isHeldByAnotherClient(x11Key(mac_key_codes::kE), XCB_MOD_MASK_4 | XCB_MOD_MASK_SHIFT));
        QVERIFY(press("super+shift+e"));
        QVERIFY(press("ctrl+alt+k"));
        QTRY_COMPARE_WITH_TIMEOUT(next, 2, 10000);
        QCOMPARE(editor, 2);
    }

    void combinationOfAnotherClientIsRefused() {
        // Another program holds Super+Y with Caps Lock only: the plain variant succeeds first,
        // the refusal of a later one must release it again.
        auto other = std::make_unique<OtherClient>(display_);
        QCOMPARE(other->grab(x11Key(kKeyY), XCB_MOD_MASK_4 | XCB_MOD_MASK_LOCK), 0);

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
        QVERIFY(press("ctrl+F5"));
        QVERIFY(press("ctrl+k"));
        QTRY_COMPARE_WITH_TIMEOUT(k, 2, 10000);
        QCOMPARE(f5, 3);
    }

private:
    X11TestSession& session_;
    QByteArray display_;
};

int main(int argc, char** argv) {
    return runWithX11Session(argc, argv, {}, [&](X11TestSession& session) {
        X11HotkeysTest test(session);
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_x11_hotkeys.moc"
