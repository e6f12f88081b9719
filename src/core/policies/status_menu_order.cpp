#include "core/policies/status_menu_order.h"

#include "core/policies/update_policy.h"

namespace paneforge {

QStringList paneforgeActionTitles() {
    return {QStringLiteral("Switch Layout\u2026"), QStringLiteral("Next Layout"),
            QStringLiteral("Previous Layout"), QStringLiteral("Move to Next Display"),
            QStringLiteral("Zone Editor\u2026")};
}

QStringList paneforgeSettingTitles() {
    return {QStringLiteral("Preferences\u2026"), QStringLiteral("Backup Settings\u2026"),
            QStringLiteral("Restore Settings\u2026")};
}

QStringList paneforgeHelpTitles() {
    return {QStringLiteral("Quick Start\u2026"), QStringLiteral("Reveal Log File")};
}

void appendStatusMenuSection(std::vector<StatusMenuRow>& rows, const QStringList& titles) {
    if (titles.isEmpty()) {
        return;
    }
    if (!rows.empty()) {
        rows.push_back(StatusMenuRow::separator());
    }
    for (const QString& title : titles) {
        rows.push_back(StatusMenuRow::item(title));
    }
}

std::vector<StatusMenuRow> statusMenuRows(const QStringList& actions, const QStringList& settings,
                                          const QStringList& help, const QString& updatesTitle,
                                          const QString& aboutTitle, const QString& quitTitle) {
    std::vector<StatusMenuRow> rows;
    appendStatusMenuSection(rows, actions);
    appendStatusMenuSection(rows, settings);
    appendStatusMenuSection(rows, help + QStringList{updatesTitle, aboutTitle});
    appendStatusMenuSection(rows, {quitTitle});
    return rows;
}

std::vector<StatusMenuRow> paneforgeStatusMenuRows() {
    return statusMenuRows(paneforgeActionTitles(), paneforgeSettingTitles(), paneforgeHelpTitles(),
                          UpdateMenuCopy::checkForUpdates, QStringLiteral("About Paneforge"),
                          QStringLiteral("Quit Paneforge"));
}

} // namespace paneforge
