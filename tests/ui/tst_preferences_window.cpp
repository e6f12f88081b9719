// The Qt preferences window on the offscreen platform, over the real window controller, the real
// PreferencesController and a configuration file in a temporary folder: each control saves its
// setting, the recorder takes key presses made in the window, and the form is laid out so that
// nothing is cut off (also at 200 %, tst_preferences_window_scaled). First the Qt key monitor the
// recorder listens through: platform key events to key presses, and its event filter's life.

#include "app/input/hotkey_recorder.h"
#include "app/preferences/preferences_window_controller.h"
#include "platform_fakes.h"
#include "ui/preferences_window.h"
#include "ui/qt_key_down_monitor.h"
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

// A keyboard whose N key types "n".
class Keyboard final : public KeyboardLayoutProvider, public KeyboardKeyTranslator {
public:
    std::shared_ptr<const KeyboardLayout> currentLayout() const override {
        return std::make_shared<KeyboardLayout>();
    }
    std::optional<QString> translate(std::uint32_t keyCode, const KeyboardLayout&) const override {
        return keyCode == 45 ? std::optional(QStringLiteral("n")) : std::nullopt;
    }
};

// A Qt key event as the platform delivers it: on X11 the native scan code is the X key code
// (evdev + 8); on macOS the native virtual key is the macOS key code and the native modifiers
// are NSEvent's flags.
struct NativeKey {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    quint32 x11Keycode;
    quint32 macKeyCode;
    quint32 macFlags;
};

QKeyEvent makeEvent(const NativeKey& k) {
    return QKeyEvent(QEvent::KeyPress, k.key, k.modifiers, k.x11Keycode, k.macKeyCode, k.macFlags);
}

class KeyCountingWidget final : public QWidget {
public:
    int presses = 0;
    void press(const NativeKey& key) {
        auto event = makeEvent(key);
        QCoreApplication::sendEvent(this, &event);
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        ++presses;
        event->accept();
    }
};

constexpr quint32 kCmd = 0x00100000;
constexpr quint32 kShiftFlag = 0x00020000;
constexpr quint32 kCapsFlag = 0x00010000;
const NativeKey kShiftAlone{Qt::Key_Shift, Qt::ShiftModifier, 50, 0x38, kShiftFlag};
const NativeKey kShiftDelete{Qt::Key_Backspace, Qt::ShiftModifier, 22, 0x33, kShiftFlag};
const NativeKey kA{Qt::Key_A, {}, 38, 0x00, 0};
const NativeKey kControlOptionN{Qt::Key_N, Qt::ControlModifier | Qt::AltModifier, 57, 45,
                                0x000C0000};
const NativeKey kEscape{Qt::Key_Escape, {}, 9, 53, 0};

// The filters the key monitor adds to the application; the monitor's tests run first, before a
// window's recorder may have left one to a deferred delete.
int objectCount() {
    return int(qApp->findChildren<QObject*>().size());
}

// A click on the box's indicator, where a person clicks: a wide box's centre may be past its text.
void tick(QCheckBox* box) {
    QStyleOptionButton option;
    option.initFrom(box);
    const QRect indicator =
        box->style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, box);
    QTest::mouseClick(box, Qt::LeftButton, {}, indicator.center());
}

struct Fixture {
    Fixture() {
        logins.applies = false; // until a test says otherwise
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
    QStringList recording;
    PreferencesWindowController controller{PreferencesWindowServices{
        preferences,
        views,
        keyboard,
        keyboard,
        logins,
        {},
        [this](bool on) { recording << (on ? QStringLiteral("on") : QStringLiteral("off")); },
        PlatformWords(WordStyle::Linux)}};
};

} // namespace

Q_DECLARE_METATYPE(NativeKey)

class PreferencesWindowTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mapsPlatformKeyEvents_data() {
        QTest::addColumn<NativeKey>("native");
        QTest::addColumn<std::optional<KeyPress>>("press");
        QTest::newRow("bare A") << kA << std::optional(KeyPress{0x00, 0});
        QTest::newRow("shift delete") << kShiftDelete << std::optional(KeyPress{51, 0x200});
        QTest::newRow("command shift E")
            << NativeKey{Qt::Key_E, Qt::MetaModifier | Qt::ShiftModifier, 26, 0x0E,
                         kCmd | kShiftFlag}
            << std::optional(KeyPress{14, 768});
        QTest::newRow("control option K")
            << NativeKey{Qt::Key_K, Qt::ControlModifier | Qt::AltModifier, 45, 0x28, 0x000C0000}
            << std::optional(KeyPress{0x28, 0x1800});
        QTest::newRow("caps lock held adds nothing")
            << NativeKey{Qt::Key_E, {}, 26, 0x0E, kCapsFlag} << std::optional(KeyPress{14, 0});
        QTest::newRow("keypad enter")
            << NativeKey{Qt::Key_Enter, Qt::KeypadModifier, 104, 0x4C, 0x00200000}
            << std::optional(KeyPress{0x4C, 0});
        QTest::newRow("shift alone is no press") << kShiftAlone << std::optional<KeyPress>();
        QTest::newRow("caps lock alone is no press")
            << NativeKey{Qt::Key_CapsLock, {}, 66, 0x39, kCapsFlag} << std::optional<KeyPress>();
    }
    void mapsPlatformKeyEvents() {
        QFETCH(NativeKey, native);
        QFETCH(std::optional<KeyPress>, press);
        QCOMPARE(QtKeyDownMonitor::toKeyPress(makeEvent(native)), press);
    }

    void recorderTakesTheNextPressInOwnWindowAndSwallowsIt() {
        const int objects = objectCount();
        KeyCountingWidget widget;
        QtKeyDownMonitor monitor;
        HotkeyRecorder recorder(monitor);
        QList<std::optional<HotkeyDefinition>> recorded;
        recorder.start([&](std::optional<HotkeyDefinition> hotkey) { recorded << hotkey; });

        // A modifier key alone goes on to the window and recording continues.
        widget.press(kShiftAlone);
        QCOMPARE(widget.presses, 1);
        QVERIFY(recorded.isEmpty());

        widget.press(kShiftDelete);
        QCOMPARE(widget.presses, 1); // swallowed
        QCOMPARE(recorded, (QList<std::optional<HotkeyDefinition>>{HotkeyDefinition{51, 0x200}}));
        QVERIFY(!recorder.isRecording());

        // Recording ended: keys reach the window again.
        widget.press(kA);
        QCOMPARE(widget.presses, 2);
        // The filter ended inside its own handler and goes once that returned.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(objectCount(), objects);
    }

    void droppedMonitorLeavesNoFilterBehind() {
        const int objects = objectCount();
        QtKeyDownMonitor monitor;
        KeyCountingWidget widget;
        int seen = 0;
        {
            const auto installed = monitor.addLocalMonitor([&](const KeyPress&) {
                ++seen;
                return false;
            });
            QCOMPARE(objectCount(), objects + 1);
            widget.press(kA);
            QCOMPARE(seen, 1);
            QCOMPARE(widget.presses, 1); // not swallowed
        }
        // Dropped outside its own handler: gone at once.
        QCOMPARE(objectCount(), objects);
        widget.press(kA);
        QCOMPARE(seen, 1);
    }

    void opensTitledWithTheKeyboard() {
        Fixture f;
        // That it takes the keyboard under a window manager, on the margin slider:
        // agent_preferences.
        QVERIFY(QTest::qWaitForWindowActive(&f.dialog()));
        // The snap controller ignores events while this title has the keyboard.
        QCOMPARE(f.views.keyWindowTitle(), std::optional(QStringLiteral("Preferences")));
        // The file's values, in the Linux words.
        QCOMPARE(f.control<QLabel>("marginValueLabel")->text(), QStringLiteral("8 pt"));
        QCOMPARE(f.control<QLabel>("hotkeyValueLabel4")->text(),
                 QStringLiteral("Ctrl + Alt + Key 46"));
        QCOMPARE(f.control<QLabel>("hotkeyValueLabel1")->text(), QStringLiteral("Not set"));
        QCOMPARE(f.control<QCheckBox>("singleCmdCheckbox")->text(), QStringLiteral("Super"));
        QCOMPARE(f.control<QCheckBox>("multiOptionCheckbox")->text(), QStringLiteral("Alt"));
        QCOMPARE(f.control<QCheckBox>("multiControlCheckbox")->text(), QStringLiteral("Ctrl"));
        QCOMPARE(f.control<QCheckBox>("hideMenuBarIconCheckbox")->text(),
                 QStringLiteral("Hide tray icon"));
    }

    void marginSliderSavesUnroundedValues() {
        Fixture f;
        auto* slider = f.control<QSlider>("marginSlider");
        slider->setValue(1270);
        QCOMPARE(f.config().cellMarginPoints(), 12.7);
        QCOMPARE(f.control<QLabel>("marginValueLabel")->text(), QStringLiteral("12 pt"));
        // The keyboard moves it by whole points.
        slider->setFocus();
        QTest::keyClick(slider, Qt::Key_Right);
        QCOMPARE(f.config().cellMarginPoints(), 13.7);
        QCOMPARE(f.control<QLabel>("marginValueLabel")->text(), QStringLiteral("13 pt"));
        QTest::keyClick(slider, Qt::Key_End);
        QCOMPARE(f.config().cellMarginPoints(), 40.0);
    }

    void snapBoxesSaveTheirRowsMask() {
        Fixture f;
        QVERIFY(f.control<QCheckBox>("singleCmdCheckbox")->isChecked());
        QVERIFY(f.control<QCheckBox>("multiShiftCheckbox")->isChecked());
        tick(f.control<QCheckBox>("singleCmdCheckbox"));
        QCOMPARE(f.config().singleSnapModifiers(), std::optional(ModifierDefinition{0}));
        tick(f.control<QCheckBox>("multiControlCheckbox"));
        QCOMPARE(f.config().multiSnapModifiers(),
                 std::optional(ModifierDefinition{256 | 512 | 4096}));
        f.control<QCheckBox>("singleOptionCheckbox")->setFocus();
        QTest::keyClick(f.control<QCheckBox>("singleOptionCheckbox"), Qt::Key_Space);
        QCOMPARE(f.config().singleSnapModifiers(), std::optional(ModifierDefinition{2048}));
    }

    void switchesSaveTheirState() {
        Fixture f;
        tick(f.control<QCheckBox>("restoreWindowSizeOnUnsnapCheckbox"));
        QCOMPARE(f.config().restoreWindowSizeOnUnsnap(), std::optional(false));

        // Launch at login: not for this copy; the reason is shown and a click does nothing.
        auto* launch = f.control<QCheckBox>("launchAtLoginCheckbox");
        QVERIFY(!launch->isEnabled());
        QVERIFY(f.control<QLabel>("launchAtLoginInfoLabel")->isVisible());
        QCOMPARE(f.control<QLabel>("launchAtLoginInfoLabel")->text(),
                 PlatformWords(WordStyle::Linux).launchAtLoginRequirement());
        tick(launch);
        QCOMPARE(f.config().launchAtLogin(), std::optional(false));

        f.logins.applies = true;
        f.controller.show();
        QVERIFY(launch->isEnabled());
        QVERIFY(!f.control<QLabel>("launchAtLoginInfoLabel")->isVisible());
        tick(launch);
        QCOMPARE(f.config().launchAtLogin(), std::optional(true));
    }

    void hideIconIsDisabledWithoutAPreferencesHotkey() {
        Fixture f;
        auto* hide = f.control<QCheckBox>("hideMenuBarIconCheckbox");
        auto* info = f.control<QLabel>("hideMenuBarIconInfoLabel");
        QVERIFY(!hide->isEnabled());
        QVERIFY(info->isVisible());
        QCOMPARE(info->text(), PreferencesWindowController::hideMenuBarIconInfo());
        tick(hide);
        QCOMPARE(f.config().hideMenuBarIcon(), std::optional(false));

        // Record an open-preferences hot key: the box becomes available and hides the icon.
        QTest::mouseClick(f.control<QPushButton>("recordHotkeyButton2"), Qt::LeftButton);
        f.press(kControlOptionN);
        QVERIFY(hide->isEnabled());
        QVERIFY(!info->isVisible());
        tick(hide);
        QCOMPARE(f.config().hideMenuBarIcon(), std::optional(true));
    }

    void recorderFlow() {
        Fixture f;
        auto* value = f.control<QLabel>("hotkeyValueLabel4");
        auto* record = f.control<QPushButton>("recordHotkeyButton4");
        QTest::mouseClick(record, Qt::LeftButton);
        QCOMPARE(value->text(), PreferencesWindowController::recordingPrompt());
        QCOMPARE(record->text(), QStringLiteral("Recording…"));
        QCOMPARE(f.recording, QStringList{"on"});

        // A combination is stored.
        f.press(kControlOptionN);
        QCOMPARE(f.config().moveToNextDisplayHotkey(), std::optional(HotkeyDefinition{45, 6144}));
        QCOMPARE(value->text(), QStringLiteral("Ctrl + Alt + N"));
        QCOMPARE(record->text(), QStringLiteral("Record"));
        QCOMPARE(f.recording, (QStringList{"on", "off"}));

        // Escape cancels, and does not close the window.
        QTest::mouseClick(record, Qt::LeftButton);
        f.press(kEscape);
        QCOMPARE(f.config().moveToNextDisplayHotkey(), std::optional(HotkeyDefinition{45, 6144}));
        QCOMPARE(value->text(), QStringLiteral("Ctrl + Alt + N"));
        QVERIFY(f.dialog().isVisible());

        // Clear removes it.
        QTest::mouseClick(f.control<QPushButton>("clearHotkeyButton4"), Qt::LeftButton);
        QCOMPARE(f.config().moveToNextDisplayHotkey(), std::nullopt);
        QCOMPARE(value->text(), QStringLiteral("Not set"));
        QCOMPARE(f.recording, (QStringList{"on", "off", "on", "off"}));

        // Escape closes the window when nothing is recorded; Close ends a recording too.
        f.press(kEscape);
        QVERIFY(!f.dialog().isVisible());
        QVERIFY(!f.controller.isVisible());
        f.controller.show();
        QTest::mouseClick(record, Qt::LeftButton);
        QTest::mouseClick(f.control<QPushButton>("closeButton"), Qt::LeftButton);
        QVERIFY(!f.dialog().isVisible());
        QCOMPARE(f.recording, (QStringList{"on", "off", "on", "off", "on", "off"}));
        QCOMPARE(f.config().moveToNextDisplayHotkey(), std::nullopt);
    }

    void keyboardReachesEveryControlInOrder() {
        Fixture f;
        QDialog& dialog = f.dialog();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QStringList expected{"marginSlider"};
        for (const QString& row : {QStringLiteral("single"), QStringLiteral("multi")}) {
            for (const char* word : {"Cmd", "Shift", "Option", "Control"}) {
                expected << row + QLatin1String(word) + QStringLiteral("Checkbox");
            }
        }
        for (int id = 1; id <= 6; ++id) {
            expected << QStringLiteral("recordHotkeyButton%1").arg(id)
                     << QStringLiteral("clearHotkeyButton%1").arg(id);
        }
        // Launch at login is disabled here, and so is hiding the icon: Tab passes them by.
        expected << "restoreWindowSizeOnUnsnapCheckbox"
                 << "closeButton"
                 << "marginSlider";
        QStringList reached{QApplication::focusWidget()->objectName()};
        for (int i = 1; i < expected.size(); ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            reached << QApplication::focusWidget()->objectName();
        }
        QCOMPARE(reached, expected);
    }

    void nothingIsCutOff() {
        Fixture f;
        // Every text in view, with the optional info texts shown as well.
        QDialog& dialog = f.dialog();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        QCOMPARE(dialog.size(), dialog.sizeHint());
        for (QWidget* widget : dialog.findChildren<QWidget*>()) {
            if (!widget->isVisible()) {
                continue;
            }
            const QSize minimum = widget->minimumSizeHint();
            QVERIFY2(widget->width() >= minimum.width() && widget->height() >= minimum.height(),
                     qPrintable(QStringLiteral("%1 is %2x%3, needs %4x%5")
                                    .arg(widget->objectName(), QString::number(widget->width()),
                                         QString::number(widget->height()),
                                         QString::number(minimum.width()),
                                         QString::number(minimum.height()))));
            if (widget->hasHeightForWidth()) {
                QVERIFY2(widget->height() >= widget->heightForWidth(widget->width()),
                         qPrintable(widget->objectName()));
            }
        }
        qInfo("window %dx%d at device pixel ratio %.1f", dialog.width(), dialog.height(),
              dialog.devicePixelRatioF());
    }
};

QTEST_MAIN(PreferencesWindowTest)
#include "tst_preferences_window.moc"
