#include "core/input/hotkey_formatter.h"
#include "core/policies/privacy_permission_policy.h"
#include "core/policies/quick_start_guide.h"
#include "core/policies/status_menu_order.h"
#include "core/policies/update_policy.h"

#include <QTest>
#include <map>

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
    std::map<std::uint32_t, QString> keys{
        {14, "e"}, {0, "a"}, {50, "`"}, {27, QString::fromUtf8("ß")}};
    std::optional<QString> translate(std::uint32_t keyCode, const KeyboardLayout&) const override {
        const auto it = keys.find(keyCode);
        return it == keys.end() ? std::nullopt : std::optional(it->second);
    }
};

class RecordingRunner final : public CommandRunner {
public:
    int status = 0;
    QStringList calls;
    int run(const QString& executable, const QStringList& arguments) override {
        calls << executable + ' ' + arguments.join(' ');
        return status;
    }
};

QStringList titlesOf(const std::vector<StatusMenuRow>& rows) {
    QStringList titles;
    for (const auto& row : rows) {
        titles << (row.isSeparator() ? QStringLiteral("---") : row.title);
    }
    return titles;
}

} // namespace

class ShellRulesTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void modifierMapping_data() {
        QTest::addColumn<uint>("flags");
        QTest::addColumn<uint>("mask");
        QTest::newRow("command") << 0x00100000u << 256u;
        QTest::newRow("command shift") << 0x00120000u << 768u;
        QTest::newRow("option control") << 0x000C0000u << 6144u;
        QTest::newRow("caps lock, fn and device bits ignored")
            << (0x00010000u | 0x00800000u | 0x108u) << 0u;
        QTest::newRow("all four") << 0x001E0000u << (256u | 512u | 2048u | 4096u);
    }
    void modifierMapping() {
        QFETCH(uint, flags);
        QFETCH(uint, mask);
        QCOMPARE(uint(ModifierMapper::toCarbonModifiers(flags)), mask);
        QCOMPARE(uint(ModifierMapper::toCarbonModifiers(ModifierMapper::toEventFlags(mask))), mask);
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
        both("not set", Hotkey(), "Not set", "Not set");
        both("command shift E", Hotkey({14, 768}), "⌘ + ⇧ + E", "Super + Shift + E");
        both("fixed order", Hotkey({0, 4096 | 512 | 2048 | 256}), "⌘ + ⌥ + ⌃ + ⇧ + A",
             "Super + Ctrl + Alt + Shift + A");
        both("control option M", Hotkey({46, 4096 | 2048}), "⌥ + ⌃ + Key 46",
             "Ctrl + Alt + Key 46");
        both("space alone", Hotkey({49, 0}), "Space", "Space");
        both("return", Hotkey({36, 256}), "⌘ + ↩", "Super + Return");
        both("arrow", Hotkey({126, 0}), "↑", "Up");
        both("escape", Hotkey({53, 0}), "⎋", "Escape");
        both("no character: key number", Hotkey({122, 0}), "Key 122", "Key 122");
        both("upper-cased by the layout", Hotkey({27, 0}), "SS", "SS");
        both("beyond 16 bits", Hotkey({70000, 0}), "Key 70000", "Key 70000");
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

    // One helper decides every modifier word; this build uses its platform's.
    void platformWords() {
        const PlatformWords mac(WordStyle::MacOS);
        const PlatformWords linux_(WordStyle::Linux);
#if defined(Q_OS_MACOS)
        QCOMPARE(PlatformWords::current().style(), WordStyle::MacOS);
#else
        QCOMPARE(PlatformWords::current().style(), WordStyle::Linux);
#endif
        QStringList macBoxes;
        QStringList linuxBoxes;
        for (const std::uint32_t bit : PlatformWords::settingsOrder()) {
            macBoxes << mac.modifierName(bit);
            linuxBoxes << linux_.modifierName(bit);
        }
        QCOMPARE(macBoxes, (QStringList{"Command", "Shift", "Option", "Control"}));
        QCOMPARE(linuxBoxes, (QStringList{"Super", "Shift", "Alt", "Ctrl"}));
        QCOMPARE(mac.modifierName(1), QString());
        QCOMPARE(mac.heldCombination(768), QString::fromUtf8("⌘⇧"));
        QCOMPARE(linux_.heldCombination(768), QStringLiteral("Super+Shift"));
        QCOMPARE(mac.statusIconName(), QStringLiteral("menu bar icon"));
        QCOMPARE(linux_.statusIconName(), QStringLiteral("tray icon"));
        QVERIFY(mac.launchAtLoginRequirement().contains("application bundle"));
        QVERIFY(linux_.launchAtLoginRequirement().contains("installed Paneforge"));
        // The quick start guide says which keys to hold in the same words.
        QVERIFY(QuickStartGuide::pagesIn(mac).back().body.startsWith(
            QString::fromUtf8("Hold ⌘ and drag a window onto a zone. Hold ⌘⇧ to snap")));
        QVERIFY(QuickStartGuide::pagesIn(linux_).back().body.startsWith(
            "Hold Super and drag a window onto a zone. Hold Super+Shift to snap"));
        QCOMPARE(QuickStartGuide::pages(), QuickStartGuide::pagesIn(PlatformWords::current()));
    }

    void statusMenu() {
        // The agent's own rows are checked in the status item test; here the separator rules.
        QCOMPARE(titlesOf(statusMenuRows({"A"}, {}, {"H"}, "U", "About", "Q")),
                 (QStringList{"A", "---", "H", "U", "About", "---", "Q"}));
        QCOMPARE(titlesOf(statusMenuRows({}, {}, {}, "U", "About", "Q")),
                 (QStringList{"U", "About", "---", "Q"}));
        for (const auto& title : paneforgeActionTitles() + paneforgeSettingTitles()) {
            QVERIFY2(!title.contains("..."), qPrintable(title));
        }
    }

    void privacySteps_data() {
        QTest::addColumn<bool>("trusted");
        QTest::addColumn<bool>("granted");
        QTest::addColumn<int>("step");
        QTest::addColumn<QString>("anchor");
        QTest::newRow("nothing") << false << false << int(PrivacyCoachStep::Accessibility)
                                 << "Privacy_Accessibility";
        QTest::newRow("only accessibility")
            << true << false << int(PrivacyCoachStep::ListenEvent) << "Privacy_ListenEvent";
        QTest::newRow("both") << true << true << int(PrivacyCoachStep::Ready)
                              << "Privacy_Accessibility";
    }
    void privacySteps() {
        QFETCH(bool, trusted);
        QFETCH(bool, granted);
        QFETCH(int, step);
        QFETCH(QString, anchor);
        namespace P = PrivacyPermissionPolicy;
        const auto current = P::currentStep(trusted, granted);
        QCOMPARE(int(current), step);
        QVERIFY(P::settingsURLString(current).endsWith(anchor));
        QCOMPARE(P::settingsURLString(!trusted, !granted), P::settingsURLString(current));
        QCOMPARE(P::shouldPresentCoach(trusted, granted), current != PrivacyCoachStep::Ready);
        QCOMPARE(P::shouldDismissCoach(trusted, granted), current == PrivacyCoachStep::Ready);
        QCOMPARE(P::coachTitle(current).isEmpty(), current == PrivacyCoachStep::Ready);
    }

    void tccResetOnlyForAStaleGrant() {
        RecordingRunner runner;
        TccResetService reset(runner, "app.test");
        QVERIFY(!reset.resetStaleGrantIfNeeded(PrivacyTccService::Accessibility, true));
        QVERIFY(runner.calls.isEmpty());
        QVERIFY(reset.resetStaleGrantIfNeeded(PrivacyTccService::ListenEvent, false));
        QCOMPARE(runner.calls, QStringList{"/usr/bin/tccutil reset ListenEvent app.test"});
        runner.status = 1;
        QVERIFY(!reset.runReset(PrivacyTccService::Accessibility));
    }

    void updaterStartsOnlyFromABundle_data() {
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("starts");
        QTest::newRow("bundle") << "/Applications/Paneforge.app" << true;
        QTest::newRow("any case") << "/Applications/Paneforge.App" << true;
        QTest::newRow("trailing slash") << "/Applications/Paneforge.app/" << true;
        QTest::newRow("bare executable") << "/usr/bin/paneforge" << false;
        QTest::newRow("other extension") << "/tmp/Paneforge.application" << false;
        QTest::newRow("hidden file named app") << "/tmp/.app" << false;
    }
    void updaterStartsOnlyFromABundle() {
        QFETCH(QString, path);
        QFETCH(bool, starts);
        QCOMPARE(UpdaterLaunchPolicy::shouldStartUpdater(path), starts);
    }
};

QTEST_APPLESS_MAIN(ShellRulesTest)
#include "tst_shell_rules.moc"
