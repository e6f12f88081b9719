// Start-up time and idle cost of the real agent, in a private X session with a tray host:
// the time from starting the process to its tray icon, its resident memory once settled, and the
// CPU it uses while nothing happens. Figures only; nothing is asserted.

#include "x11_test_session.h"

#include <QElapsedTimer>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <cstdio>
#include <unistd.h>
#include <vector>

namespace {

// Resident set size in KiB, from /proc/<pid>/status.
long residentKiB(qint64 pid) {
    QFile status(QStringLiteral("/proc/%1/status").arg(pid));
    if (!status.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QString text = QString::fromLatin1(status.readAll());
    const auto match = QRegularExpression(QStringLiteral("VmRSS:\\s+(\\d+)")).match(text);
    return match.hasMatch() ? match.captured(1).toLong() : -1;
}

// User plus system CPU time in clock ticks, from /proc/<pid>/stat.
long cpuTicks(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly)) {
        return -1;
    }
    const QString text = QString::fromLatin1(stat.readAll());
    // Fields after the command name, which is in parentheses and may hold spaces.
    const QStringList fields =
        text.mid(text.lastIndexOf(QLatin1Char(')')) + 2).split(QLatin1Char(' '));
    return fields.size() > 12 ? fields[11].toLong() + fields[12].toLong() : -1;
}

} // namespace

int main(int argc, char** argv) {
    X11TestSession::Options options;
    options.trayHost = true;
    return runWithX11Session(argc, argv, options, [](X11TestSession& session) {
        constexpr int kStarts = 5;
        constexpr int kIdleSeconds = 10;
        std::vector<double> startMillis;
        std::vector<double> readyMillis;
        for (int run = 0; run < kStarts; ++run) {
            QTemporaryDir home;
            QProcessEnvironment env;
            env.insert(QStringLiteral("XDG_CONFIG_HOME"), home.filePath(QStringLiteral("config")));
            env.insert(QStringLiteral("XDG_STATE_HOME"), home.filePath(QStringLiteral("state")));
            QElapsedTimer clock;
            clock.start();
            QProcess* agent = session.startProcess(QStringLiteral(PANEFORGE_AGENT), {}, env);
            QString output;
            const bool ready = X11TestSession::waitUntil(
                [&] {
                    agent->waitForReadyRead(5);
                    output += QString::fromUtf8(agent->readAllStandardError());
                    return output.contains(QStringLiteral("ready in"));
                },
                std::chrono::seconds(20));
            if (!ready || !output.contains(QStringLiteral("icon shown"))) {
                std::fprintf(stderr, "agent did not show its icon:\n%s\n", qPrintable(output));
                return 1;
            }
            startMillis.push_back(static_cast<double>(clock.elapsed()));
            const auto own = QRegularExpression(QStringLiteral("ready in (\\d+) ms")).match(output);
            readyMillis.push_back(own.captured(1).toDouble());

            if (run == kStarts - 1) {
                // Settle, then measure an idle stretch.
                QTest::qWait(2000);
                const long rssBefore = residentKiB(agent->processId());
                const long ticksBefore = cpuTicks(agent->processId());
                QTest::qWait(kIdleSeconds * 1000);
                const long ticksAfter = cpuTicks(agent->processId());
                const long rssAfter = residentKiB(agent->processId());
                const double cpuPercent = 100.0 * static_cast<double>(ticksAfter - ticksBefore) /
                                          static_cast<double>(::sysconf(_SC_CLK_TCK)) /
                                          kIdleSeconds;
                std::printf("idle resident memory                             %ld KiB after "
                            "settling, %ld KiB %d s later\n",
                            rssBefore, rssAfter, kIdleSeconds);
                std::printf("idle CPU                                         %.2f %% over %d s\n",
                            cpuPercent, kIdleSeconds);
            }
            agent->terminate();
            agent->waitForFinished(5000);
        }
        std::sort(startMillis.begin(), startMillis.end());
        std::sort(readyMillis.begin(), readyMillis.end());
        std::printf("start-up to tray icon (process start, wall)      median %.0f ms   max %.0f ms "
                    "  (%d starts)\n",
                    startMillis[startMillis.size() / 2], startMillis.back(), kStarts);
        std::printf(
            "start-up as the agent measures it (main to icon) median %.0f ms   max %.0f ms\n",
            readyMillis[readyMillis.size() / 2], readyMillis.back());
        return 0;
    });
}
