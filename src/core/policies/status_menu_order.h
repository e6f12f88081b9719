#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace paneforge {

// One row of the status menu.
struct StatusMenuRow {
    enum class Kind { Item, Separator };
    Kind kind = Kind::Separator;
    QString title;

    static StatusMenuRow item(const QString& title) { return {Kind::Item, title}; }
    static StatusMenuRow separator() { return {Kind::Separator, QString()}; }
    bool isSeparator() const { return kind == Kind::Separator; }

    friend bool operator==(const StatusMenuRow&, const StatusMenuRow&) = default;
};

QStringList paneforgeActionTitles();
QStringList paneforgeSettingTitles();
QStringList paneforgeHelpTitles();

// Appends one section, preceded by a separator when rows are already there; an empty section
// adds nothing, so the menu never has a leading, trailing or doubled separator.
void appendStatusMenuSection(std::vector<StatusMenuRow>& rows, const QStringList& titles);

std::vector<StatusMenuRow> statusMenuRows(const QStringList& actions, const QStringList& settings,
                                          const QStringList& help, const QString& updatesTitle,
                                          const QString& aboutTitle, const QString& quitTitle);
std::vector<StatusMenuRow> paneforgeStatusMenuRows();

} // namespace paneforge
