#pragma once
// File operations the system commands need beyond Qt: the in-use probe, the lock around a
// read-modify-write, and writes that are on disk when they return.
#include <QByteArray>
#include <QString>

namespace dv {

// True when another process has the file open (found through /proc/<pid>/fd) or holds a lock on
// it (POSIX record lock or flock); false for a missing file. Our own open handles do not count.
bool IsFileInUse(const QString& path);

inline constexpr int kFileLockWaitMs = 5000;

// An advisory lock for one read-modify-write of a file among processes that all take it: an flock
// on the lock file ".<name>.lock" beside the file, so that renaming a new version over the file
// keeps the lock meaningful; on the file itself when its folder takes no lock file. Exclusive for
// a writer, shared for a reader; waits at most waitMs for the lock.
class TFileLock {
public:
    TFileLock(const QString& path, bool exclusive, int waitMs = kFileLockWaitMs);
    ~TFileLock();
    TFileLock(const TFileLock&) = delete;
    TFileLock& operator=(const TFileLock&) = delete;
    // Empty once locked, else why the lock was not had.
    const QString& Error() const { return error_; }

private:
    int fd_ = -1;
    QString error_;
};

// Replaces the content of an existing file while its TFileLock is held. When the folder is
// writable and the file's owner can be kept, in one step: a temporary file in the same folder is
// written, flushed to disk and renamed over the target, and the folder is synced so the rename
// survives a crash; owner, group and permissions are kept. Otherwise in place. A symbolic link is
// followed. Temporary files an earlier writer left behind when it crashed are removed first. Empty
// on success, else the system's error text.
QString ReplaceFileContent(const QString& path, const QByteArray& content);

// Copies source over target (created or replaced) in one step as above, the target taking the
// source's permissions; empty on success.
QString CopyFileAtomically(const QString& source, const QString& target);

}  // namespace dv
