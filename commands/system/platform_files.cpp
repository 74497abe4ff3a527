#include "commands/system/platform_files.h"

#include "framework/translate.h"

#include <QDir>
#include <QFileInfo>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

namespace dv {

namespace {

QString ErrorText(int error) { return QString::fromLocal8Bit(std::strerror(error)); }

bool IsNumber(const char* name)
{
    if (!*name) return false;
    for (; *name; ++name) {
        if (*name < '0' || *name > '9') return false;
    }
    return true;
}

// Another process with a descriptor on the same file (device and inode). Processes of other users
// whose descriptors we may not read are skipped; their locks are still seen by HoldsLock.
bool OpenedElsewhere(const struct stat& file)
{
    DIR* proc = ::opendir("/proc");
    if (!proc) return false;
    const std::string self = std::to_string(::getpid());
    bool found = false;
    while (!found) {
        const dirent* process = ::readdir(proc);
        if (!process) break;
        if (!IsNumber(process->d_name) || self == process->d_name) continue;
        const std::string fdDir = std::string("/proc/") + process->d_name + "/fd";
        DIR* fds = ::opendir(fdDir.c_str());
        if (!fds) continue;
        while (const dirent* fd = ::readdir(fds)) {
            struct stat target {};
            if (!IsNumber(fd->d_name) || ::stat((fdDir + '/' + fd->d_name).c_str(), &target) != 0) continue;
            if (target.st_dev == file.st_dev && target.st_ino == file.st_ino) {
                found = true;
                break;
            }
        }
        ::closedir(fds);
    }
    ::closedir(proc);
    return found;
}

// A record lock of another process, or a flock that keeps us from locking the file ourselves.
bool HoldsLock(const QByteArray& path)
{
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) return false;
    struct flock probe {};
    probe.l_type = F_WRLCK;
    probe.l_whence = SEEK_SET;
    bool locked = ::fcntl(fd, F_GETLK, &probe) == 0 && probe.l_type != F_UNLCK;
    if (!locked) {
        if (::flock(fd, LOCK_EX | LOCK_NB) == 0) ::flock(fd, LOCK_UN);
        else locked = errno == EWOULDBLOCK;
    }
    ::close(fd);
    return locked;
}

// Temporary files are ".<name>" + this suffix, the X replaced by six letters or digits: a pattern
// of their own, so that removing leftovers never touches a file of the user's.
constexpr char kTempSuffix[] = ".dvtmp-XXXXXX";
constexpr qsizetype kTempRandomPart = 6;

// The file a name stands for: a symbolic link is followed.
QByteArray TargetPath(const QString& path)
{
    const QFileInfo info(path);
    return QFile::encodeName(info.exists() ? info.canonicalFilePath() : info.absoluteFilePath());
}

bool WriteAll(int fd, const char* data, qsizetype size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, static_cast<size_t>(size));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        data += n;
        size -= n;
    }
    return true;
}

// One replacement of a file: a temporary sibling that is renamed over the target on Commit, and
// removed when the writer ends without a commit.
class TAtomicWriter {
public:
    // mode: the permissions the new file gets; owner: the file whose owner and group it gets,
    // when it has one.
    TAtomicWriter(const QString& target, mode_t mode, const struct stat* owner = nullptr)
    {
        target_ = TargetPath(target);
        dir_ = QFileInfo(QString::fromLocal8Bit(target_)).absolutePath().toLocal8Bit();
        const QByteArray pattern = dir_ + "/." + QFileInfo(QString::fromLocal8Bit(target_)).fileName().toLocal8Bit() + kTempSuffix;
        // The lock is held until the file is renamed: another writer's sweep takes only files whose
        // writer is gone (the system has released its lock). A sweep that came between the file's
        // making and the lock has removed it; then the writer makes another.
        for (int tries = 0;; ++tries) {
            temp_ = pattern;
            fd_ = ::mkostemp(temp_.data(), O_CLOEXEC);
            if (fd_ < 0) {
                error_ = errno;
                return;
            }
            struct stat made {};
            if (::flock(fd_, LOCK_EX) != 0 || ::fstat(fd_, &made) != 0 || made.st_nlink > 0) break;
            ::close(fd_);
            if (tries == 10) {
                fd_ = -1;
                error_ = ENOENT;
                return;
            }
        }
        created_ = true;
        if (owner && (owner->st_uid != ::geteuid() || owner->st_gid != ::getegid()) &&
            ::fchown(fd_, owner->st_uid, owner->st_gid) != 0) {
            ownerKept_ = false;
        }
        ::fchmod(fd_, mode);  // after fchown, which may clear the set-id bits
    }
    // False when the new file could not take the old one's owner.
    bool OwnerKept() const { return ownerKept_; }
    ~TAtomicWriter()
    {
        if (fd_ >= 0) ::close(fd_);
        if (created_ && !committed_) ::unlink(temp_.constData());
    }
    TAtomicWriter(const TAtomicWriter&) = delete;
    TAtomicWriter& operator=(const TAtomicWriter&) = delete;

