// The Qt preferences window on the offscreen platform, over the real window controller, the real
// PreferencesController and a configuration file in a temporary folder: each control saves its
// setting, the recorder takes key presses made in the window, and the form is laid out so that
// nothing is cut off (also at 200 %, tst_preferences_window_scaled).

#include "app/preferences/preferences_window_controller.h"
#include "platform_fakes.h"
#include "ui/preferences_window.h"
#include "ui/qt_view_factory.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QStyle>
#include <QStyleOptionButton>
#include <QTemporaryDir>
#include <QTest>

using namespace paneforge;

namespace {

// A keyboard whose E key types "e".
class Keyboard final : public KeyboardLayoutProvider, public KeyboardKeyTranslator {
public:
    std::shared_ptr<const KeyboardLayout> currentLayout() const override {
        return std::make_shared<KeyboardLayout>();
    }
    std::optional<QString> translate(std::uint32_t keyCode, const KeyboardLayout&) const override {
        return keyCode == 14 ? std::optional(QStringLiteral("e")) : std::nullopt;
    }
};

// A Qt key event as the platform delivers it: on X11 the native scan code is the X key code
// (evdev + 8); on macOS the native virtual key is the macOS key code and the native modifiers
// are NSEvent's flags.
struct NativeKey {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    quint32 x11Keycode, macKeyCode, macFlags;
};

QKeyEvent makeEvent(const NativeKey& k) {
    return QKeyEvent(QEvent::KeyPress, k.key, k.modifiers, k.x11Keycode, k.macKeyCode, k.macFlags);
}

const NativeKey kShiftAlone{Qt::Key_Shift, Qt::ShiftModifier, 50, 0x38, 0x00020000};
// Super is Qt's Meta on X11, the Command key.
const NativeKey kSuperShiftE{Qt::Key_E, Qt::MetaModifier | Qt::ShiftModifier, 26, 0x0E, 0x00120000};
const NativeKey kEscape{Qt::Key_Escape, {}, 9, 53, 0};

// A click on the box's indicator, where a person clicks: a wide box's centre may be past its text.
void tick(QCheckBox* box) {
    QStyleOptionButton option;
    option.initFrom(box);
    QTest::mouseClick(
        box, Qt::LeftButton, {},
        box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box).center());
}

struct Fixture {
    Fixture() {
        logins.applies = false; // launch at login is not for this copy
        store.saveConfig(PaneforgeConfig::makeDefault().withMoveToNextDisplayHotkey(
            HotkeyDefinition{46, modifier_bits::kControl | modifier_bits::kOption}));
        controller.show();
    }
    QDialog& dialog() {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<QDialog*>(widget);
                found && found->windowTitle() == PreferencesWindow::title()) {
                return *found;
            }
        }
        qFatal("no preferences window");
    }
    template <typename T = QWidget> T* control(const QString& name) {
        auto* found = dialog().findChild<T*>(name);
        if (!found) {
            qFatal("no control %s", qPrintable(name));
        }
        return found;
    }
    QString label(const QString& name) { return control<QLabel>(name)->text(); }
    void press(const NativeKey& k) {
        auto event = makeEvent(k);
        QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : &dialog();
        QApplication::sendEvent(target, &event);
    }
    PaneforgeConfig config() const { return store.loadConfig(); }

    QTemporaryDir directory;
    ConfigStore store{LoggerFactory::makeLogger(QStringLiteral("test")),
                      [this] { return directory.path(); }};
    NotificationCenter notifications;
    PreferencesController preferences{store, notifications};
    fakes::NativeWindowsRecord native;
    QtViewFactory views{native, [](const QString&) {}};
    Keyboard keyboard;
    fakes::LoginItems logins;
    PreferencesWindowController controller{PreferencesWindowServices{
        preferences, views, keyboard, keyboard, logins, {}, {}, PlatformWords(WordStyle::Linux)}};
};

} // namespace

class PreferencesWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    // That it opens with the keyboard, and a margin moved by a key is saved: agent_shell.
    void showsTheFileAndSavesUnroundedMargins() {
        Fixture f;
        QVERIFY(QTest::qWaitForWindowActive(&f.dialog()));
        // The snap controller ignores events while this title has the keyboard.
        QCOMPARE(f.views.keyWindowTitle(), std::optional(QStringLiteral("Preferences")));
        QCOMPARE(f.label("marginValueLabel"), QStringLiteral("8 pt"));
        auto* slider = f.control<QSlider>("marginSlider");
        slider->setValue(1270);
        QCOMPARE(f.config().cellMarginPoints(), 12.7);
        QCOMPARE(f.label("marginValueLabel"), QStringLiteral("12 pt"));
        // The keyboard moves it by whole points.
        slider->setFocus();
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(f.config().cellMarginPoints(), 13.7);
    }

    void boxesSaveTheirSettings() {
        Fixture f;
        tick(f.control<QCheckBox>("singleCmdCheckbox"));
        QCOMPARE(f.config().singleSnapModifiers(), std::optional(ModifierDefinition{0}));
        tick(f.control<QCheckBox>("multiControlCheckbox"));
        QCOMPARE(f.config().multiSnapModifiers(),
                 std::optional(ModifierDefinition{256 | 512 | 4096}));
        tick(f.control<QCheckBox>("restoreWindowSizeOnUnsnapCheckbox"));
        QCOMPARE(f.config().restoreWindowSizeOnUnsnap(), std::optional(false));
        // Hiding the icon needs a hot key back to the window; the box says so.
        QVERIFY(!f.control<QCheckBox>("hideMenuBarIconCheckbox")->isEnabled());
        QCOMPARE(f.label("hideMenuBarIconInfoLabel"),
                 PreferencesWindowController::hideMenuBarIconInfo());

        // Launch at login: not for this copy; the reason is shown and a click does nothing.
        auto* launch = f.control<QCheckBox>("launchAtLoginCheckbox");
        auto* info = f.control<QLabel>("launchAtLoginInfoLabel");
        QVERIFY(!launch->isEnabled() && info->isVisible());
        QCOMPARE(info->text(), PlatformWords(WordStyle::Linux).launchAtLoginRequirement());
        tick(launch);
        QCOMPARE(f.config().launchAtLogin(), std::optional(false));
    }

    // A recorded hot key saved and working at once, and Escape closing the window: agent_shell.
    void recordingShowsItsStateAndEscapeCancels() {
        Fixture f;
        f.press(kShiftAlone); // Qt makes its input devices on the first key and mouse events
        QTest::mouseClick(&f.dialog(), Qt::LeftButton);
        const auto filters = qApp->findChildren<QObject*>().size(); // and the key monitor's
        auto* record = f.control<QPushButton>("recordHotkeyButton4");
        QTest::mouseClick(record, Qt::LeftButton);
        QCOMPARE(f.label("hotkeyValueLabel4"), PreferencesWindowController::recordingPrompt());
        QCOMPARE(record->text(), QStringLiteral("Recording…"));
        f.press(kShiftAlone); // a modifier alone is no combination
        f.press(kSuperShiftE);
        QCOMPARE(f.config().moveToNextDisplayHotkey(), std::optional(HotkeyDefinition{14, 768}));
        QCOMPARE(f.label("hotkeyValueLabel4"), QStringLiteral("Super + Shift + E"));
        // Escape while recording cancels and is swallowed: the window stays.
        QTest::mouseClick(record, Qt::LeftButton);
        f.press(kEscape);
        QCOMPARE(f.config().moveToNextDisplayHotkey(), std::optional(HotkeyDefinition{14, 768}));
        QVERIFY(f.dialog().isVisible());
        QTest::mouseClick(f.control<QPushButton>("clearHotkeyButton4"), Qt::LeftButton);
        QCOMPARE(f.config().moveToNextDisplayHotkey(), std::nullopt);
        QCOMPARE(f.label("hotkeyValueLabel4"), QStringLiteral("Not set"));
        // A recording's filter ends inside its own handler and goes once that returned.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(qApp->findChildren<QObject*>().size(), filters);
    }

    void nothingIsCutOff() {
        Fixture f;
        QDialog& dialog = f.dialog();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QCOMPARE(dialog.size(), dialog.sizeHint());
        for (QWidget* widget : dialog.findChildren<QWidget*>()) {
            const QSize minimum = widget->minimumSizeHint();
            QVERIFY2(!widget->isVisible() ||
                         (widget->width() >= minimum.width() &&
                          widget->height() >= minimum.height() &&
                          (!widget->hasHeightForWidth() ||
                           widget->height() >= widget->heightForWidth(widget->width()))),
                     qPrintable(widget->objectName()));
        }
    }
};

QTEST_MAIN(PreferencesWindowTest)
#include "tst_preferences_window.moc"
