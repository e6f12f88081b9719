#include "core/input/hotkey_formatter.h"
#include "platform/x11/x11_connection.h"
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
    X11Connection connection_;
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
