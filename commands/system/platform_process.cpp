#include "commands/system/platform_process.h"

#include "framework/services.h"
#include "framework/translate.h"
#include "framework/waitevents.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>
#include <mutex>
#include <cstring>
#include <thread>
#include <vector>

extern char** environ;

namespace dv {

namespace {

bool IsBlank(QChar c) { return c == ' ' || c == '\t'; }

// The program name: quoted up to the next quote, else up to the first blank; no escapes. Unquoted,
// the first text up to a blank (or the line's end) that isProgram accepts, when one is.
QString TakeProgramName(const QString& line, qsizetype& i, const std::function<bool(const QString&)>& isProgram)
{
    while (i < line.size() && IsBlank(line[i])) ++i;
    const bool quoted = i < line.size() && line[i] == '"';
    if (quoted) ++i;
    const qsizetype start = i;
    for (qsizetype end = start; !quoted && isProgram && end <= line.size(); ++end) {
        if (end < line.size() && !IsBlank(line[end])) continue;
        const QString candidate = line.mid(start, end - start);
        if (!candidate.isEmpty() && isProgram(candidate)) {
            i = end;
            return candidate;
        }
    }
    while (i < line.size() && (quoted ? line[i] != '"' : !IsBlank(line[i]))) ++i;
    const QString name = line.mid(start, i - start);
    if (quoted && i < line.size()) ++i;
    return name;
}

}  // namespace

QStringList SplitCommandLine(const QString& commandLine, const std::function<bool(const QString&)>& isProgram)
{
    qsizetype i = 0;
    QStringList words{TakeProgramName(commandLine, i, isProgram)};
    if (words.front().isEmpty() && i >= commandLine.size()) return {};
    QString word;
    bool inWord = false;
    bool quoted = false;
    while (i < commandLine.size()) {
        const QChar c = commandLine[i];
        if (c == '\\') {
            qsizetype run = 0;
            while (i < commandLine.size() && commandLine[i] == '\\') ++run, ++i;
            const bool beforeQuote = i < commandLine.size() && commandLine[i] == '"';
            word += QString(beforeQuote ? run / 2 : run, '\\');
            if (beforeQuote && run % 2 == 1) word += commandLine[i++];
            inWord = true;
        } else if (c == '"') {
            if (quoted && i + 1 < commandLine.size() && commandLine[i + 1] == '"') {
                word += '"';
                ++i;
            } else {
                quoted = !quoted;
            }
            inWord = true;
            ++i;
        } else if (IsBlank(c) && !quoted) {
            if (inWord) words << word;
            word.clear();
            inWord = false;
            ++i;
        } else {
            word += c;
            inWord = true;
            ++i;
        }
    }
    if (inWord) words << word;
    return words;
}

QString ResolveProgramPath(const QString& program)
{
    if (!program.contains('/') || program.startsWith('/')) return program;
    return QDir::cleanPath(QDir::current().absoluteFilePath(program));
}

bool IsProgramFile(const QString& program)
{
    if (!program.contains('/')) return !QStandardPaths::findExecutable(program).isEmpty();
    return QFileInfo(ResolveProgramPath(program)).isFile();
}

namespace {

QString ErrorText(int error) { return QString::fromLocal8Bit(std::strerror(error)); }

// Kernels without pidfd_open: a thread waits for the end without reaping and reports it through a
// pipe, so the caller still waits on one descriptor together with the stop event.
int ExitNotifierFd(pid_t pid)
{
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC) != 0) return -1;
    std::thread([pid, writeFd = fds[1]] {
        siginfo_t info{};
        while (::waitid(P_PID, static_cast<id_t>(pid), &info, WEXITED | WNOWAIT) != 0 && errno == EINTR) {
        }
        const char byte = 1;
        [[maybe_unused]] const ssize_t n = ::write(writeFd, &byte, 1);
        ::close(writeFd);
    }).detach();
    return fds[0];
}

int ProcessFd(pid_t pid)
{
#ifdef SYS_pidfd_open
    const long fd = ::syscall(SYS_pidfd_open, pid, 0);
    if (fd >= 0) return static_cast<int>(fd);
#endif
    return ExitNotifierFd(pid);
}

// Owns the spawn attributes and file actions for one start.
struct TSpawnSetup {
    posix_spawnattr_t attr;
    posix_spawn_file_actions_t actions;
    TSpawnSetup()
    {
        posix_spawnattr_init(&attr);
        posix_spawn_file_actions_init(&actions);
    }
    ~TSpawnSetup()
    {
        posix_spawn_file_actions_destroy(&actions);
        posix_spawnattr_destroy(&attr);
    }
};

std::mutex g_outputMutex;
QString g_outputFolder;
QString g_lastRefusedOutput;  // the output file last warned about, so a loop of starts warns once

QString OutputPathIn(const QString& folder) { return QDir(folder).absoluteFilePath(QStringLiteral("exec-%1.log").arg(::getpid())); }

}  // namespace

void SetProgramOutputFolder(const QString& folder)
{
    std::lock_guard lock(g_outputMutex);
    g_outputFolder = folder;
}