    bool Write(const char* data, qsizetype size)
    {
        if (error_ == 0 && !WriteAll(fd_, data, size)) error_ = errno ? errno : EIO;
        return error_ == 0;
    }

    QString Commit()
    {
        if (error_ == 0 && ::fsync(fd_) != 0) error_ = errno;
        if (error_ == 0 && ::rename(temp_.constData(), target_.constData()) != 0) error_ = errno;
        if (fd_ >= 0 && ::close(fd_) != 0 && error_ == 0) error_ = errno;  // the lock goes after the rename
        fd_ = -1;
        if (error_ != 0) return ErrorText(error_);
        committed_ = true;
        const int dirFd = ::open(dir_.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (dirFd >= 0) {
            ::fsync(dirFd);
            ::close(dirFd);
        }
        return {};
    }

private:
    QByteArray target_;
    QByteArray dir_;
    QByteArray temp_;
    int fd_ = -1;
    int error_ = 0;
    bool created_ = false;
    bool committed_ = false;
    bool ownerKept_ = true;
};

mode_t ModeOf(const QByteArray& path, mode_t fallback)
{
    struct stat st {};
    return ::stat(path.constData(), &st) == 0 ? (st.st_mode & 07777) : fallback;
}

// The permissions a new file gets from open(): 0666 less the umask, read without changing it
// (umask() itself would race with other threads creating files).
mode_t DefaultMode()
{
    mode_t mask = 022;
    if (FILE* status = std::fopen("/proc/self/status", "re")) {
        char line[256];
        while (std::fgets(line, sizeof line, status)) {
            if (std::strncmp(line, "Umask:", 6) == 0) mask = static_cast<mode_t>(std::strtoul(line + 6, nullptr, 8));
        }
        std::fclose(status);
    }
    return 0666 & ~mask;
}

}  // namespace

bool IsFileInUse(const QString& path)
{
    const QByteArray name = path.toLocal8Bit();
    struct stat file {};
    if (::stat(name.constData(), &file) != 0) return false;
    return OpenedElsewhere(file) || HoldsLock(name);
}

