#include "core/config/regular_file_reader.h"

#include <QFile>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace paneforge::RegularFileReader {

namespace {

QString systemReason(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

Result failure(Result::Status status, const QString& reason = {}) {
    Result result;
    result.status = status;
    result.reason = reason;
    return result;
}

QString kindOf(mode_t mode) {
    if (S_ISDIR(mode)) {
        return QStringLiteral("a folder");
    }
    if (S_ISFIFO(mode)) {
        return QStringLiteral("a named pipe");
    }
    if (S_ISCHR(mode) || S_ISBLK(mode)) {
        return QStringLiteral("a device");
    }
    if (S_ISSOCK(mode)) {
        return QStringLiteral("a socket");
    }
    return QStringLiteral("a special file");
}

class Descriptor {
public:
    explicit Descriptor(int fd)
        : fd_(fd) {}
    ~Descriptor() {
        if (fd_ >= 0) {
            ::close(fd_);
        }
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

private:
    int fd_;
};

} // namespace

Result read(const QByteArray& nativePath, qint64 maxBytes) {
    if (nativePath.isEmpty() || nativePath.contains('\0')) {
        return failure(Result::Status::Missing);
    }
    // Non-blocking, so that opening a named pipe returns at once instead of waiting for a
    // writer; the type is then checked on the open descriptor, not on the path, which another
    // process could swap in between.
    const Descriptor fd(
        ::open(nativePath.constData(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (fd.get() < 0) {
        const int error = errno;
        struct stat link {};
        if (error == ENOENT && ::lstat(nativePath.constData(), &link) != 0) {
            return failure(Result::Status::Missing);
        }
        return failure(Result::Status::Failed, systemReason(error));
    }
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0) {
        return failure(Result::Status::Failed, systemReason(errno));
    }
    if (!S_ISREG(info.st_mode)) {
        return failure(Result::Status::NotRegular, kindOf(info.st_mode));
    }
    if (info.st_size > maxBytes) {
        return failure(Result::Status::TooLarge);
    }
    // The reported size is only a hint (a file can grow while it is read): the cap counts what
    // was read, one byte beyond it telling "too large" from "exactly at the cap".
    QByteArray bytes;
    bytes.resize(static_cast<qsizetype>(std::min<qint64>(info.st_size, maxBytes) + 1));
    qint64 total = 0;
    for (;;) {
        if (total == bytes.size()) {
            if (total > maxBytes) {
                return failure(Result::Status::TooLarge);
            }
            bytes.resize(static_cast<qsizetype>(std::min<qint64>(total * 2 + 4096, maxBytes + 1)));
        }
        const ssize_t count =
            ::read(fd.get(), bytes.data() + total, static_cast<size_t>(bytes.size() - total));
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            return failure(Result::Status::Failed, systemReason(errno));
        }
        if (count == 0) {
            break;
        }
        total += count;
    }
    if (total > maxBytes) {
        return failure(Result::Status::TooLarge);
    }
    bytes.truncate(static_cast<qsizetype>(total));
    Result result;
    result.status = Result::Status::Read;
    result.bytes = std::move(bytes);
    return result;
}

Result read(const QString& path, qint64 maxBytes) {
    return read(QFile::encodeName(path), maxBytes);
}

QString describeFailure(const Result& result, qint64 maxBytes) {
    switch (result.status) {
    case Result::Status::Read:
        return {};
    case Result::Status::Missing:
        return QStringLiteral("no such file");
    case Result::Status::NotRegular:
        return QStringLiteral("it is %1, not a regular file").arg(result.reason);
    case Result::Status::TooLarge:
        return QStringLiteral("it is larger than %1 MB").arg(maxBytes / (1024 * 1024));
    case Result::Status::Failed:
        return result.reason;
    }
    return {};
}

} // namespace paneforge::RegularFileReader
