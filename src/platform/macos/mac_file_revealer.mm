#include "platform/macos/mac_shell_services.h"

#import <AppKit/AppKit.h>

namespace paneforge {

void FinderFileRevealer::reveal(const QString& path) {
    // NSWorkspace.h: -activateFileViewerSelectingURLs: with the one file.
    NSURL* url = [NSURL fileURLWithPath:path.toNSString()];
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:@[ url ]];
}

} // namespace paneforge
