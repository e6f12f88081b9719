#include "core/diagnostics/file_logger.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>
#include <thread>

using namespace paneforge;

namespace {

QByteArray readAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeAll(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    QCOMPARE(file.write(bytes), bytes.size());
}

// Numbered lines of 50 bytes each, cut to `size` bytes.
QByteArray filler(qint64 size) {
    QByteArray bytes;
    bytes.reserve(size + 64);
    for (int i = 0; bytes.size() < size; ++i) {
        bytes += QByteArray::number(i).rightJustified(49, '.') + '\n';
    }
    bytes.truncate(size);
    return bytes;
}

const QRegularExpression
    kLine(QStringLiteral(R"(^\[\d{4}-\d\d-\d\d \d\d:\d\d:\d\d\.\d{3}\] (.*)$)"));

} // namespace

class FileLoggerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void createsTheFileAndRecreatesADeletedOne() {
        QTemporaryDir dir;
        FileLogger logger([&] { return dir.filePath(QStringLiteral("state/Paneforge")); });
        logger.log(QStringLiteral("ApplicationController.start"));
        logger.flush();
        QCOMPARE(logger.filePath(), dir.filePath(QStringLiteral("state/Paneforge/Paneforge.log")));
        const QByteArray contents = readAll(logger.filePath());
        QVERIFY(contents.endsWith("] ApplicationController.start\n"));
        QCOMPARE(contents.count('\n'), 1);
        QVERIFY(kLine.match(QString::fromUtf8(contents.chopped(1))).hasMatch());
        // Deleted while the agent runs: the next line makes a new file.
        QVERIFY(QFile::remove(logger.filePath()));
        logger.log(QStringLiteral("two"));
        logger.flush();
        const QByteArray recreated = readAll(logger.filePath());
        QVERIFY(recreated.endsWith("] two\n"));
        QCOMPARE(recreated.count('\n'), 1);
    }

    void lineFormat() {
        const QDateTime time(QDate(2025, 3, 14), QTime(9, 26, 53, 589));
        QCOMPARE(
            FileLogger::buildLine(QString::fromUtf8("HotkeyManager.register id=1 ⌘"), time),
            QByteArray("[2025-03-14 09:26:53.589] HotkeyManager.register id=1 \xe2\x8c\x98\n"));
    }

    void truncationBoundaries_data() {
        QTest::addColumn<qint64>("sizeAfterLine");
        QTest::addColumn<bool>("cut");
        QTest::newRow("exactly the limit") << qint64(1000000) << false;
        QTest::newRow("one byte over") << qint64(1000001) << true;
    }
    void truncationBoundaries() {
        QFETCH(qint64, sizeAfterLine);
        QFETCH(bool, cut);
        QTemporaryDir dir;
        FileLogger logger([&] { return dir.path(); });
        const QByteArray message = "m";
        const qint64 lineSize =
            FileLogger::buildLine(QString::fromLatin1(message), QDateTime::currentDateTime())
                .size();
        const QByteArray before = filler(sizeAfterLine - lineSize);
        writeAll(logger.filePath(), before);
        logger.log(QString::fromLatin1(message));
        logger.flush();
        const QByteArray after = readAll(logger.filePath());
        const QByteArray line = after.right(lineSize);
        QVERIFY(line.endsWith("] m\n"));
        if (!cut) {
            QCOMPARE(after.size(), sizeAfterLine);
            QCOMPARE(after.left(before.size()), before);
        } else {
            // The last 900000 bytes, less everything up to the first line feed.
            const QByteArray expected = FileLogger::trimToLineBoundary(before.right(
                                            FileLogger::targetFileSizeBytes - lineSize)) +
                                        line;
            QCOMPARE(after.size(), expected.size());
            QVERIFY(after == expected);
            QVERIFY(after.size() <= FileLogger::targetFileSizeBytes);
        }
    }

    void trimKeepsABlockWithoutLineFeed() {
        QCOMPARE(FileLogger::trimToLineBoundary(QByteArray(10, 'x')), QByteArray(10, 'x'));
        QCOMPARE(FileLogger::trimToLineBoundary("abc\ndef\n"), QByteArray("def\n"));
        QCOMPARE(FileLogger::trimToLineBoundary("\nwhole\n"), QByteArray("whole\n"));
    }

    void burstsFromManyThreads() {
        QTemporaryDir dir;
        constexpr int kThreads = 8;
        constexpr int kLines = 400;
        {
            FileLogger logger([&] { return dir.path(); });
            std::vector<std::thread> threads;
            for (int t = 0; t < kThreads; ++t) {
                threads.emplace_back([&logger, t] {
                    for (int i = 0; i < kLines; ++i) {
                        logger.log(QStringLiteral("t%1 i%2 %3")
                                       .arg(t)
                                       .arg(i)
                                       .arg(QString(40, QLatin1Char('z'))));
                    }
                });
            }
            for (auto& thread : threads) {
                thread.join();
            }
        } // the destructor writes whatever is still queued
        const auto lines = QString::fromUtf8(readAll(dir.filePath(QStringLiteral("Paneforge.log"))))
                               .split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), kThreads * kLines);
        std::vector<int> next(kThreads, 0);
        std::vector<QString> lastStamp(kThreads);
        const QRegularExpression body(QStringLiteral(R"(^t(\d+) i(\d+) z{40}$)"));
        for (const QString& line : lines) {
            const auto match = kLine.match(line);
            const auto parts = body.match(match.captured(1));
            QVERIFY2(match.hasMatch() && parts.hasMatch(), qPrintable(line));
            const int t = parts.captured(1).toInt();
            QCOMPARE(parts.captured(2).toInt(), next[t]++);
            QVERIFY(line.mid(1, 23) >= lastStamp[t]); // each thread's calls happen in order
            lastStamp[t] = line.mid(1, 23);
        }
    }
};

QTEST_GUILESS_MAIN(FileLoggerTest)
#include "tst_file_logger.moc"
