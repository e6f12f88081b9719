#pragma once

#include "core/policies/privacy_permission_policy.h"

namespace paneforge {

// Runs a program to its end with its output sent nowhere; a program that cannot start gives -1.
class ProcessCommandRunner final : public CommandRunner {
public:
    int run(const QString& executable, const QStringList& arguments) override;
};

} // namespace paneforge
