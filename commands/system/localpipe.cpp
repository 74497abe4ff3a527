#include "commands/system/localpipe.h"

#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "framework/waitevents.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>

namespace dv::localpipe {

namespace {

const QString kLocalPrefix = QStringLiteral("\\\\.\\pipe\\");
// The part of a socket's send buffer that a Unix-domain packet cannot use.
constexpr int kPacketOverhead = 32;
// The largest packet sent. The kernel builds a packet of one block of memory and at most 17 pages:
// with 4 KiB pages and its 4 MiB limit for one block, a little more than 4 MiB in all (beyond that
// the send fails with ENOBUFS, whatever the send buffer). A round 4 MiB is within that everywhere.
constexpr int kLargestPacket = 4 << 20;

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

// The endpoint folder must be the user's own and writable by nobody else: in a folder another user
// controls, that user could put an endpoint of their own, take the call and forge the reply. A
// folder that is not there yet is no danger; the connect tries wait for a server to make it.
void CheckEndpointFolder(const QString& endpointPath)
{
    const QString folder = QFileInfo(endpointPath).path();
    struct stat info{};
    if (::lstat(QFile::encodeName(folder).constData(), &info) != 0) return;
    if (!S_ISDIR(info.st_mode) || info.st_uid != ::geteuid() || (info.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
        Fail(Format(_("Das Pipe-Verzeichnis %s gehört nicht dem Benutzer oder ist für andere beschreibbar; "
                      "die Pipe wird nicht benutzt."),
                    {folder}));
    }
}

TSocketFd ConnectWithRetry(const QString& path, const TRunControl* stop, const TConnectTimings& timings)
{
    CheckEndpointFolder(path);
    int error = 0;
    TSocketFd fd = TryConnect(path, error);
    const auto start = std::chrono::steady_clock::now();
    while (!fd.Valid()) {
        if (WaitForEvents({}, stop, timings.retryWaitMs) == TWaitResult::Stopped) Fail(SystemText(error));
        CheckEndpointFolder(path);
        fd = TryConnect(path, error);
        if (fd.Valid()) break;
        if (std::chrono::steady_clock::now() - start > std::chrono::milliseconds(timings.connectLimitMs)) {
            Fail(SystemText(error));
        }
    }
    return fd;
}

// Makes the socket's send buffer large enough for one packet of the message, as far as the system
// allows (net.core.wmem_max); the kernel doubles what it is asked for.
void FitSendBuffer(int fd, qsizetype messageSize)
{
    int size = 0;
    socklen_t length = sizeof size;
    if (::getsockopt(fd, SOL_SOCKET, SO_SNDBUF, &size, &length) != 0 || size >= messageSize + kPacketOverhead) return;
    const int wanted = static_cast<int>(std::min<qsizetype>(messageSize + kPacketOverhead, INT_MAX / 2));
    ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &wanted, sizeof wanted);
}

int LargestMessage(int fd)
{
    int size = 0;
    socklen_t length = sizeof size;
    ::getsockopt(fd, SOL_SOCKET, SO_SNDBUF, &size, &length);
    return std::clamp(size - kPacketOverhead, 0, kLargestPacket);
}

[[noreturn]] void FailTooLong(int fd, qsizetype size)
{
    Fail(Format(_("Die Nachricht ist mit %d Bytes zu lang: das System lässt höchstens %d Bytes in einer Nachricht zu."),
                {QString::number(size), QString::number(LargestMessage(fd))}));
}

// Sends the message as one packet; false when the stop event came first.
bool SendMessage(int fd, const QByteArray& message, const TRunControl* stop)
{
    FitSendBuffer(fd, message.size());
    if (message.size() > LargestMessage(fd)) FailTooLong(fd, message.size());
    for (;;) {
        if (::send(fd, message.constData(), static_cast<size_t>(message.size()), MSG_NOSIGNAL) >= 0) return true;
        if (errno == EINTR) continue;
        if (errno == EMSGSIZE) FailTooLong(fd, message.size());
        if (errno == ENOBUFS) {  // the one block of the packet could not be had (memory too fragmented)
            Fail(Format(_("Die Nachricht mit %d Bytes kann nicht als ein Paket gesendet werden: dem System fehlt "
                          "zusammenhängender Speicher dafür (%s)."),
                        {QString::number(message.size()), qt_error_string(ENOBUFS)}));
        }
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
    if (::lstat(dir.constData(), &info) != 0 || !S_ISDIR(info.st_mode) || info.st_uid != ::geteuid() ||
        (info.st_mode & (S_IWGRP | S_IWOTH)) != 0) {
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
