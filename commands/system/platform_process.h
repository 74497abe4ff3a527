#pragma once
// Starting another program and waiting for it: the one place where the program start command meets
// the operating system (posix_spawn, a process descriptor, the process group).
#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>
#include <sys/types.h>

namespace dv {

class TRunControl;

// Splits a command line into words the way a POSIX shell does, without expanding anything:
// blanks separate words, '...' keeps everything literally, "..." keeps everything but lets a
// backslash escape \ " $ ` and a line break, a backslash outside quotes takes the next character
// literally. nullopt when a quote is left open.
std::optional<QStringList> SplitCommandLine(const QString& commandLine);

enum class TChildWait {
    Exited,    // the program ended; ExitCode() holds its code
    Stopped,   // the run's stop event ended the wait
    TimedOut,
};

// A started program in a process group of its own. The destructor never blocks: a program still
// running is left running and reaped in the background when it ends.
class TChildProcess {
public:
    TChildProcess() = default;
    ~TChildProcess();
    TChildProcess(const TChildProcess&) = delete;
    TChildProcess& operator=(const TChildProcess&) = delete;

    // Starts argv[0] (searched on PATH when it holds no '/') with stdin from /dev/null, in
    // workDir unless that is empty. On failure returns the system's error text, else empty.
    QString Start(const QStringList& argv, const QString& workDir);

    // Waits for the end of the program, the stop event (may be null) and the limit at once.
    // 0xFFFFFFFF means no limit, as the Windows wait treats it.
    TChildWait Wait(const TRunControl* stop, std::uint32_t limitMs);

    // The program's exit code after Wait returned Exited; a program ended by a signal reports
    // 128 + the signal number as a shell does.
    int ExitCode() const { return exitCode_; }
    pid_t Pid() const { return pid_; }

    // Asks the whole process group to end (SIGTERM; never SIGKILL). False when none is left.
    bool AskToTerminate() const;

private:
    bool Reap(bool block);
    pid_t pid_ = -1;
    int pidfd_ = -1;
    bool reaped_ = false;
    int exitCode_ = 0;
};

}  // namespace dv
