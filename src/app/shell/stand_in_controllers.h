#pragma once

#include "app/ports/shell_windows.h"

#include <QString>
#include <functional>

namespace paneforge {

// Stand-ins for the feature controllers that are not built yet, with the entry points the menu
// and the hot keys call. Each call writes one diagnostic line and does nothing else, so every row
// and hot key is wired and its use shows in the log until the real controller takes its place.
class StandInController {
public:
    using LogSink = std::function<void(const QString&)>;

protected:
    StandInController(QString type, LogSink log)
        : type_(std::move(type))
        , log_(std::move(log)) {}
    // "<type>.<entry> [detail]: not built yet"
    void called(const QString& entry, const QString& detail = {}) const;

private:
    QString type_;
    LogSink log_;
};

class StandInQuickStartController final : public StandInController {
public:
    explicit StandInQuickStartController(LogSink log)
        : StandInController(QStringLiteral("StandInQuickStartController"), std::move(log)) {}
    void show() { called(QStringLiteral("show")); }
};

} // namespace paneforge
