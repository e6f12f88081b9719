#include "app/input/hotkey_recorder.h"

#include <QTest>
#include <optional>

using namespace paneforge;

namespace {

class FakeKeyDownMonitorApi final : public KeyDownMonitorApi {
public:
    class Installed final : public Monitor {
    public:
        explicit Installed(FakeKeyDownMonitorApi& api)
            : api_(api) {
            ++api_.installed;
        }
        ~Installed() override {
            --api_.installed;
            api_.handler.reset();
        }

    private:
        FakeKeyDownMonitorApi& api_;
    };

    int installed = 0;
    std::shared_ptr<Handler> handler;

    std::unique_ptr<Monitor> addLocalMonitor(Handler h) override {
        auto monitor = std::make_unique<Installed>(*this);
        handler = std::make_shared<Handler>(std::move(h));
        return monitor;
    }

    // Returns whether the press was swallowed; a press with no monitor goes on to the window.
    bool press(std::uint32_t keyCode, std::uint32_t modifiers) {
        if (!handler) {
            return false;
        }
        const auto keep = handler; // a monitor may be removed while it handles the press
        return (*keep)(KeyPress{keyCode, modifiers});
    }
};

} // namespace

class HotkeyRecorderTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void recordsOnePress_data() {
        QTest::addColumn<quint32>("keyCode");
        QTest::addColumn<quint32>("modifiers");
        QTest::addColumn<bool>("recorded");
        QTest::addColumn<quint32>("expectedMask");
        QTest::newRow("escape cancels") << 53u << 0u << false << 0u;
        QTest::newRow("escape with command cancels too") << 53u << 256u << false << 0u;
        QTest::newRow("shift delete") << 51u << 0x200u << true << 0x200u;
        QTest::newRow("bare A") << 0u << 0u << true << 0u;
        QTest::newRow("all four modifiers") << 14u << 0x1B00u << true << 0x1B00u;
        QTest::newRow("return is an ordinary key") << 36u << 256u << true << 256u;
        QTest::newRow("foreign bits are not part of the mask")
            << 14u << (0x100u | 0x400u) << true << 0x100u;
    }
    void recordsOnePress() {
        QFETCH(quint32, keyCode);
        QFETCH(quint32, modifiers);
        QFETCH(bool, recorded);
        QFETCH(quint32, expectedMask);

        FakeKeyDownMonitorApi api;
        HotkeyRecorder recorder(api);
        int calls = 0;
        std::optional<HotkeyDefinition> result;
        recorder.start([&](std::optional<HotkeyDefinition> hotkey) {
            ++calls;
            result = hotkey;
        });
        QVERIFY(recorder.isRecording());
        QVERIFY(api.press(keyCode, modifiers)); // swallowed
        QCOMPARE(calls, 1);
        QCOMPARE(result.has_value(), recorded);
        if (recorded) {
            QCOMPARE(*result, (HotkeyDefinition{keyCode, expectedMask}));
        }
        QVERIFY(!recorder.isRecording());
        QCOMPARE(api.installed, 0);
        QVERIFY(!api.press(keyCode, modifiers)); // only the first press is recorded
        QCOMPARE(calls, 1);
    }

    void startAgainReplacesTheEarlierRecording() {
        FakeKeyDownMonitorApi api;
        HotkeyRecorder recorder(api);
        int first = 0;
        int second = 0;
        recorder.start([&](std::optional<HotkeyDefinition>) { ++first; });
        recorder.start([&](std::optional<HotkeyDefinition>) { ++second; });
        QCOMPARE(api.installed, 1);
        api.press(14, 256);
        QCOMPARE(first, 0);
        QCOMPARE(second, 1);
    }

    void stopIsHarmlessAndEndsRecording() {
        FakeKeyDownMonitorApi api;
        HotkeyRecorder recorder(api);
        recorder.stop();
        int calls = 0;
        recorder.start([&](std::optional<HotkeyDefinition>) { ++calls; });
        recorder.stop();
        recorder.stop();
        QVERIFY(!api.press(14, 256));
        QCOMPARE(calls, 0);
        QCOMPARE(api.installed, 0);
    }

    void callbackMayStartTheNextRecording() {
        FakeKeyDownMonitorApi api;
        HotkeyRecorder recorder(api);
        QList<std::uint32_t> keys;
        std::function<void(std::optional<HotkeyDefinition>)> record;
        record = [&](std::optional<HotkeyDefinition> hotkey) {
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
