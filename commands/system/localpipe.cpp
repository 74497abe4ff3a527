#include "commands/system/localpipe.h"

#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "framework/waitevents.h"

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>

namespace dv::localpipe {

namespace {

const QString kLocalPrefix = QStringLiteral("\\\\.\\pipe\\");

[[noreturn]] void Fail(const QString& reason)
{
    throw TDVRuntimeException(QStringLiteral("CallNamedPipe: ") + reason);
}

QString SystemText(int error)
{
    // On expiry of the busy wait the pipe's own wording, as the busy pipe error reads.
    if (error == EAGAIN) return _("Alle Pipeinstanzen sind ausgelastet.");
    return qt_error_string(error);
}

sockaddr_un Address(const QString& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray bytes = QFile::encodeName(path);
    std::copy(bytes.begin(), bytes.end(), address.sun_path);
    return address;
}

// One non-blocking connect. A Unix-domain connect ends at once: EAGAIN when the server's queue of
// unanswered connections is full (every instance busy), ENOENT or ECONNREFUSED when nobody serves.
TSocketFd TryConnect(const QString& path, int& error)
{
    TSocketFd fd(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!fd.Valid()) {
        error = errno;
        return fd;
    }
    const sockaddr_un address = Address(path);
    if (::connect(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        error = errno;
        fd.Reset();
    }
    return fd;
}

TSocketFd ConnectWithRetry(const QString& path, const TRunControl* stop, const TConnectTimings& timings)
{
    int error = 0;
    TSocketFd fd = TryConnect(path, error);
    const auto start = std::chrono::steady_clock::now();
    while (!fd.Valid()) {
        if (WaitForEvents({}, stop, timings.retryWaitMs) == TWaitResult::Stopped) Fail(SystemText(error));
        fd = TryConnect(path, error);
        if (fd.Valid()) break;
        if (std::chrono::steady_clock::now() - start > std::chrono::milliseconds(timings.connectLimitMs)) {
            Fail(SystemText(error));
        }
    }
    return fd;
}

// Sends the message as one packet; false when the stop event came first.
bool SendMessage(int fd, const QByteArray& message, const TRunControl* stop)
{
    for (;;) {
        if (::send(fd, message.constData(), static_cast<size_t>(message.size()), MSG_NOSIGNAL) >= 0) return true;
        if (errno == EINTR) continue;
        if (errno != EAGAIN) Fail(qt_error_string(errno));
        if (WaitForEvents({{fd, POLLOUT}}, stop, -1) == TWaitResult::Stopped) return false;
    }
}

}  // namespace

QString EndpointDirectory()
{
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (!runtime.isEmpty() && QDir(runtime).exists()) return runtime + QStringLiteral("/dvpipe");
    return QStringLiteral("/tmp/dvpipe-%1").arg(::getuid());
}

QString EndpointName(const QString& pipeName)
{
    if (pipeName.isEmpty()) Fail(_("Es wurde kein Pipe-Name angegeben."));
    QString name = pipeName;
    if (pipeName.startsWith('\\')) {
        if (!pipeName.startsWith(QStringLiteral("\\\\"))) {
            Fail(Format(_("Ungültiger Pipe-Name \"%s\": erwartet wird NAME oder \\\\.\\pipe\\NAME."), {pipeName}));
        }
        const QString server = pipeName.mid(2).section('\\', 0, 0);
        if (server != QStringLiteral(".")) {
            Fail(Format(_("Pipes auf anderen Rechnern (\"%s\") werden nicht unterstützt, nur lokale Pipes "
                          "(NAME oder \\\\.\\pipe\\NAME)."),
                        {server}));
        }
        if (!pipeName.startsWith(kLocalPrefix, Qt::CaseInsensitive)) {
            Fail(Format(_("Ungültiger Pipe-Name \"%s\": erwartet wird NAME oder \\\\.\\pipe\\NAME."), {pipeName}));
        }
        name = pipeName.mid(kLocalPrefix.size());
    }
    if (name.isEmpty() || name == QStringLiteral(".") || name == QStringLiteral("..") || name.contains('/') ||
        name.contains(QChar(0))) {
        Fail(Format(_("Ungültiger Pipe-Name \"%s\"."), {pipeName}));
    }
    return name;
}

QString EndpointPath(const QString& endpointName)
{
    const QString path = EndpointDirectory() + '/' + endpointName;
    if (QFile::encodeName(path).size() >= static_cast<qsizetype>(sizeof(sockaddr_un{}.sun_path))) {
        Fail(Format(_("Der Pipe-Name \"%s\" ist zu lang."), {endpointName}));
    }
    return path;
}

QByteArray Transact(const QString& endpointPath, const QByteArray& message, const TRunControl* stop,
                    const TConnectTimings& timings)
{
    const TSocketFd fd = ConnectWithRetry(endpointPath, stop, timings);
    if (!SendMessage(fd.Get(), message, stop)) return {};
    char buffer[kReplyBufferSize];
    for (;;) {
        if (WaitForEvents({{fd.Get(), POLLIN}}, stop, -1) == TWaitResult::Stopped) return {};
        iovec part{buffer, sizeof buffer};
        msghdr header{};
        header.msg_iov = &part;
        header.msg_iovlen = 1;
        const ssize_t n = ::recvmsg(fd.Get(), &header, 0);
        if (n < 0) {
            if (errno == EINTR || errno == EAGAIN) continue;
            Fail(qt_error_string(errno));
        }
        if (header.msg_flags & MSG_TRUNC) {
            Fail(Format(_("Weitere Daten sind verfügbar: die Antwort ist länger als %d Bytes."),
                        {QString::number(kReplyBufferSize)}));
        }
        // A packet of no bytes and a server that closed without answering read alike here: both
        // give the empty reply.
        return QByteArray(buffer, n);
    }
}

TSocketFd ListenEndpoint(const QString& endpointName, int backlog)
{
    const QString directory = EndpointDirectory();
    const QByteArray dir = QFile::encodeName(directory);
    if (::mkdir(dir.constData(), 0700) != 0 && errno != EEXIST) {
        const QString reason = qt_error_string(errno);
        throw TDravikException(Format(_("Das Pipe-Verzeichnis %s kann nicht angelegt werden: %s"), {directory, reason}));
    }
    struct stat info{};
    if (::lstat(dir.constData(), &info) != 0 || !S_ISDIR(info.st_mode) || info.st_uid != ::getuid()) {
        throw TDravikException(Format(_("Das Pipe-Verzeichnis %s ist kein eigenes Verzeichnis."), {directory}));
    }
    const QString path = EndpointPath(endpointName);
    const QByteArray file = QFile::encodeName(path);
    if (::lstat(file.constData(), &info) == 0) {
        int error = 0;
        if (S_ISSOCK(info.st_mode) && !TryConnect(path, error).Valid() && error == ECONNREFUSED) {
            ::unlink(file.constData());  // left behind by a server that has ended
        } else {
            throw TDravikException(Format(_("Die Pipe %s ist bereits vergeben."), {endpointName}));
        }
    }
    TSocketFd fd(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    const sockaddr_un address = Address(path);
    if (!fd.Valid() || ::bind(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(fd.Get(), backlog) != 0) {
        const QString reason = qt_error_string(errno);
        throw TDravikException(Format(_("Die Pipe %s kann nicht eingerichtet werden: %s"),
                                      {endpointName, reason}));
    }
    return fd;
}

}  // namespace dv::localpipe
