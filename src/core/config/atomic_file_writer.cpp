#include "core/config/atomic_file_writer.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace paneforge {

namespace {

constexpr const char kSuffixMarker[] = ".saving-";
constexpr int kRandomLength = 6;
// A leftover this young and still empty may belong to a writer that has created its file but not
// yet locked it (only where the file cannot be created already locked).
constexpr time_t kUnlockedCreationGraceSeconds = 10;

QString systemReason(int error) {
    return QString::fromLocal8Bit(std::strerror(error));
}

class Descriptor {
public:
    explicit Descriptor(int fd = -1)
        : fd_(fd) {}
    Descriptor(Descriptor&& other) noexcept
        : fd_(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            reset(other.release());
        }
        return *this;
    }
    ~Descriptor() { reset(); }
    int get() const { return fd_; }
    int release() { return std::exchange(fd_, -1); }
    void reset(int fd = -1) {
        if (fd_ >= 0) {
            ::close(fd_);
        }
        fd_ = fd;
    }

private:
    int fd_;
};

QByteArray temporaryName(const QByteArray& target) {
    static constexpr char kAlphabet[] =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
    QByteArray name = '.' + target + kSuffixMarker;
    for (int i = 0; i < kRandomLength; ++i) {
        name += kAlphabet[QRandomGenerator::global()->bounded(int(sizeof kAlphabet - 1))];
    }
    return name;
}

bool writeAll(int fd, const QByteArray& bytes, int* error) {
    qsizetype written = 0;
    while (written < bytes.size()) {
        const ssize_t count =
            ::write(fd, bytes.constData() + written, static_cast<size_t>(bytes.size() - written));
        if (count < 0) {
            if (errno == EINTR) {
                continue;
            }
            *error = errno;
            return false;
        }
        written += count;
    }
    return true;
}

