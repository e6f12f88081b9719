#include "core/policies/update_policy.h"

#include <QFileInfo>

namespace paneforge {

bool UpdaterLaunchPolicy::shouldStartUpdater(const QString& bundlePath) {
    // The extension of the last path component; a trailing slash (as bundle paths may carry)
    // does not hide it.
    QString path = bundlePath;
    while (path.size() > 1 && path.endsWith(QLatin1Char('/'))) {
        path.chop(1);
    }
    const QString name = QFileInfo(path).fileName();
    const auto dot = name.lastIndexOf(QLatin1Char('.'));
    return dot > 0 && name.mid(dot + 1).toLower() == QLatin1String("app");
}

} // namespace paneforge