TFileLock::TFileLock(const QString& path, bool exclusive, int waitMs)
{
    const QByteArray target = TargetPath(path);
    const QFileInfo info(QFile::decodeName(target));
    const QByteArray lockFile = QFile::encodeName(info.absolutePath() + QStringLiteral("/.") + info.fileName() + QStringLiteral(".lock"));
    fd_ = ::open(lockFile.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0666);
    if (fd_ < 0) fd_ = ::open(lockFile.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
    if (fd_ < 0) fd_ = ::open(target.constData(), O_RDONLY | O_CLOEXEC);
    if (fd_ < 0) {
        error_ = ErrorText(errno);
        return;
    }
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(waitMs);
    auto pause = std::chrono::milliseconds(1);
    while (::flock(fd_, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB) != 0) {
        if (errno == EINTR) continue;
        if (errno != EWOULDBLOCK) {
            error_ = ErrorText(errno);
            return;
        }
        if (Clock::now() >= deadline) {
            error_ = Format(_("Eine andere Anwendung hält die Sperre %s seit mehr als %d ms."),
                            {QFile::decodeName(lockFile), QString::number(waitMs)});
            return;
        }
        std::this_thread::sleep_for(pause);
        pause = std::min(pause * 2, std::chrono::milliseconds(5));
    }
}

TFileLock::~TFileLock()
{
    if (fd_ >= 0) ::close(fd_);  // closing releases the lock
}

namespace {

// Temporary files of this file that a writer left when it was killed: the writer's own pattern,
// and no live writer's lock on them (a copy onto the file may be under way).
void RemoveLeftoverTemporaries(const QByteArray& target)
{
    const QFileInfo info(QFile::decodeName(target));
    const QString prefix = '.' + info.fileName() + QLatin1String(kTempSuffix).chopped(kTempRandomPart);
    const QDir dir = info.absoluteDir();
    for (const QString& name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
        if (name.size() != prefix.size() + kTempRandomPart || !name.startsWith(prefix)) continue;
        const QStringView random = QStringView(name).sliced(prefix.size());
        if (!std::all_of(random.begin(), random.end(), [](QChar c) { return c.isLetterOrNumber() && c.unicode() < 128; })) continue;
        const QByteArray path = QFile::encodeName(dir.filePath(name));
        const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW);
        if (fd < 0) continue;
        if (::flock(fd, LOCK_EX | LOCK_NB) == 0) ::unlink(path.constData());  // under the lock: see TAtomicWriter
        ::close(fd);
    }
}

// Whether the file may be written by us: a replacement needs only the folder's permission, but a
// file the writer may not write to (read-only, as Windows refuses to write it) is refused.
QString RefuseUnwritable(const QByteArray& target)
{
    if (::faccessat(AT_FDCWD, target.constData(), W_OK, AT_EACCESS) == 0) return {};
    const int error = errno;
    if (error == ENOENT) return {};
    return Format(_("keine Schreibberechtigung für die Datei (%s)"), {ErrorText(error)});
}

// Rewrites the file in place: not a single step, so only under the lock.
QString WriteInPlace(const QByteArray& target, const QByteArray& content)
{
    const int fd = ::open(target.constData(), O_WRONLY | O_CLOEXEC);
    if (fd < 0) return ErrorText(errno);
    int error = 0;
    if (!WriteAll(fd, content.constData(), content.size()) || ::ftruncate(fd, content.size()) != 0 || ::fsync(fd) != 0) {
        error = errno ? errno : EIO;
    }
    if (::close(fd) != 0 && error == 0) error = errno;
    return error == 0 ? QString() : ErrorText(error);
}

}  // namespace

QString ReplaceFileContent(const QString& path, const QByteArray& content)
{
    const QByteArray target = TargetPath(path);
    struct stat old {};
    if (::stat(target.constData(), &old) != 0) return ErrorText(errno);
    if (const QString refused = RefuseUnwritable(target); !refused.isEmpty()) return refused;
    RemoveLeftoverTemporaries(target);
    const QByteArray dir = QFile::encodeName(QFileInfo(QFile::decodeName(target)).absolutePath());
    if (::access(dir.constData(), W_OK | X_OK) == 0) {
        TAtomicWriter writer(QFile::decodeName(target), old.st_mode & 07777, &old);
        if (writer.OwnerKept()) {
            writer.Write(content.constData(), content.size());
            return writer.Commit();
        }
    }
    return WriteInPlace(target, content);
}

QString CopyFileAtomically(const QString& source, const QString& target)
{
    if (const QString refused = RefuseUnwritable(TargetPath(target)); !refused.isEmpty()) return refused;
    const QByteArray from = source.toLocal8Bit();
    const int in = ::open(from.constData(), O_RDONLY | O_CLOEXEC);
    if (in < 0) return ErrorText(errno);
    TAtomicWriter writer(target, ModeOf(from, DefaultMode()));
    char buffer[1 << 16];
    for (;;) {
        const ssize_t n = ::read(in, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) {
            const int e = errno;
            ::close(in);
            return ErrorText(e);
        }
        if (n == 0 || !writer.Write(buffer, n)) break;
    }
    ::close(in);
    return writer.Commit();
}

}  // namespace dv
