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
    void knownKeys() {
        // Return, Tab, Space, Delete, forward delete, Escape; F1, F5, F12, F13; left, right, down,
        // up; keypad 0, 7, 8, enter, divide; command: mac, evdev, mac, evdev...
        const std::uint32_t pairs[] = {0x24, 28,  0x30, 15,  0x31, 57,  0x33, 14,  0x75, 111,
                                       0x35, 1,   0x7A, 59,  0x60, 63,  0x6F, 88,  0x69, 183,
                                       0x7B, 105, 0x7C, 106, 0x7D, 108, 0x7E, 103, 0x52, 82,
                                       0x59, 71,  0x5B, 72,  0x4C, 96,  0x4B, 98,  0x37, 125};
        for (std::size_t i = 0; i < std::size(pairs); i += 2) {
            const std::uint32_t mac = pairs[i];
            const std::uint32_t evdev = pairs[i + 1];
            QCOMPARE(KeyCodeTable::evdevFromMac(mac), std::optional(evdev));
            QCOMPARE(KeyCodeTable::macFromEvdev(evdev), std::optional(mac));
            QCOMPARE(KeyCodeTable::x11KeycodeFromMac(mac), std::optional(evdev + 8));
        }
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
