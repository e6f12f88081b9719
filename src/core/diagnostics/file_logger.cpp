#include "core/diagnostics/file_logger.h"

#include "core/config/config_store.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <future>

namespace paneforge {

LogDirectoryProvider defaultLogDirectoryProvider() {
    return [] {
#if defined(Q_OS_MACOS)
        return QDir::homePath() + QStringLiteral("/Library/Logs");
#else
        const QString xdg = qEnvironmentVariable("XDG_STATE_HOME");
        const QString base = !xdg.isEmpty() && QDir::isAbsolutePath(xdg)
                                 ? xdg
                                 : QDir::homePath() + QStringLiteral("/.local/state");
        return base + QStringLiteral("/Paneforge");
#endif
    };
}

FileLogger::FileLogger(const LogDirectoryProvider& directoryProvider) {
    const QString directory = directoryProvider ? directoryProvider() : QString();
    QDir().mkpath(directory); // a failure shows up as failed writes, which are ignored
    filePath_ = QDir(directory).filePath(QStringLiteral("Paneforge.log"));
    worker_ = std::thread([this] { run(); });
}

FileLogger::~FileLogger() {
    {
        std::lock_guard lock(mutex_);
        stopping_ = true;
    }
    wake_.notify_one();
    worker_.join();
}

FileLogger& FileLogger::shared() {
    static FileLogger instance(defaultLogDirectoryProvider());
    return instance;
}

QByteArray FileLogger::buildLine(const QString& message, const QDateTime& time) {
    // QDateTime::toString with a format string uses the C locale: ASCII digits, no day names.
    return '[' + time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz")).toUtf8() + "] " +
           message.toUtf8() + '\n';
}

QByteArray FileLogger::trimToLineBoundary(const QByteArray& bytes) {
    const auto newline = bytes.indexOf('\n');
    return newline < 0 ? bytes : bytes.mid(newline + 1);
}

void FileLogger::log(const QString& message) {
    QByteArray line = buildLine(message, QDateTime::currentDateTime());
    submit([this, line = std::move(line)] {
        ensureFileExists();
        writeLineToEnd(line);
        truncateIfNeeded();
    });
}

void FileLogger::flush() {
    std::promise<void> done;
    auto written = done.get_future();
    submit([&done] { done.set_value(); });
    written.wait();
}

void FileLogger::submit(Task task) {
    {
        std::lock_guard lock(mutex_);
        tasks_.push_back(std::move(task));
    }
    wake_.notify_one();
}

void FileLogger::run() {
    for (;;) {
        Task task;
        {
            std::unique_lock lock(mutex_);
            wake_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
            if (tasks_.empty()) {
                return; // stopping, and everything queued is written
            }
            task = std::move(tasks_.front());
            tasks_.pop_front();
        }
        task();
    }
}

void FileLogger::ensureFileExists() const {
    if (!QFile::exists(filePath_)) {
        QFile file(filePath_);
        (void)file.open(QIODevice::WriteOnly);
    }
}

void FileLogger::writeLineToEnd(const QByteArray& line) const {
    QFile file(filePath_);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
        return;
    }
    (void)file.write(line);
}

void FileLogger::truncateIfNeeded() const {
    const QFileInfo info(filePath_);
    if (!info.exists()) {
        return;
    }
    const qint64 size = info.size();
    if (size <= maxFileSizeBytes) {
        return;
    }
    QFile file(filePath_);
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    const QByteArray contents = file.readAll();
    file.close();
    // Measured from the size read above, even if the file has grown since.
    const qint64 start = std::max<qint64>(0, size - targetFileSizeBytes);
    const QByteArray tail = contents.mid(start, size - start);
    (void)writeFileAtomically(filePath_, trimToLineBoundary(tail));
}

} // namespace paneforge
