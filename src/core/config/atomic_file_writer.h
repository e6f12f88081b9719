#pragma once

#include <QByteArray>
#include <QString>

namespace paneforge {

// Writes bytes to a path atomically: the bytes go to a temporary file beside the target
// (".<name>.saving-XXXXXX"), are flushed to disk, and the file is renamed over the target; the
// folder is flushed after the rename, so that a power loss cannot undo a completed save. A reader
// sees the old file or the new one, never a part. Temporary files that a killed writer left behind
// are removed on the next write; a writer holds a lock on its temporary file for as long as it is
// visible, so a live one's file is never taken for a leftover. Returns an empty string on
// success, else the reason.
QString writeFileAtomically(const QString& path, const QByteArray& bytes);

namespace AtomicFileWriter {
// Whether a file name is one of the temporary names writeFileAtomically uses for `target`.
bool isTemporaryName(const QByteArray& name, const QByteArray& target);
} // namespace AtomicFileWriter

} // namespace paneforge
