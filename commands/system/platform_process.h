#pragma once
// Starting another program and waiting for it: the one place where the program start command meets
// the operating system (posix_spawn, a process descriptor, the process group).
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <sys/types.h>

namespace dv {

class TRunControl;

// Splits a command line into words the way a Windows program reads its command line, so that
// parameter texts written for Windows stations keep their meaning. The program name comes first:
// up to the next quote when it starts with one, else up to the first blank, with backslashes as
// they stand. The arguments after it follow the C runtime's rules: blanks separate words outside
// quotes; a run of backslashes is literal unless a quote follows it, then each pair gives one
// backslash and an odd one out makes the quote literal; "" inside quotes is one literal quote;
// ' is an ordinary character. A quote left open runs to the end of the line.
// With isProgram, an unquoted program name is looked for as the Windows start looks for it, so that
// a path with blanks needs no quotes: the text up to each blank in turn, then the whole line, and
// the first that isProgram accepts is the program; when none is, the name ends at the first blank.
QStringList SplitCommandLine(const QString& commandLine, const std::function<bool(const QString&)>& isProgram = {});

// Whether a program name names an existing file: a path (holding a '/') as ResolveProgramPath takes
// it, a bare name as an executable on PATH.
bool IsProgramFile(const QString& program);

// A program path that holds a '/' and is relative is taken from the current directory, before the
// child changes to its working directory; a bare name stays as it is for the PATH search.
QString ResolveProgramPath(const QString& program);

// Where started programs write their output, so that they never hold the host's own output open:
// the file exec-<pid of the host>.log in the folder the host names (dvrun: the folder of its log,
// else the script's folder), in the current directory while none is named.
void SetProgramOutputFolder(const QString& folder);
QString ProgramOutputPath();

// The output file, opened for appending (created when missing). When the folder takes no file
// (a shared read-only script folder), the same name in the temporary folder stands in, else
// /dev/null, and Warning() says so once per file that could not be made. Fd() -1 and Error() the
// system's text when nothing could be opened.
class TProgramOutput {
public:
    TProgramOutput();
    ~TProgramOutput();
    TProgramOutput(const TProgramOutput&) = delete;
    TProgramOutput& operator=(const TProgramOutput&) = delete;
    int Fd() const { return fd_; }
    const QString& Path() const { return path_; }
    const QString& Error() const { return error_; }
    const QString& Warning() const { return warning_; }

private:
    QString path_;
    QString error_;
    QString warning_;
    int fd_ = -1;
};

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

    // Starts argv[0] (searched on PATH when it holds no '/') with stdin from /dev/null and stdout
    // and stderr on outputFd, in workDir unless that is empty. On failure returns the system's
    // error text, else empty.
    QString Start(const QStringList& argv, const QString& workDir, int outputFd);

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
