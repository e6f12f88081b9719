#include "core/input/key_code_table.h"

#include <QTest>
#include <set>

using namespace paneforge;

class KeyCodeTableTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void everyEntryRoundTripsBothWays() {
        std::set<std::uint32_t> macCodes;
        std::set<std::uint32_t> evdevCodes;
        for (const auto& entry : KeyCodeTable::entries()) {
            QVERIFY2(macCodes.insert(entry.macKeyCode).second,
                     qPrintable(QStringLiteral("mac %1 twice").arg(entry.macKeyCode)));
            QVERIFY2(evdevCodes.insert(entry.evdevCode).second,
                     qPrintable(QStringLiteral("evdev %1 twice").arg(entry.evdevCode)));
            QCOMPARE(KeyCodeTable::macFromEvdev(*KeyCodeTable::evdevFromMac(entry.macKeyCode)),
                     entry.macKeyCode);
            QCOMPARE(KeyCodeTable::evdevFromMac(*KeyCodeTable::macFromEvdev(entry.evdevCode)),
                     entry.evdevCode);
            QCOMPARE(
                KeyCodeTable::macFromX11Keycode(*KeyCodeTable::x11KeycodeFromMac(entry.macKeyCode)),
                entry.macKeyCode);
        }
    }

    // Against the kernel's KEY_* values and the macOS kVK_* values, for keys that type no text
    // (the X11 keyboard test checks the others by the names the server gives them).
    void knownKeys_data() {
        QTest::addColumn<quint32>("mac");
        QTest::addColumn<quint32>("evdev");
        QTest::newRow("Return") << 0x24u << 28u;
        QTest::newRow("Tab") << 0x30u << 15u;
        QTest::newRow("Space") << 0x31u << 57u;
        QTest::newRow("Delete") << 0x33u << 14u;
        QTest::newRow("forward delete") << 0x75u << 111u;
        QTest::newRow("Escape") << 0x35u << 1u;
        QTest::newRow("F1") << 0x7Au << 59u;
        QTest::newRow("F5") << 0x60u << 63u;
        QTest::newRow("F12") << 0x6Fu << 88u;
        QTest::newRow("F13") << 0x69u << 183u;
        QTest::newRow("left") << 0x7Bu << 105u;
        QTest::newRow("right") << 0x7Cu << 106u;
        QTest::newRow("down") << 0x7Du << 108u;
        QTest::newRow("up") << 0x7Eu << 103u;
        QTest::newRow("keypad 0") << 0x52u << 82u;
        QTest::newRow("keypad 7") << 0x59u << 71u;
        QTest::newRow("keypad 8") << 0x5Bu << 72u;
        QTest::newRow("keypad enter") << 0x4Cu << 96u;
        QTest::newRow("keypad divide") << 0x4Bu << 98u;
        QTest::newRow("command") << 0x37u << 125u;
    }
    void knownKeys() {
        QFETCH(quint32, mac);
        QFETCH(quint32, evdev);
        QCOMPARE(KeyCodeTable::evdevFromMac(mac), std::optional<std::uint32_t>(evdev));
        QCOMPARE(KeyCodeTable::macFromEvdev(evdev), std::optional<std::uint32_t>(mac));
        QCOMPARE(KeyCodeTable::x11KeycodeFromMac(mac), std::optional<std::uint32_t>(evdev + 8));
    }

    void coversEveryKeyAHotKeyCanUse() {
        // Letters, digits and punctuation: the X11 keyboard test names each through the table.
        const std::uint32_t keys[] = {
            0x7A, 0x78, 0x63, 0x76, 0x60, 0x61, 0x62, 0x64, 0x65, 0x6D, 0x67, 0x6F, // F1-F12
            0x69, 0x6B, 0x71, 0x6A, 0x40, 0x4F, 0x50, 0x5A,                         // F13-F20
            0x7B, 0x7C, 0x7D, 0x7E,                                                 // arrows
            0x52, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59, 0x5B, 0x5C,             // keypad digits
            0x41, 0x43, 0x45, 0x4E, 0x4B, 0x4C, 0x51,                               // keypad others
            0x24, 0x30, 0x31, 0x33, 0x35};
        for (const auto code : keys) {
            QVERIFY2(KeyCodeTable::evdevFromMac(code), qPrintable(QString::number(code)));
        }
    }

    void unknownCodesHaveNoCounterpart() {
        QCOMPARE(KeyCodeTable::evdevFromMac(0x34), std::nullopt); // no key there on any Mac
        QCOMPARE(KeyCodeTable::evdevFromMac(0x1000), std::nullopt);
        QCOMPARE(KeyCodeTable::macFromEvdev(0), std::nullopt);
        QCOMPARE(KeyCodeTable::macFromX11Keycode(3), std::nullopt);
        QCOMPARE(KeyCodeTable::macFromX11Keycode(8), std::nullopt);
    }

    void modifierKeys() {
        for (const std::uint32_t code :
             {0x36, 0x37, 0x38, 0x39, 0x3A, 0x3B, 0x3C, 0x3D, 0x3E, 0x3F}) {
            QVERIFY2(KeyCodeTable::isModifierKey(code), qPrintable(QString::number(code)));
        }
        QVERIFY(!KeyCodeTable::isModifierKey(0x33));
        QVERIFY(!KeyCodeTable::isModifierKey(0x00));
        QVERIFY(!KeyCodeTable::isModifierKey(0x40)); // F17, next to Function
    }
};

QTEST_GUILESS_MAIN(KeyCodeTableTest)
#include "tst_key_code_table.moc"
