#include "release/release_folder.h"

#include "release/release_version.h"

#include <algorithm>

namespace paneforge::release {

namespace {

const QString kPrefix = QStringLiteral("Paneforge-");
const QString kSuffix = QStringLiteral(".dmg");

// Why an entry is not the publishable disk image, or nothing when it is.
std::optional<QString> problemWith(const ReleaseFolderEntry& entry,
                                   const ReleaseVersion& bundleVersion) {
    const QString lower = entry.name.toLower();
    if (entry.isDirectory) {
        if (lower.endsWith(QLatin1String(".app"))) {
            return QStringLiteral("an application bundle: publish its disk image instead");
        }
        if (lower.endsWith(QLatin1String(".dsym"))) {
            return QStringLiteral("debug symbols");
        }
        return QStringLiteral("a folder");
    }
    if (entry.name.startsWith(QLatin1Char('.'))) {
        return QStringLiteral("a hidden file");
    }
    if (lower.contains(QLatin1String("debug")) || lower.contains(QLatin1String("dsym"))) {
        return QStringLiteral("a debug build");
    }
    if (lower.contains(QLatin1String("unsigned"))) {
        return QStringLiteral("an unsigned build");
    }
    if (!lower.endsWith(kSuffix)) {
        return QStringLiteral("not a disk image");
    }
    if (!entry.name.startsWith(kPrefix) || !entry.name.endsWith(kSuffix)) {
        return QStringLiteral("not named %1").arg(diskImageName(QStringLiteral("<version>")));
    }
    const QString version =
        entry.name.mid(kPrefix.size(), entry.name.size() - kPrefix.size() - kSuffix.size());
    if (auto problem = ReleaseVersion::problemWith(version)) {
        return *problem;
    }
    if (version != bundleVersion.text()) {
        if (ReleaseVersion::parse(version) == bundleVersion) {
            return QStringLiteral("version written “%1”, but the bundle says “%2”: name it %3")
                .arg(version, bundleVersion.text(), diskImageName(bundleVersion.text()));
        }
        return QStringLiteral("version %1, but the bundle is version %2")
            .arg(version, bundleVersion.text());
    }
    if (entry.size <= 0) {
        return QStringLiteral("an empty file");
    }
    return std::nullopt;
}

} // namespace

QString diskImageName(const QString& version) {
    return kPrefix + version + kSuffix;
}

ReleaseFolderVerdict checkReleaseFolder(const std::vector<ReleaseFolderEntry>& entries,
                                        const QString& bundleVersion) {
    const ReleaseVersion version = ReleaseVersion::parse(bundleVersion);
    std::vector<ReleaseFolderEntry> sorted = entries;
    std::sort(
        sorted.begin(), sorted.end(),
        [](const ReleaseFolderEntry& a, const ReleaseFolderEntry& b) { return a.name < b.name; });
    ReleaseFolderVerdict verdict;
    for (const ReleaseFolderEntry& entry : sorted) {
        if (auto problem = problemWith(entry, version)) {
            verdict.offenders.push_back({entry.name, *problem});
        } else {
            verdict.publishable << entry.name;
        }
    }
    if (verdict.publishable.isEmpty()) {
        verdict.missing = QStringLiteral("there is no %1").arg(diskImageName(bundleVersion));
    }
    return verdict;
}

} // namespace paneforge::release
