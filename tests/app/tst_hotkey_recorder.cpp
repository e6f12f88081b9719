#include "app/input/hotkey_recorder.h"
#include "input_fakes.h"

#include <QTest>

using namespace paneforge;

class HotkeyRecorderTest : public QObject {
    Q_OBJECT

    using Result = std::optional<HotkeyDefinition>;

private Q_SLOTS:
    void recordsOnePress_data() {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<Result>("recorded");
        QTest::newRow("escape cancels") << 53u << 0u << Result();
        QTest::newRow("escape with command cancels too") << 53u << 256u << Result();
        QTest::newRow("shift delete") << 51u << 0x200u << Result({51, 0x200});
        QTest::newRow("bare A") << 0u << 0u << Result({0, 0});
        QTest::newRow("all four modifiers") << 14u << 0x1B00u << Result({14, 0x1B00});
        QTest::newRow("return is an ordinary key") << 36u << 256u << Result({36, 256});
        QTest::newRow("foreign bits are not part of the mask")
            << 14u << 0x500u << Result({14, 256});
    }
    void recordsOnePress() {
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QFETCH(Result, recorded);
        fakes::KeyDownMonitor api;
        HotkeyRecorder recorder(api);
        QList<Result> results;
        recorder.start([&](Result hotkey) { results << hotkey; });
        QVERIFY(recorder.isRecording());
        QVERIFY(api.press(keyCode, modifiers)); // swallowed
        QCOMPARE(results, QList<Result>{recorded});
        QVERIFY(!recorder.isRecording());
        QCOMPARE(api.installed, 0);
        QVERIFY(!api.press(keyCode, modifiers)); // only the first press is recorded
        QCOMPARE(results.size(), 1);
    }

    void startAgainReplacesTheEarlierRecording() {
        fakes::KeyDownMonitor api;
        HotkeyRecorder recorder(api);
        QStringList calls;
        recorder.start([&](Result) { calls << "first"; });
        recorder.start([&](Result) { calls << "second"; });
        QCOMPARE(api.installed, 1);
        api.press(14, 256);
        QCOMPARE(calls, QStringList{"second"});
    }

    void stopIsHarmlessAndEndsRecording() {
        fakes::KeyDownMonitor api;
        HotkeyRecorder recorder(api);
        recorder.stop();
        int calls = 0;
        recorder.start([&](Result) { ++calls; });
        recorder.stop();
        recorder.stop();
        QVERIFY(!api.press(14, 256));
        QCOMPARE(calls, 0);
        QCOMPARE(api.installed, 0);
    }

    void callbackMayStartTheNextRecording() {
        fakes::KeyDownMonitor api;
        HotkeyRecorder recorder(api);
        QList<std::uint32_t> keys;
        std::function<void(Result)> record = [&](Result hotkey) {
            keys << hotkey->keyCode;
            if (keys.size() == 1) {
                recorder.start(record);
            }
        };
        recorder.start(record);
        api.press(14, 0);
        QVERIFY(recorder.isRecording());
        api.press(15, 0);
        QCOMPARE(keys, (QList<std::uint32_t>{14, 15}));
        QVERIFY(!recorder.isRecording());
    }
};

QTEST_GUILESS_MAIN(HotkeyRecorderTest)
#include "tst_hotkey_recorder.moc"
