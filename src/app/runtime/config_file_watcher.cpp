#include "app/runtime/config_file_watcher.h"

#include "core/config/config_store.h"
#include "core/config/regular_file_reader.h"

#include <QFileInfo>

namespace paneforge {

ConfigFileWatcher::ConfigFileWatcher(QString filePath, Scheduler& scheduler,
                                     NotificationCenter& notifications)
    : filePath_(std::move(filePath))
    , scheduler_(scheduler)
    , notifications_(notifications)
    , known_(currentBytes()) {
    // The observation and the watcher are members, so their callbacks end with this object.
    // Whoever posts the notification has told everyone already: what is on disk now is known.
    configChanged_ =
        notifications_.observe(Notification::ConfigChanged, [this] { known_ = currentBytes(); });
    QObject::connect(&watcher_, &QFileSystemWatcher::fileChanged, &watcher_,
                     [this] { changeSeen(); });
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_,
                     [this] { changeSeen(); });
    watch();
}

void ConfigFileWatcher::watch() {
    const QString folder = QFileInfo(filePath_).absolutePath();
    if (!watcher_.directories().contains(folder) && QFileInfo(folder).isDir()) {
        watcher_.addPath(folder);
    }
    // A file replaced by a rename is a new file, which the watcher does not follow by itself.
    if (!watcher_.files().contains(filePath_) && QFileInfo::exists(filePath_)) {
        watcher_.addPath(filePath_);
    }
}

void ConfigFileWatcher::changeSeen() {
    if (pendingLook_ && pendingLook_->isActive()) {
        return;
    }
    pendingLook_ = scheduler_.postAfter(settleDelay,
                                        guard_.wrap([](ConfigFileWatcher& self) { self.look(); }));
}

void ConfigFileWatcher::look() {
    watch();
    const auto bytes = currentBytes();
    if (bytes == known_) {
        return;
    }
    known_ = bytes;
    if (bytes) { // a removed file changes nothing until a new one is written
        notifications_.post(Notification::ConfigChanged);
    }
}

std::optional<QByteArray> ConfigFileWatcher::currentBytes() const {
    auto result = RegularFileReader::read(filePath_, ConfigStore::maxFileSizeBytes);
    if (result.status != RegularFileReader::Result::Status::Read) {
        return std::nullopt;
    }
    return std::move(result.bytes);
}

} // namespace paneforge
