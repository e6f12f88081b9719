#include "platform/x11/dbus_file_revealer.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

namespace paneforge {

DBusFileRevealer::DBusFileRevealer()
    : logger_(LoggerFactory::makeLogger(QStringLiteral("FileRevealer"))) {}

void DBusFileRevealer::reveal(const QString& path) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        openFolder(path);
        return;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    // The items as URIs, and no startup notification id.
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
    // Asynchronous: a file manager that is slow to start must not freeze the menu.
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher,
                     [this, path](QDBusPendingCallWatcher* finished) {
                         const QDBusPendingReply<> reply = *finished;
                         if (reply.isError()) {
                             logger_.info(QStringLiteral("no file manager answered ShowItems (%1); "
                                                         "opening the folder")
                                              .arg(reply.error().name()));
                             openFolder(path);
                         }
                         finished->deleteLater();
                     });
}

void DBusFileRevealer::openFolder(const QString& path) {
    const QUrl folder = QUrl::fromLocalFile(QFileInfo(path).absolutePath());
    if (!QDesktopServices::openUrl(folder)) {
        logger_.notice(
            QStringLiteral("could not open %1 in a file manager").arg(folder.toString()));
    }
}

} // namespace paneforge
