#include "core/input/hotkey_formatter.h"
#include "core/input/key_code_table.h"
#include "core/policies/quick_start_guide.h"
#include "core/policies/update_policy.h"

#include <QTest>
#include <map>
#include <set>

using namespace paneforge;

Q_DECLARE_METATYPE(paneforge::WordStyle)

namespace {

// A US-like layout for the letters it knows; the key codes are macOS virtual key codes.
class FakeLayoutProvider final : public KeyboardLayoutProvider {
public:
    bool available = true;
    std::shared_ptr<const KeyboardLayout> currentLayout() const override {
        return available ? std::make_shared<KeyboardLayout>() : nullptr;
    }
};

class FakeTranslator final : public KeyboardKeyTranslator {
public:
    std::map<std::uint32_t, QString> keys{{14, "e"}, {0, "a"}, {27, QString::fromUtf8("ß")}};
    std::optional<QString> translate(std::uint32_t keyCode, const KeyboardLayout&) const override {
        const auto it = keys.find(keyCode);
        return it == keys.end() ? std::nullopt : std::optional(it->second);
    }
};

} // namespace

class ShellRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void modifierMapping() {
        const uint all = 256 | 512 | 2048 | 4096;
        QCOMPARE(uint(ModifierMapper::toCarbonModifiers(0x001E0000u)), all);
        QCOMPARE(uint(ModifierMapper::toCarbonModifiers(ModifierMapper::toEventFlags(all))), all);
        // Caps lock, fn and the device bits are no modifiers of a combination.
        QCOMPARE(uint(ModifierMapper::toCarbonModifiers(0x00010000u | 0x00800000u | 0x108u)), 0u);
    }

    // Every entry maps both ways, each code once; keys that type no text are checked against the
    // kernel's KEY_* and the macOS kVK_* values (the X11 keyboard test checks the others by the
    // names the server gives them).
    void keyCodeTable() {
        std::set<std::uint32_t> macCodes;
        std::set<std::uint32_t> evdevCodes;
        for (const auto& entry : KeyCodeTable::entries()) {
            QVERIFY2(macCodes.insert(entry.macKeyCode).second &&
                         evdevCodes.insert(entry.evdevCode).second,
                     qPrintable(QString::number(entry.macKeyCode)));
            QCOMPARE(KeyCodeTable::macFromEvdev(*KeyCodeTable::evdevFromMac(entry.macKeyCode)),
                     entry.macKeyCode);
            QCOMPARE(KeyCodeTable::evdevFromMac(*KeyCodeTable::macFromEvdev(entry.evdevCode)),
                     entry.evdevCode);
            QCOMPARE(
                KeyCodeTable::macFromX11Keycode(*KeyCodeTable::x11KeycodeFromMac(entry.macKeyCode)),
                entry.macKeyCode);
        }
        // Return, Escape, F1, F13, left, up, keypad 0, keypad enter, command: mac, evdev...
        const std::uint32_t pairs[] = {0x24, 28,   0x35, 1,    0x7A, 59,   0x69, 183,  0x7B,
                                       105,  0x7E, 103,  0x52, 82,   0x4C, 96,   0x37, 125};
        for (std::size_t i = 0; i < std::size(pairs); i += 2) {
            QCOMPARE(KeyCodeTable::evdevFromMac(pairs[i]), std::optional(pairs[i + 1]));
            QCOMPARE(KeyCodeTable::x11KeycodeFromMac(pairs[i]), std::optional(pairs[i + 1] + 8));
        }
        QCOMPARE(KeyCodeTable::evdevFromMac(0x34), std::nullopt); // no key there on any Mac
        QCOMPARE(KeyCodeTable::macFromX11Keycode(8), std::nullopt);
        for (std::uint32_t code = 0x36; code <= 0x3F; ++code) {
            QVERIFY2(KeyCodeTable::isModifierKey(code), qPrintable(QString::number(code)));
        }
        QVERIFY(!KeyCodeTable::isModifierKey(0x40)); // F17, next to Function
    }

    void hotkeyTexts_data() {
        using Hotkey = std::optional<HotkeyDefinition>;
        QTest::addColumn<Hotkey>("hotkey");
        QTest::addColumn<WordStyle>("style");
        QTest::addColumn<QString>("text");
        const auto both = [](const char* name, Hotkey hotkey, const char* mac, const char* linux_) {
            QTest::addRow("%s, macOS", name)
                << hotkey << WordStyle::MacOS << QString::fromUtf8(mac);
            QTest::addRow("%s, Linux", name)
                << hotkey << WordStyle::Linux << QString::fromUtf8(linux_);
        };
        both("fixed order", Hotkey({0, 4096 | 512 | 2048 | 256}), "⌘ + ⌥ + ⌃ + ⇧ + A",
             "Super + Ctrl + Alt + Shift + A");
        both("space alone", Hotkey({49, 0}), "Space", "Space");
        both("arrow", Hotkey({126, 0}), "↑", "Up");
        both("no character: key number", Hotkey({122, 0}), "Key 122", "Key 122");
        both("upper-cased by the layout", Hotkey({27, 0}), "SS", "SS");
    }
    void hotkeyTexts() {
        QFETCH(std::optional<HotkeyDefinition>, hotkey);
        QFETCH(WordStyle, style);
        QFETCH(QString, text);
        FakeLayoutProvider layouts;
        FakeTranslator translator;
        const PlatformWords words(style);
        const KeyNameProvider names(layouts, translator, words);
        QCOMPARE(HotkeyFormatter(names, words).format(hotkey), text);
    }

    void keyNamesWithoutALayout() {
        FakeLayoutProvider layouts;
        layouts.available = false;
        FakeTranslator translator;
        QCOMPARE(KeyNameProvider(layouts, translator).getName(14), QStringLiteral("Key 14"));
    }

    // The Linux modifier words; the macOS ones are checked in the preferences form's test.
    void platformWords() {
        const PlatformWords mac(WordStyle::MacOS);
        const PlatformWords linux_(WordStyle::Linux);
        QStringList linuxBoxes;
        for (const std::uint32_t bit : PlatformWords::settingsOrder()) {
            linuxBoxes << linux_.modifierName(bit);
        }
        QCOMPARE(linuxBoxes, (QStringList{"Super", "Shift", "Alt", "Ctrl"}));
        // The quick start guide says which keys to hold in the same words.
        QVERIFY(QuickStartGuide::pagesIn(mac).back().body.startsWith(
            QString::fromUtf8("Hold ⌘ and drag a window onto a zone. Hold ⌘⇧ to snap")));
        QVERIFY(QuickStartGuide::pagesIn(linux_).back().body.startsWith(
            "Hold Super and drag a window onto a zone. Hold Super+Shift to snap"));
    }

    void updaterStartsOnlyFromABundle() {
        QVERIFY(UpdaterLaunchPolicy::shouldStartUpdater("/Applications/Paneforge.app"));
        QVERIFY(UpdaterLaunchPolicy::shouldStartUpdater("/Applications/Paneforge.app/"));
        QVERIFY(!UpdaterLaunchPolicy::shouldStartUpdater("/usr/bin/paneforge"));
        QVERIFY(!UpdaterLaunchPolicy::shouldStartUpdater("/tmp/Paneforge.application"));
        QVERIFY(!UpdaterLaunchPolicy::shouldStartUpdater("/tmp/.app"));
    }
};

QTEST_APPLESS_MAIN(ShellRulesTest)
#include "tst_shell_rules.moc"
