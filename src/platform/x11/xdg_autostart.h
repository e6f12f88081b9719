#pragma once

#include "app/ports/shell_services.h"

#include <QString>

namespace paneforge {

// Launch at login on Linux: an XDG autostart entry, $XDG_CONFIG_HOME/autostart/paneforge.desktop,
// which every XDG desktop starts at login. The entry's presence is the system's state; one that
// the desktop's startup-applications settings switched off (Hidden=true, or GNOME's
// X-GNOME-Autostart-enabled=false) counts as off.
class XdgAutostartLoginItem final : public LoginItemService {
public:
    // `autostartDirectory` holds the entry; `executablePath` is the program the entry starts.
    XdgAutostartLoginItem(QString autostartDirectory, QString executablePath,
                          QString homeDirectory);
    // For the running process, in the user's autostart folder.
    static XdgAutostartLoginItem forThisProcess();

    // Installed by a package or by hand into a bin folder of the system, /opt or ~/.local; a
    // build tree is never one, wherever it is.
    static bool isInstalledLocation(const QString& executablePath, const QString& homeDirectory);
    // The Exec value for a path: quoted and escaped as the desktop entry format requires.
    static QString execValue(const QString& executablePath);

    QString entryPath() const;

    bool appliesToThisCopy() override;
    LoginItemStatus status() override;
    bool registerItem() override;
    bool unregisterItem() override;

private:
    QString autostartDirectory_;
    QString executablePath_;
    QString homeDirectory_;
};

} // namespace paneforge
