#pragma once

#include <QString>

namespace paneforge {

namespace UpdaterLaunchPolicy {
// The updater runs only from an application bundle: a path whose extension is "app", in any case.
bool shouldStartUpdater(const QString& bundlePath);
} // namespace UpdaterLaunchPolicy

namespace UpdateMenuCopy {
inline const QString checkForUpdates = QStringLiteral("Check for Updates\u2026");
inline const QString updaterUnavailableTitle = QStringLiteral("Check for Updates");
// macOS, when Paneforge runs outside its application bundle.
inline const QString updaterUnavailableMessage = QStringLiteral(
    "To check for updates, install Paneforge from its disk image and open it from the "
    "Applications folder. A development run does not start the updater.");
// Linux: Paneforge has no updater of its own there.
inline const QString packageManagerMessage = QStringLiteral(
    "Paneforge is updated by your system's package manager. Update it there to get the newest "
    "version.");
} // namespace UpdateMenuCopy

} // namespace paneforge
