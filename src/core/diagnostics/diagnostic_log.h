#pragma once

#include <QString>
#include <functional>

namespace paneforge {

// Where a component writes its diagnostic lines: the support log file a user attaches to a report
// (FileLogger in the agent, a list in tests). Lines that matter while the agent runs go to the
// system log as well, through the component's Logger; this is the file's copy. An empty one
// discards.
using DiagnosticLog = std::function<void(const QString&)>;

} // namespace paneforge
