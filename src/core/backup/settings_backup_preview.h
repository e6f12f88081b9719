#pragma once

#include "core/backup/settings_backup.h"

#include <QDateTime>
#include <QLocale>
#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

namespace paneforge {

struct SettingsBackupPreviewLayout {
    QString name; // the name to show: "Untitled" for a blank one
    GridDefinition grid;

    friend bool operator==(const SettingsBackupPreviewLayout& a,
                           const SettingsBackupPreviewLayout& b) {
        return a.name == b.name && a.grid.hasSameContent(b.grid);
    }
};

struct SettingsBackupPreviewGroup {
    std::vector<SettingsBackupPreviewLayout> layouts;

    QStringList layoutNames() const;
    friend bool operator==(const SettingsBackupPreviewGroup&,
                           const SettingsBackupPreviewGroup&) = default;
};

struct SettingsBackupPreviewSection {
    QString title;
    std::vector<SettingsBackupPreviewLayout> layouts;

    friend bool operator==(const SettingsBackupPreviewSection&,
                           const SettingsBackupPreviewSection&) = default;
};

struct SettingsBackupPreview {
    QString appVersion;
    QDateTime exportedAt;
    std::vector<SettingsBackupPreviewGroup> displayGroups; // by ascending display key
    SettingsBackupPreviewLayout defaultLayout;

    QString defaultLayoutName() const { return defaultLayout.name; }
    friend bool operator==(const SettingsBackupPreview&, const SettingsBackupPreview&) = default;
};

namespace SettingsBackupPreviewBuilder {
using DateFormatter = std::function<QString(const QDateTime&)>;

// Medium date and short time in the user's locale and time zone.
DateFormatter defaultDateFormatter();
// A medium date and a short time in `locale`'s order and words, as a person there writes them:
// the locale's long date without the weekday and with short month names ("Mar 14, 2025",
// "14. März 2025"), then its short time without seconds.
QString mediumDateShortTime(const QDateTime& localTime, const QLocale& locale);

SettingsBackupPreview preview(const SettingsBackupDocument& document);
// "Default" alone when the backup has no per-display layouts, else "Display 1", "Display 2", ...
std::vector<SettingsBackupPreviewSection> sections(const SettingsBackupPreview& preview);
QString headerText(const SettingsBackupPreview& preview, const DateFormatter& dateFormatter);
QString informativeText(const SettingsBackupPreview& preview, const DateFormatter& dateFormatter);
} // namespace SettingsBackupPreviewBuilder

// Geometry of the restore preview's board of layout cards, in points.
namespace RestorePreviewBoardLayout {
inline constexpr double cardWidth = 132;
inline constexpr double cardHeight = 100;
inline constexpr double cardGap = 8;
inline constexpr double sectionGap = 12;
inline constexpr double sectionHeaderHeight = 20;
inline constexpr double padding = 16;
inline constexpr int maxCardsPerRow = 5;
inline constexpr double chromeHeaderHeight = 96;
inline constexpr double chromeFooterHeight = 56;
inline constexpr double maxScrollHeight = 360;

struct Rect {
    double x, y, width, height;
    friend bool operator==(const Rect&, const Rect&) = default;
};
struct Size {
    double width, height;
    friend bool operator==(const Size&, const Size&) = default;
};

int rowCount(int layoutCount);
int cardsPerRow(int layoutCount);
double sectionHeight(int layoutCount);
double boardHeight(const std::vector<int>& sectionCounts);
double boardWidth(const std::vector<int>& sectionCounts);
double sectionMinY(int index, const std::vector<int>& sectionCounts);
// Within a section, y measured from the section's top.
Rect cardFrame(int index);
Size panelSize(const std::vector<int>& sectionCounts);
} // namespace RestorePreviewBoardLayout

} // namespace paneforge
