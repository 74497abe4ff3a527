#pragma once
// File operations the system commands need beyond Qt: the in-use probe and writes that are atomic
// and on disk when they return.
#include <QByteArray>
#include <QString>

namespace dv {

// True when another process has the file open (found through /proc/<pid>/fd) or holds a lock on
// it (POSIX record lock or flock); false for a missing file. Our own open handles do not count.
bool IsFileInUse(const QString& path);

// Replaces the file's content in one step: a temporary file in the same folder is written,
// flushed to disk and renamed over the target; the folder is synced so the rename survives a
// crash. The target's permissions are kept; a symbolic link is followed. On failure the old file
// is untouched and the system's error text is returned; empty on success.
QString WriteFileAtomically(const QString& path, const QByteArray& content);

// Copies source over target (created or replaced) the same way; empty on success.
QString CopyFileAtomically(const QString& source, const QString& target);

}  // namespace dv
