#pragma once

#include <QFile>

/// Opens `path` for writing in `mode` (WriteOnly with Append or Truncate) as a file that belongs to
/// the user alone: created 0600, tightened to 0600 when it exists, never through a symbolic or hard
/// link, never a pipe or device, never another user's file. False when any of that cannot be had.
[[nodiscard]] bool openPrivateFile(QFile& file, const QString& path, QIODevice::OpenMode mode);

/// Replaces `path` by `bytes` in one step, 0600; the old content stays when anything fails, a full
/// disk included.
[[nodiscard]] bool replacePrivateFile(const QString& path, const QByteArray& bytes);

/// What was written to the file, or the names that were changed in the folder, is to outlast a power cut.
/// Best effort: not every file system can do that.
void settle(QFile& file);
void settleFolder(const QString& folder);
