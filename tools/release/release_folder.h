#pragma once

#include <QString>
#include <QStringList>
#include <optional>
#include <stdexcept>
#include <vector>

namespace paneforge::release {

// One entry of a release folder, as the check sees it.
struct ReleaseFolderEntry {
    QString name;
    bool isDirectory = false;
    qint64 size = 0;
};

// A file that must not be published, and why.
struct ReleaseOffender {
    QString name;
    QString reason;

    friend bool operator==(const ReleaseOffender&, const ReleaseOffender&) = default;
};

struct ReleaseFolderVerdict {
    // The files that may be published (at most one disk image, the bundle's).
    QStringList publishable;
    // Every other entry, in name order.
    std::vector<ReleaseOffender> offenders;
    // Set when no disk image of the bundle's version is there.
    std::optional<QString> missing;

    bool ok() const { return offenders.empty() && !missing; }
};

// The name of the disk image of a version, as CPack names it: "Paneforge-1.2.1.dmg".
QString diskImageName(const QString& version);

// Which entries of a release folder may be published for a bundle of version `bundleVersion`
// (the CFBundleShortVersionString): only the disk image named for exactly that version
// (Paneforge-<version>.dmg). Everything else is an offender: folders (a leftover Paneforge.app or
// .dSYM), hidden files, anything with "debug", "dsym" or "unsigned" in its name, other file types,
// disk images of other versions or with malformed versions, and empty files. Throws
// ReleaseVersionError when `bundleVersion` itself is not a version.
ReleaseFolderVerdict checkReleaseFolder(const std::vector<ReleaseFolderEntry>& entries,
                                        const QString& bundleVersion);

} // namespace paneforge::release
