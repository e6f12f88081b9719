#include "app/input/hotkey_recorder.h"
#include "ui/qt_key_down_monitor.h"

#include <QKeyEvent>
#include <QTest>
#include <QWidget>

using namespace paneforge;

namespace {

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

int objectCount() {
    return int(qApp->findChildren<QObject*>().size());
}

} // namespace

Q_DECLARE_METATYPE(NativeKey)

class QtKeyDownMonitorTest : public QObject {
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
};

QTEST_MAIN(QtKeyDownMonitorTest)
#include "tst_qt_key_down_monitor.moc"
