#pragma once

#include "app/ports/shell_services.h"
#include "core/diagnostics/logger_factory.h"

namespace paneforge {

// Shows a file in the desktop's file manager with the freedesktop FileManager1 interface
// (ShowItems, which opens the folder with the file selected). Without a session bus or a file
// manager that answers it, the folder is opened with the desktop's default handler instead.
class DBusFileRevealer final : public FileRevealer {
public:
    DBusFileRevealer();
    void reveal(const QString& path) override;

private:
    void openFolder(const QString& path);

    Logger logger_;
};

} // namespace paneforge
