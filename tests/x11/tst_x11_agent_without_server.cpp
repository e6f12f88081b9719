#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

// The real agent with DISPLAY naming a display no server holds: it must give up at once with a
// message that says why, neither hanging nor crashing.
class AgentWithoutServerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void exitsWithAMessage() {
        // A display number with no lock file and no socket.
        int number = 99;
        while (QFile::exists(QString("/tmp/.X%1-lock").arg(number)) ||
               QFile::exists(QString("/tmp/.X11-unix/X%1").arg(number))) {
            ++number;
        }
        const QString display = QString(":%1").arg(number);
        const QTemporaryDir home;
        QProcess agent;
        agent.start("env", {"-u", "QT_QPA_PLATFORM", "DISPLAY=" + display,
                            "XDG_CONFIG_HOME=" + home.path(), "XDG_STATE_HOME=" + home.path(),
                            PANEFORGE_AGENT});
        QVERIFY(agent.waitForFinished(10000));
        const QString error = QString::fromLocal8Bit(agent.readAllStandardError());
        QCOMPARE(agent.exitStatus(), QProcess::NormalExit);
        QVERIFY2(agent.exitCode() == 1, qPrintable(error));
        QVERIFY2(error.contains(display), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(AgentWithoutServerTest)
#include "tst_x11_agent_without_server.moc"