QString ProgramOutputPath()
{
    std::lock_guard lock(g_outputMutex);
    return OutputPathIn(g_outputFolder.isEmpty() ? QDir::currentPath() : g_outputFolder);
}

TProgramOutput::TProgramOutput()
{
    const QString named = ProgramOutputPath();
    for (const QString& path : {named, OutputPathIn(QDir::tempPath()), QStringLiteral("/dev/null")}) {
        fd_ = ::open(QFile::encodeName(path).constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0666);
        if (fd_ >= 0) {
            path_ = path;
            break;
        }
        if (error_.isEmpty()) error_ = ErrorText(errno);
    }
    if (fd_ < 0 || path_ == named) return;
    std::lock_guard lock(g_outputMutex);
    if (g_lastRefusedOutput == named) return;
    g_lastRefusedOutput = named;
    warning_ = path_ == QStringLiteral("/dev/null")
                   ? Format(_("Die Ausgabedatei %s kann nicht angelegt werden: %s; die Ausgabe gestarteter Programme wird verworfen."),
                            {named, error_})
                   : Format(_("Die Ausgabedatei %s kann nicht angelegt werden: %s; die Ausgabe gestarteter Programme geht nach %s."),
                            {named, error_, path_});
}

TProgramOutput::~TProgramOutput()
{
    if (fd_ >= 0) ::close(fd_);
}

TChildProcess::~TChildProcess()
{
    if (pid_ > 0 && !reaped_) {
        // The program outlives the wait; whoever ends it, its exit status must not linger as a zombie.
        std::thread([pid = pid_] {
            while (::waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
            }
        }).detach();
    }
    if (pidfd_ >= 0) ::close(pidfd_);
}

QString TChildProcess::Start(const QStringList& argv, const QString& workDir, int outputFd)
{
    if (argv.isEmpty()) return ErrorText(ENOENT);
    std::vector<QByteArray> words;
    for (const QString& w : argv) words.push_back(w.toLocal8Bit());
    std::vector<char*> args;
    for (QByteArray& w : words) args.push_back(w.data());
    args.push_back(nullptr);

    TSpawnSetup setup;
    // A group of its own, so that ending the program reaches its children too; default signal
    // handling, whatever the host's threads block or ignore.
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setpgroup(&setup.attr, 0);
    posix_spawnattr_setsigmask(&setup.attr, &none);
    posix_spawnattr_setsigdefault(&setup.attr, &all);
    posix_spawnattr_setflags(&setup.attr, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
    posix_spawn_file_actions_addopen(&setup.actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&setup.actions, outputFd, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&setup.actions, outputFd, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&setup.actions, STDERR_FILENO + 1);  // no inherited handles
    const QByteArray dir = workDir.toLocal8Bit();
    if (!dir.isEmpty()) posix_spawn_file_actions_addchdir_np(&setup.actions, dir.constData());

    pid_t pid = -1;
    const int error = ::posix_spawnp(&pid, args[0], &setup.actions, &setup.attr, args.data(), environ);
    if (error != 0) return ErrorText(error);
    pid_ = pid;
    pidfd_ = ProcessFd(pid);
    if (pidfd_ < 0) {
        const int e = errno;
        AskToTerminate();
        return ErrorText(e);
    }
    return {};
}

bool TChildProcess::Reap(bool block)
{
    if (reaped_) return true;
    int status = 0;
    pid_t r;
    do {
        r = ::waitpid(pid_, &status, block ? 0 : WNOHANG);
    } while (r < 0 && errno == EINTR);
    if (r < 0 && errno == ECHILD) {
        // Someone else collected it (a host that ignores SIGCHLD): ended, code unknown.
        reaped_ = true;
        exitCode_ = 0;
        return true;
    }
    if (r != pid_) return false;
    reaped_ = true;
    exitCode_ = WIFEXITED(status) ? WEXITSTATUS(status) : WIFSIGNALED(status) ? 128 + WTERMSIG(status) : 0;
    return true;
}

TChildWait TChildProcess::Wait(const TRunControl* stop, std::uint32_t limitMs)
{
    if (pid_ <= 0) return TChildWait::TimedOut;
    constexpr std::uint32_t kInfinite = 0xFFFFFFFFu;
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(limitMs);
    for (;;) {
        int slice = -1;
        if (limitMs != kInfinite) {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
            slice = static_cast<int>(std::clamp<long long>(left, 0, INT_MAX));
        }
        const TWaitResult r = WaitForEvents({{pidfd_, POLLIN}}, stop, slice);
        // The program's end counts first when both arrive, as with a wait on several handles.
        if (r != TWaitResult::TimedOut && Reap(r == TWaitResult::Ready)) return TChildWait::Exited;
        if (r == TWaitResult::Stopped) return TChildWait::Stopped;
        if (r == TWaitResult::TimedOut && slice != INT_MAX) return Reap(false) ? TChildWait::Exited : TChildWait::TimedOut;
    }
}

bool TChildProcess::AskToTerminate() const
{
    if (pid_ <= 0) return false;
    return ::kill(-pid_, SIGTERM) == 0;
}

}  // namespace dv
