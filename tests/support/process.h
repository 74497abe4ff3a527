#pragma once
// Real files, the environment and the dvrun binary for tests that work as a person would: files
// written and read back, small shell programs, and dvrun started without a display.
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QStringList>

#include <unistd.h>

#include <stdexcept>

namespace dv::test {

inline QByteArray ReadFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

inline void WriteFile(const QString& path, const QByteArray& content)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(content) != content.size()) throw std::runtime_error("test: cannot write");
}

// Writes an executable shell script.
inline void WriteProgram(const QString& path, const QByteArray& body)
{
    WriteFile(path, "#!/bin/sh\n" + body + "\n");
    QFile::setPermissions(path, QFile::permissions(path) | QFileDevice::ExeOwner);
}

// Sets an environment variable for the life of the object.
struct TScopedEnvironment {
    TScopedEnvironment(const char* name, const QByteArray& value) : name(name), old(qgetenv(name)), had(qEnvironmentVariableIsSet(name))
    {
        qputenv(name, value);
    }
    ~TScopedEnvironment() { had ? qputenv(name, old) : qunsetenv(name); }
    const char* name;
    QByteArray old;
    bool had;
};

inline constexpr uid_t kOtherUser = 65534;  // nobody

// Whether a run asOtherUser runs as a user whom permissions bind: anyone but root, and root
// through setpriv.
inline bool CanActAsOtherUser() { return ::geteuid() != 0 || !QStandardPaths::findExecutable("setpriv").isEmpty(); }

struct TDvrunOptions {
    QString workDir = {};          // the current directory when empty
    QStringList environment = {};  // "NAME=VALUE" sets, "-NAME" removes; DISPLAY and WAYLAND_DISPLAY are always gone
    bool asOtherUser = false;      // as the user nobody when the tests run as root, whom no permission check lets pass
    int limitMs = 60000;           // a run still going after it counts as hanging and is killed
};

struct TDvrunRun {
    int exitCode = -1;  // -1 when it was killed for hanging
    bool finished = false;
    bool crashed = false;  // ended by a signal
    QString out;
    QString err;
    QByteArray bytes;  // stdout as written
};

inline void StartDvrun(QProcess& p, const QStringList& args, const TDvrunOptions& options = {})
{
    QStringList command = QStringList{DV_BINARY_DIR "/host/dvrun"} + args;
    if (options.asOtherUser && ::geteuid() == 0) {
        const QString id = QString::number(kOtherUser);
        command = QStringList{"setpriv", "--reuid=" + id, "--regid=" + id, "--clear-groups", "--"} + command;
    }
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const QString& e : QStringList{"-DISPLAY", "-WAYLAND_DISPLAY"} + options.environment) {
        e.startsWith('-') ? env.remove(e.mid(1)) : env.insert(e.section('=', 0, 0), e.section('=', 1));
    }
    p.setProcessEnvironment(env);
    p.setWorkingDirectory(options.workDir);
    p.start(command.front(), command.mid(1));
}

inline TDvrunRun FinishDvrun(QProcess& p, int limitMs = 60000)
{
    TDvrunRun run;
    run.finished = p.waitForFinished(limitMs);
    if (!run.finished) p.kill(), p.waitForFinished(5000);
    run.exitCode = run.finished ? p.exitCode() : -1;
    run.crashed = p.exitStatus() == QProcess::CrashExit;
    run.bytes = p.readAllStandardOutput();
    run.out = QString::fromUtf8(run.bytes);
    run.err = QString::fromUtf8(p.readAllStandardError());
    return run;
}

inline TDvrunRun RunDvrun(const QStringList& args, const TDvrunOptions& options = {})
{
    QProcess p;
    StartDvrun(p, args, options);
    return FinishDvrun(p, options.limitMs);
}

}  // namespace dv::test
