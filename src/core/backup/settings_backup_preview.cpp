#include "core/backup/settings_backup_preview.h"

#include <QLocale>
#include <QRegularExpression>
#include <algorithm>

namespace paneforge {

namespace {

SettingsBackupPreviewLayout previewLayout(const GridDefinition& grid) {
    return {grid.displayName(), grid};
}

QStringList headerLines(const SettingsBackupPreview& preview,
                        const SettingsBackupPreviewBuilder::DateFormatter& dateFormatter) {
    return {QStringLiteral(
                "This replaces your current layouts and preferences with the selected backup."),
            QStringLiteral("Version: ") + preview.appVersion,
            QStringLiteral("Exported: ") + dateFormatter(preview.exportedAt)};
}

} // namespace

QStringList SettingsBackupPreviewGroup::layoutNames() const {
    QStringList names;
    for (const auto& layout : layouts) {
        names.append(layout.name);
    }
    return names;
}

SettingsBackupPreviewBuilder::DateFormatter SettingsBackupPreviewBuilder::defaultDateFormatter() {
    return [](const QDateTime& date) { return mediumDateShortTime(date.toLocalTime(), QLocale()); };
}

QString SettingsBackupPreviewBuilder::mediumDateShortTime(const QDateTime& localTime,
                                                          const QLocale& locale) {
    // Qt offers long and short formats only; the medium one is the long one without the weekday
    // (and whatever separates it from the rest) and with abbreviated month names.
    QString dateFormat = locale.dateFormat(QLocale::LongFormat);
    static const QRegularExpression weekdayFirst(QStringLiteral("^dddd[^dMy']*"));
    static const QRegularExpression weekdayLast(QStringLiteral("[^dMy']*dddd$"));
    static const QRegularExpression weekdayInside(QStringLiteral("dddd\\s*"));
    dateFormat.remove(weekdayFirst).remove(weekdayLast).remove(weekdayInside);
    dateFormat.replace(QStringLiteral("MMMM"), QStringLiteral("MMM"));
    // Some locales' short time carries seconds (the C locale's "HH:mm:ss").
    QString timeFormat = locale.timeFormat(QLocale::ShortFormat);
    static const QRegularExpression seconds(QStringLiteral("[:.]ss"));
    timeFormat.remove(seconds);
    return locale.toString(localTime.date(), dateFormat.trimmed()) + QStringLiteral(", ") +
           locale.toString(localTime.time(), timeFormat);
}

SettingsBackupPreview
SettingsBackupPreviewBuilder::preview(const SettingsBackupDocument& document) {
    SettingsBackupPreview preview{document.appVersion,
                                  document.exportedAt,
                                  {},
                                  previewLayout(document.config.defaultLayout())};
    // std::map keeps the display keys in ascending order.
    for (const auto& [key, entry] : document.config.displays()) {
        SettingsBackupPreviewGroup group;
        for (const auto& grid : entry.layouts()) {
            group.layouts.push_back(previewLayout(grid));
        }
        preview.displayGroups.push_back(std::move(group));
    }
    return preview;
}

std::vector<SettingsBackupPreviewSection>
SettingsBackupPreviewBuilder::sections(const SettingsBackupPreview& preview) {
    if (preview.displayGroups.empty()) {
        return {{QStringLiteral("Default"), {preview.defaultLayout}}};
    }
    std::vector<SettingsBackupPreviewSection> result;
    for (size_t i = 0; i < preview.displayGroups.size(); ++i) {
        result.push_back(
            {QStringLiteral("Display %1").arg(i + 1), preview.displayGroups[i].layouts});
    }
    return result;
}

QString SettingsBackupPreviewBuilder::headerText(const SettingsBackupPreview& preview,
                                                 const DateFormatter& dateFormatter) {
    return headerLines(preview, dateFormatter).join(QLatin1Char('\n'));
}

QString SettingsBackupPreviewBuilder::informativeText(const SettingsBackupPreview& preview,
                                                      const DateFormatter& dateFormatter) {
    QStringList lines = headerLines(preview, dateFormatter);
    if (preview.displayGroups.empty()) {
        lines.append(QStringLiteral("Default: ") + preview.defaultLayoutName());
    }
    for (size_t i = 0; i < preview.displayGroups.size(); ++i) {
        lines.append(QStringLiteral("Display %1: ").arg(i + 1) +
                     preview.displayGroups[i].layoutNames().join(QStringLiteral(", ")));
    }
    return lines.join(QLatin1Char('\n'));
}

namespace RestorePreviewBoardLayout {

int rowCount(int layoutCount) {
    return layoutCount < 1 ? 0 : (layoutCount + maxCardsPerRow - 1) / maxCardsPerRow;
}

int cardsPerRow(int layoutCount) {
    return std::clamp(layoutCount, 1, maxCardsPerRow);
}

double sectionHeight(int layoutCount) {
    const int rows = std::max(1, rowCount(layoutCount)); // an empty section keeps one row
    return sectionHeaderHeight + rows * cardHeight + std::max(rows - 1, 0) * cardGap;
}

double boardHeight(const std::vector<int>& sectionCounts) {
    double height = 0;
    for (int count : sectionCounts) {
        height += sectionHeight(count);
    }
    return height + std::max(static_cast<int>(sectionCounts.size()) - 1, 0) * sectionGap;
}

double boardWidth(const std::vector<int>& sectionCounts) {
    int columns = 1;
    if (!sectionCounts.empty()) {
        columns = 0;
        for (int count : sectionCounts) {
            columns = std::max(columns, cardsPerRow(count));
        }
    }
    return columns * cardWidth + std::max(columns - 1, 0) * cardGap;
}

double sectionMinY(int index, const std::vector<int>& sectionCounts) {
    if (index <= 0) {
        return 0;
    }
    const std::vector<int> before(sectionCounts.begin(),
                                  sectionCounts.begin() +
                                      std::min<size_t>(index, sectionCounts.size()));
    return boardHeight(before) + sectionGap;
}

Rect cardFrame(int index) {
    const int column = index % maxCardsPerRow;
    const int row = index / maxCardsPerRow;
    return {column * (cardWidth + cardGap), sectionHeaderHeight + row * (cardHeight + cardGap),
            cardWidth, cardHeight};
}

Size panelSize(const std::vector<int>& sectionCounts) {
    return {std::max(boardWidth(sectionCounts), 420.0) + 2 * padding,
            std::min(boardHeight(sectionCounts), maxScrollHeight) + chromeHeaderHeight +
                chromeFooterHeight};
}

} // namespace RestorePreviewBoardLayout

} // namespace paneforge
