#include "platform/x11/xdg_autostart.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>

namespace paneforge {

XdgAutostartLoginItem::XdgAutostartLoginItem(QString autostartDirectory, QString executablePath,
                                             QString homeDirectory)
    : autostartDirectory_(std::move(autostartDirectory))
    , executablePath_(std::move(executablePath))
    , homeDirectory_(std::move(homeDirectory)) {}

XdgAutostartLoginItem XdgAutostartLoginItem::forThisProcess() {
    // GenericConfigLocation is $XDG_CONFIG_HOME, or ~/.config without it.
    return XdgAutostartLoginItem(
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
            QStringLiteral("/autostart"),
        QCoreApplication::applicationFilePath(), QDir::homePath());
}

bool XdgAutostartLoginItem::isInstalledLocation(const QString& executablePath,
                                                const QString& homeDirectory) {
    // Through symbolic links: a link in ~/.local/bin to a build tree is still a build tree.
    const QFileInfo info(executablePath);
    const QString resolved = info.canonicalFilePath();
    const QString folder =
        QDir::cleanPath(QFileInfo(resolved.isEmpty() ? info.absoluteFilePath() : resolved).path());
    for (const QString& bin :
         {QStringLiteral("/usr/bin"), QStringLiteral("/usr/local/bin"), QStringLiteral("/bin"),
          QDir::cleanPath(homeDirectory + QStringLiteral("/.local/bin"))}) {
        if (folder == bin) {
            return true;
        }
    }
    return folder.startsWith(QStringLiteral("/opt/")) && folder.endsWith(QStringLiteral("/bin"));
}

QString XdgAutostartLoginItem::execValue(const QString& executablePath) {
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    const bool needsQuotes = std::any_of(executablePath.begin(), executablePath.end(),
                                         [](QChar c) { return reserved.contains(c); });
    if (!needsQuotes) {
        return executablePath;
    }
    // Inside quotes, ", `, $ and \ take a backslash; the entry's own string escaping then
    // doubles every backslash.
    QString quoted;
    for (const QChar c : executablePath) {
        if (c == QLatin1Char('"') || c == QLatin1Char('`') || c == QLatin1Char('$') ||
            c == QLatin1Char('\\')) {
            quoted += QLatin1Char('\\');
        }
        quoted += c;
    }
    quoted.replace(QLatin1Char('\\'), QStringLiteral("\\\\"));
    return QLatin1Char('"') + quoted + QLatin1Char('"');
}

QString XdgAutostartLoginItem::entryPath() const {
    return autostartDirectory_ + QStringLiteral("/paneforge.desktop");
}

bool XdgAutostartLoginItem::appliesToThisCopy() {
    return isInstalledLocation(executablePath_, homeDirectory_);
}

LoginItemStatus XdgAutostartLoginItem::status() {
    QFile file(entryPath());
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        return LoginItemStatus::NotRegistered;
    }
    bool inEntry = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(QLatin1Char('['))) {
            inEntry = line == QStringLiteral("[Desktop Entry]");
            continue;
        }
        if (!inEntry) {
            continue;
        }
        const QString key = line.section(QLatin1Char('='), 0, 0).trimmed();
        const QString value = line.section(QLatin1Char('='), 1).trimmed();
        if ((key == QStringLiteral("Hidden") && value == QStringLiteral("true")) ||
            (key == QStringLiteral("X-GNOME-Autostart-enabled") &&
             value == QStringLiteral("false"))) {
            return LoginItemStatus::NotRegistered;
        }
    }
    return LoginItemStatus::Enabled;
}

bool XdgAutostartLoginItem::registerItem() {
    if (!QDir().mkpath(autostartDirectory_)) {
        return false;
    }
    const QString entry = QStringLiteral("[Desktop Entry]\n"
                                         "Type=Application\n"
                                         "Name=Paneforge\n"
                                         "Comment=Zone-based window snapping\n"
                                         "Exec=%1\n"
                                         "Terminal=false\n"
                                         "X-GNOME-Autostart-enabled=true\n")
                              .arg(execValue(executablePath_));
    // Replaces a switched-off entry whole; written beside and renamed, never half there.
    QSaveFile file(entryPath());
    return file.open(QIODevice::WriteOnly) && file.write(entry.toUtf8()) >= 0 && file.commit();
}

bool XdgAutostartLoginItem::unregisterItem() {
    return !QFile::exists(entryPath()) || QFile::remove(entryPath());
}

} // namespace paneforge