// Removes the temporary files of writers that died before their rename. A file is taken only when
// its lock can be had (its writer is gone: the system drops a dead process's locks), it is still
// the same file under that name, and it is not possibly a writer's freshly created, not yet locked
// file.
void removeLeftovers(int directory, const QByteArray& target) {
    const int listing = ::dup(directory);
    if (listing < 0) {
        return;
    }
    DIR* dir = ::fdopendir(listing);
    if (!dir) {
        ::close(listing);
        return;
    }
    ::rewinddir(dir);
    while (const dirent* entry = ::readdir(dir)) {
        const QByteArray name(entry->d_name);
        if (!AtomicFileWriter::isTemporaryName(name, target)) {
            continue;
        }
        const Descriptor fd(
            ::openat(directory, name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat opened {};
        if (fd.get() < 0 || ::fstat(fd.get(), &opened) != 0 || !S_ISREG(opened.st_mode) ||
            opened.st_uid != ::geteuid() || ::flock(fd.get(), LOCK_EX | LOCK_NB) != 0) {
            continue;
        }
        if (opened.st_size == 0 &&
            ::time(nullptr) - opened.st_mtime < kUnlockedCreationGraceSeconds) {
            continue;
        }
        struct stat named {};
        if (::fstatat(directory, name.constData(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
            named.st_dev == opened.st_dev && named.st_ino == opened.st_ino) {
            ::unlinkat(directory, name.constData(), 0);
        }
    }
    ::closedir(dir);
}

// Locks the new file, gives it the replaced file's mode (a new file keeps the one it was created
// with, less the umask) and its bytes, and flushes them to disk; 0 or the error.
int fill(int fd, const QByteArray& bytes, std::optional<mode_t> exactMode) {
    if (::flock(fd, LOCK_EX) != 0 || (exactMode && ::fchmod(fd, *exactMode) != 0)) {
        return errno;
    }
    int error = 0;
    if (!writeAll(fd, bytes, &error)) {
        return error;
    }
    return ::fsync(fd) == 0 ? 0 : errno;
}

// The temporary file, locked and holding the bytes flushed to disk, under its name. Where the
// system can, the file is written unnamed and named only then, so that a writer killed before
// that leaves nothing behind.
Descriptor createTemporary(int directory, const QByteArray& target, const QByteArray& bytes,
                           std::optional<mode_t> exactMode, QByteArray* name, int* error) {
    const mode_t mode = exactMode.value_or(0666);
#if defined(O_TMPFILE)
    if (Descriptor fd(::openat(directory, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode));
        fd.get() >= 0) {
        if ((*error = fill(fd.get(), bytes, exactMode)) != 0) {
            return Descriptor();
        }
        const QByteArray self = "/proc/self/fd/" + QByteArray::number(fd.get());
        for (int attempt = 0; attempt < 100; ++attempt) {
            *name = temporaryName(target);
            if (::linkat(AT_FDCWD, self.constData(), directory, name->constData(),
                         AT_SYMLINK_FOLLOW) == 0) {
                return fd;
            }
            if (errno != EEXIST) {
                break;
            }
        }
        // Without /proc, or on a file system that cannot do this: the portable way below.
    }
#endif
    for (int attempt = 0; attempt < 100; ++attempt) {
        *name = temporaryName(target);
        int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
#if defined(O_EXLOCK)
        flags |= O_EXLOCK; // created already locked
#endif
        Descriptor fd(::openat(directory, name->constData(), flags, mode));
        if (fd.get() < 0) {
            if (errno == EEXIST) {
                continue;
            }
            *error = errno;
            return Descriptor();
        }
        if ((*error = fill(fd.get(), bytes, exactMode)) != 0) {
            ::unlinkat(directory, name->constData(), 0);
            return Descriptor();
        }
        return fd;
    }
    *error = EEXIST;
    return Descriptor();
}

} // namespace

namespace AtomicFileWriter {
bool isTemporaryName(const QByteArray& name, const QByteArray& target) {
    const QByteArray prefix = '.' + target + kSuffixMarker;
    if (name.size() != prefix.size() + kRandomLength || !name.startsWith(prefix)) {
        return false;
    }
    for (qsizetype i = prefix.size(); i < name.size(); ++i) {
        const char c = name.at(i);
        if (!((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'))) {
            return false;
        }
    }
    return true;
}
} // namespace AtomicFileWriter

QString writeFileAtomically(const QString& path, const QByteArray& bytes) {
    // A link is followed to the file it names, which is replaced there; the link stays.
    QFileInfo info(path);
    for (int depth = 0; depth < 40 && info.isSymLink(); ++depth) {
        info.setFile(info.symLinkTarget());
    }
    const QByteArray directoryPath = QFile::encodeName(info.absolutePath());
    const QByteArray target = QFile::encodeName(info.fileName());
    if (target.isEmpty()) {
        return QStringLiteral("no file name");
    }
    const Descriptor directory(
        ::open(directoryPath.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.get() < 0) {
        return systemReason(errno);
    }
    struct stat existing {};
    if (::fstatat(directory.get(), target.constData(), &existing, AT_SYMLINK_NOFOLLOW) == 0 &&
        !S_ISREG(existing.st_mode)) {
        // Never a folder, and never a device or a pipe replaced by a file.
        return S_ISDIR(existing.st_mode) ? QStringLiteral("it is a folder")
                                         : QStringLiteral("it is not a regular file");
    }
    removeLeftovers(directory.get(), target);

    // A replaced file keeps its permissions; a new one gets the usual ones less the umask.
    const bool replacing = existing.st_mode != 0;
    QByteArray name;
    int error = 0;
    const Descriptor file = createTemporary(
        directory.get(), target, bytes,
        replacing ? std::optional<mode_t>(existing.st_mode & 07777) : std::nullopt, &name, &error);
    if (file.get() < 0) {
        return systemReason(error);
    }
    if (::renameat(directory.get(), name.constData(), directory.get(), target.constData()) != 0) {
        const int renameError = errno;
        ::unlinkat(directory.get(), name.constData(), 0);
        return systemReason(renameError);
    }
    // The rename itself is durable only once the folder is.
    (void)::fsync(directory.get());
    return {};
}

} // namespace paneforge
