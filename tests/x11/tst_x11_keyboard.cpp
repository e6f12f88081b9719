#include "core/input/hotkey_formatter.h"
#include "platform/x11/x11_modifier_bits.h"
#include "platform/x11/xkb_keyboard_layout.h"
#include "x11_test_session.h"

#include <QTest>

using namespace paneforge;

// The keyboard as the X server describes it: modifier bits from its modifier mapping, key names
// from its XKB layout, switched at run time with setxkbmap.
class X11KeyboardTest : public QObject {
    Q_OBJECT

public:
    explicit X11KeyboardTest(X11TestSession& session)
        : session_(session)
        , display_(session.display().toLatin1()) {}

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
        xcb_connection_t* connection = xcb_connect(display_.constData(), nullptr);
        QVERIFY(!xcb_connection_has_error(connection));
        const auto bits = X11ModifierBits::read(connection);
        xcb_disconnect(connection);
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
        xcb_connection_t* connection = xcb_connect(display_.constData(), nullptr);
        const auto bits = X11ModifierBits::read(connection);
        xcb_disconnect(connection);
        QVERIFY(session_.run("xmodmap", {"-e", "remove mod3 = Super_L Super_R", "-e",
                                         "add mod4 = Super_L Super_R"}));
        QCOMPARE(bits.super, std::uint16_t{XCB_MOD_MASK_3});
        QCOMPARE(bits.toModifierMask(XCB_MOD_MASK_3), modifier_bits::kCommand);
        QCOMPARE(bits.toModifierMask(XCB_MOD_MASK_4), 0u);
    }

    void keyNamesFollowTheServerLayout_data() {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<QString>("name");
        QTest::newRow("E") << 0x0Eu << QStringLiteral("E");
        QTest::newRow("A") << 0x00u << QStringLiteral("A");
        QTest::newRow("1") << 0x12u << QStringLiteral("1");
        QTest::newRow("slash") << 0x2Cu << QStringLiteral("/");
        QTest::newRow("keypad 5") << 0x57u << QString(); // Num Lock off: KP_Begin, no text
        QTest::newRow("F1") << 0x7Au << QString();
        QTest::newRow("Tab") << 0x30u << QString();
        QTest::newRow("Delete") << 0x33u << QString();
        QTest::newRow("no such key") << 0x34u << QString();
    }
    void keyNamesFollowTheServerLayout() {
        QFETCH(quint32, keyCode);
        QFETCH(QString, name);
        QVERIFY(layouts_.isConnected());
        const auto translated = keyName(keyCode);
        QCOMPARE(translated.value_or(QString()), name);
        QCOMPARE(translated.has_value(), !name.isEmpty());
    }

    void hotKeyTextsUseTheLayout() {
        const KeyNameProvider names(layouts_, translator_);
        const HotkeyFormatter formatter(names);
        QCOMPARE(formatter.format(
                     HotkeyDefinition{0x0E, modifier_bits::kCommand | modifier_bits::kShift}),
                 QString::fromUtf8("\u2318 + \u21E7 + E"));
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
    XkbKeyboardLayoutProvider layouts_{display_.constData()};
    XkbKeyTranslator translator_;
};

int main(int argc, char** argv) {
    return runWithX11Session(argc, argv, {}, [&](X11TestSession& session) {
        X11KeyboardTest test(session);
        return QTest::qExec(&test, argc, argv);
    });
}

#include "tst_x11_keyboard.moc"
