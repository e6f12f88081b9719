#include "config_fixtures.h"

#include <QFile>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

using namespace paneforge;

// Kills a process in the middle of saving, again and again: the file must always hold either the
// old or the new configuration, never a mixture or a fragment.
class InterruptedSaveTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void killedSaveLeavesOldOrNew() {
        QTemporaryDir home;
        const ConfigStore store(LoggerFactory::makeLogger(QStringLiteral("ConfigStore")),
                                [&] { return home.path(); });
        const PaneforgeConfig small = fixtures::smallConfig();
        const PaneforgeConfig large = fixtures::largeConfig();
        auto* random = QRandomGenerator::global();
        int sawSmall = 0;
        int sawLarge = 0;
        for (int round = 0; round < 25; ++round) {
            QProcess saver;
            saver.start(QStringLiteral(CONFIG_SAVE_LOOP), {home.path()});
            QVERIFY(saver.waitForStarted());
            // Let it complete a random number of saves, then kill it wherever it is.
            const int saves = 1 + static_cast<int>(random->bounded(6u));
            int seen = 0;
            while (seen < saves) {
                QVERIFY(saver.waitForReadyRead(10000));
                seen += saver.readAll().count('\n');
            }
            saver.kill();
            QVERIFY(saver.waitForFinished(10000));

            const PaneforgeConfig loaded = store.loadConfig();
            QVERIFY(loaded == small || loaded == large);
            sawSmall += loaded == small;
            sawLarge += loaded == large;
        }
        qInfo("small %d, large %d", sawSmall, sawLarge);
    }
};

QTEST_GUILESS_MAIN(InterruptedSaveTest)
#include "tst_interrupted_save.moc"
