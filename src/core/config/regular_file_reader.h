#pragma once

#include <QByteArray>
#include <QString>

namespace paneforge {

// Reads the files Paneforge takes as input (the configuration, backups) defensively: only
// regular files are read, so a named pipe or a device at the path is an error rather than a hang
// or an endless stream, and never more than a cap, counted in bytes actually read rather than in
// the size the file system reports.
namespace RegularFileReader {

struct Result {
    enum class Status {
        Read,       // `bytes` holds the whole file
        Missing,    // nothing at the path (a dangling link is a failure, not a missing file)
        NotRegular, // a folder, a named pipe, a device or a socket; `reason` says which
        TooLarge,   // more than the cap
        Failed,     // the system refused; `reason` is its description
    };
    Status status = Status::Failed;
    QByteArray bytes;
    QString reason;
};

// `nativePath` is the path as the file system spells it (any bytes but NUL).
Result read(const QByteArray& nativePath, qint64 maxBytes);
Result read(const QString& path, qint64 maxBytes);

// "it is a folder, not a regular file", "it is larger than 16 MB", "no such file" or the system's
// reason: the part of a message that follows the file's name.
QString describeFailure(const Result& result, qint64 maxBytes);

} // namespace RegularFileReader

} // namespace paneforge
