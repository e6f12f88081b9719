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

// Numbered lines of 50 bytes each, cut to `size` bytes.
QByteArray filler(qint64 size) {
    QByteArray bytes;
    for (int i = 0; bytes.size() < size; ++i) {
        bytes += QByteArray::number(i).rightJustified(49, '.') + '\n';
    }
    bytes.truncate(size);
    return bytes;
}

} // namespace

class FileLoggerTest : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void createsTheFileAndRecreatesADeletedOne() {
        QTemporaryDir dir;
        FileLogger logger([&] { return dir.filePath(QStringLiteral("state/Paneforge")); });
        logger.log(QStringLiteral("one"));
        logger.flush();
        QCOMPARE(logger.filePath(), dir.filePath(QStringLiteral("state/Paneforge/Paneforge.log")));
        QVERIFY(readAll(logger.filePath()).endsWith("] one\n"));
        // Deleted while the agent runs: the next line makes a new file.
        QVERIFY(QFile::remove(logger.filePath()));
        logger.log(QStringLiteral("two"));
        logger.flush();
        const QByteArray recreated = readAll(logger.filePath());
        QVERIFY(recreated.endsWith("] two\n") && recreated.count('\n') == 1);
    }

    void lineFormat() {
        const QDateTime time(QDate(2025, 3, 14), QTime(9, 26, 53, 589));
        QCOMPARE(
            FileLogger::buildLine(QString::fromUtf8("HotkeyManager.register id=1 ⌘"), time),
            QByteArray("[2025-03-14 09:26:53.589] HotkeyManager.register id=1 \xe2\x8c\x98\n"));
    }

    // At the limit the file is kept whole; beyond it, cut to its last 900000 bytes from the first
    // whole line (a block without a line feed is kept as it is).
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
        const qint64 lineSize = FileLogger::buildLine("m", QDateTime::currentDateTime()).size();
        const QByteArray before = filler(sizeAfterLine - lineSize);
        QFile file(logger.filePath());
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(before) == before.size());
        file.close();
        logger.log(QStringLiteral("m"));
        logger.flush();
        const QByteArray after = readAll(logger.filePath());
        const QByteArray kept = cut ? FileLogger::trimToLineBoundary(
                                          before.right(FileLogger::targetFileSizeBytes - lineSize))
                                    : before;
        QVERIFY(after.endsWith("] m\n"));
        QVERIFY(after.chopped(lineSize) == kept);
        QCOMPARE(FileLogger::trimToLineBoundary(QByteArray(10, 'x')), QByteArray(10, 'x'));
    }

    // Lines from many threads: none lost or torn, each thread's in the order it logged them.
    void burstsFromManyThreads() {
        QTemporaryDir dir;
        constexpr int kThreads = 8;
        constexpr int kLines = 400;
        {
            FileLogger logger([&] { return dir.path(); });
            std::vector<std::jthread> threads;
            for (int t = 0; t < kThreads; ++t) {
                threads.emplace_back([&logger, t] {
                    for (int i = 0; i < kLines; ++i) {
                        logger.log(
                            QStringLiteral("t%1 i%2 %3").arg(t).arg(i).arg(QString(40, 'z')));
                    }
                });
            }
        } // the threads join, then the logger's destructor writes whatever is still queued
        const auto lines = QString::fromUtf8(readAll(dir.filePath(QStringLiteral("Paneforge.log"))))
                               .split('\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), kThreads * kLines);
        std::vector<int> next(kThreads, 0);
        const QRegularExpression line(QStringLiteral(R"(^\[[-\d :.]{23}\] t(\d+) i(\d+) z{40}$)"));
        for (const QString& text : lines) {
            const auto parts = line.match(text);
            QVERIFY2(parts.hasMatch(), qPrintable(text));
            QCOMPARE(parts.captured(2).toInt(), next[parts.captured(1).toInt()]++);
        }
    }
};

QTEST_GUILESS_MAIN(FileLoggerTest)
#include "tst_file_logger.moc"
