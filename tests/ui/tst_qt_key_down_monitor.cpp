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

protected:
    void keyPressEvent(QKeyEvent* event) override {
        ++presses;
        event->accept();
    }
};

constexpr quint32 kCmd = 0x00100000;
constexpr quint32 kShiftFlag = 0x00020000;
constexpr quint32 kCapsFlag = 0x00010000;

} // namespace

Q_DECLARE_METATYPE(NativeKey)

class QtKeyDownMonitorTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mapsPlatformKeyEvents_data() {
        QTest::addColumn<NativeKey>("native");
        QTest::addColumn<bool>("isPress");
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("mask");
        QTest::newRow("bare A") << NativeKey{Qt::Key_A, {}, 38, 0x00, 0} << true << 0x00u << 0u;
        QTest::newRow("shift delete")
            << NativeKey{Qt::Key_Backspace, Qt::ShiftModifier, 22, 0x33, kShiftFlag} << true << 51u
            << 0x200u;
        QTest::newRow("command shift E")
            << NativeKey{Qt::Key_E, Qt::MetaModifier | Qt::ShiftModifier, 26, 0x0E,
                         kCmd | kShiftFlag}
            << true << 14u << 768u;
        QTest::newRow("caps lock held adds nothing")
            << NativeKey{Qt::Key_E, {}, 26, 0x0E, kCapsFlag} << true << 14u << 0u;
        QTest::newRow("keypad enter")
            << NativeKey{Qt::Key_Enter, Qt::KeypadModifier, 104, 0x4C, 0x00200000} << true << 0x4Cu
            << 0u;
        QTest::newRow("escape") << NativeKey{Qt::Key_Escape, {}, 9, 0x35, 0} << true << 53u << 0u;
        QTest::newRow("shift alone is no press")
            << NativeKey{Qt::Key_Shift, Qt::ShiftModifier, 50, 0x38, kShiftFlag} << false << 0u
            << 0u;
        QTest::newRow("caps lock alone is no press")
            << NativeKey{Qt::Key_CapsLock, {}, 66, 0x39, kCapsFlag} << false << 0u << 0u;
    }
    void mapsPlatformKeyEvents() {
        QFETCH(NativeKey, native);
        QFETCH(bool, isPress);
        QFETCH(quint32, keyCode);
        QFETCH(quint32, mask);
        const auto press = QtKeyDownMonitor::toKeyPress(makeEvent(native));
        QCOMPARE(press.has_value(), isPress);
        if (isPress) {
            QCOMPARE(press->keyCode, keyCode);
            QCOMPARE(press->modifiers, mask);
        }
    }

    void recorderTakesTheNextPressInOwnWindowAndSwallowsIt() {
        const auto children = qApp->findChildren<QObject*>().size();
        KeyCountingWidget widget;
        QtKeyDownMonitor monitor;
        HotkeyRecorder recorder(monitor);
        std::optional<std::optional<HotkeyDefinition>> recorded;
        recorder.start([&](std::optional<HotkeyDefinition> hotkey) { recorded = hotkey; });

        // A modifier key alone goes on to the window and recording continues.
        auto shift = makeEvent({Qt::Key_Shift, Qt::ShiftModifier, 50, 0x38, kShiftFlag});
        QCoreApplication::sendEvent(&widget, &shift);
        QCOMPARE(widget.presses, 1);
        QVERIFY(!recorded);

        auto shiftDelete = makeEvent({Qt::Key_Backspace, Qt::ShiftModifier, 22, 0x33, kShiftFlag});
        QCoreApplication::sendEvent(&widget, &shiftDelete);
        QCOMPARE(widget.presses, 1); // swallowed
        QVERIFY(recorded && *recorded);
        QCOMPARE(**recorded, (HotkeyDefinition{51, 0x200}));
        QVERIFY(!recorder.isRecording());

        // Recording ended: keys reach the window again.
        auto again = makeEvent({Qt::Key_A, {}, 38, 0x00, 0});
        QCoreApplication::sendEvent(&widget, &again);
        QCOMPARE(widget.presses, 2);
        // The filter ended inside its own handler and goes once that returned.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(qApp->findChildren<QObject*>().size(), children);
    }

    void escapeCancels() {
        KeyCountingWidget widget;
        QtKeyDownMonitor monitor;
        HotkeyRecorder recorder(monitor);
        int calls = 0;
        std::optional<HotkeyDefinition> result = HotkeyDefinition{1, 1};
        recorder.start([&](std::optional<HotkeyDefinition> hotkey) {
            ++calls;
            result = hotkey;
        });
        auto escape = makeEvent({Qt::Key_Escape, {}, 9, 0x35, 0});
        QCoreApplication::sendEvent(&widget, &escape);
        QCOMPARE(calls, 1);
        QVERIFY(!result);
        QCOMPARE(widget.presses, 0);
    }

    void droppedMonitorLeavesNoFilterBehind() {
        const auto filters = [] { return qApp->findChildren<QObject*>().size(); };
        const auto before = filters();
        QtKeyDownMonitor monitor;
        int seen = 0;
        {
            const auto installed = monitor.addLocalMonitor([&](const KeyPress&) {
                ++seen;
                return false;
            });
            QCOMPARE(filters(), before + 1);
            KeyCountingWidget widget;
            auto a = makeEvent({Qt::Key_A, {}, 38, 0x00, 0});
            QCoreApplication::sendEvent(&widget, &a);
            QCOMPARE(seen, 1);
            QCOMPARE(widget.presses, 1); // not swallowed
        }
        // Dropped outside its own handler: gone at once.
        QCOMPARE(filters(), before);
        KeyCountingWidget widget;
        auto a = makeEvent({Qt::Key_A, {}, 38, 0x00, 0});
        QCoreApplication::sendEvent(&widget, &a);
        QCOMPARE(seen, 1);
    }
};

QTEST_MAIN(QtKeyDownMonitorTest)
#include "tst_qt_key_down_monitor.moc"
