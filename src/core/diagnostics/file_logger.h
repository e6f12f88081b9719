#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace paneforge {

// Gives the directory of "Paneforge.log": ~/Library/Logs on macOS, $XDG_STATE_HOME/Paneforge
// (default ~/.local/state/Paneforge) on Linux.
using LogDirectoryProvider = std::function<QString()>;
LogDirectoryProvider defaultLogDirectoryProvider();

// The diagnostic log file. log() builds the line on the calling thread, with the time of the
// call, and hands it to one background worker that appends it and keeps the file near one
// megabyte by cutting old lines from its start. The caller never waits for the disk and never
// sees a failure: every file-system error is swallowed.
class FileLogger {
public:
    static constexpr std::int64_t maxFileSizeBytes = 1000000;
    static constexpr std::int64_t targetFileSizeBytes = 900000;

    explicit FileLogger(const LogDirectoryProvider& directoryProvider);
    // Writes whatever is still queued, then stops the worker.
    ~FileLogger();
    FileLogger(const FileLogger&) = delete;
    FileLogger& operator=(const FileLogger&) = delete;

    // The process-wide instance, in the default directory.
    static FileLogger& shared();

    void log(const QString& message);

    // Blocks until every line submitted before the call is written. For tests and shutdown.
    void flush();

    const QString& filePath() const { return filePath_; }

    // "[yyyy-MM-dd HH:mm:ss.SSS] message\n" in local time.
    static QByteArray buildLine(const QString& message, const QDateTime& time);

    // Drops everything up to and including the first line feed; bytes without one stay whole.
    static QByteArray trimToLineBoundary(const QByteArray& bytes);

private:
    using Task = std::function<void()>;

    void submit(Task task);
    void run();
    void ensureFileExists() const;
    void writeLineToEnd(const QByteArray& line) const;
    void truncateIfNeeded() const;

    QString filePath_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Task> tasks_;
    bool stopping_ = false;
    std::thread worker_;
};

} // namespace paneforge
