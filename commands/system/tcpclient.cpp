#include "commands/system/tcpclient.h"

#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "framework/typeconversion.h"
#include "framework/waitevents.h"

#include <QRegularExpression>

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace dv::tcpclient {

namespace {

[[noreturn]] void Fail(const QString& message) { throw TDravikException(QStringLiteral("TCP: ") + message); }

// error is taken before the message is built, which may itself change errno.
[[noreturn]] void FailSystem(const char* pattern, int error)
{
    const QString reason = qt_error_string(error);
    Fail(Format(_(pattern), {reason}));
}

using TAddressList = std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)>;

TAddressList Resolve(const QString& host, int port)
{
    if (host.trimmed().isEmpty()) Fail(_("Es wurde kein Host angegeben."));
    addrinfo hints{};
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo* found = nullptr;
    const int r = ::getaddrinfo(host.trimmed().toUtf8().constData(), QByteArray::number(port).constData(), &hints, &found);
    if (r != 0) {
        Fail(Format(_("Der Host %s ist nicht auflösbar: %s"), {host, QString::fromLocal8Bit(::gai_strerror(r))}));
    }
    return TAddressList(found, &::freeaddrinfo);
}

// One address: 0 on success, -1 when stopped, else the error number.
int ConnectTo(const addrinfo& address, TSocketFd& fd, const TRunControl* stop)
{
    fd = TSocketFd(::socket(address.ai_family, address.ai_socktype | SOCK_NONBLOCK | SOCK_CLOEXEC, address.ai_protocol));
    if (!fd.Valid()) return errno;
    if (::connect(fd.Get(), address.ai_addr, address.ai_addrlen) == 0) return 0;
    if (errno != EINPROGRESS) return errno;
    if (WaitForEvents({{fd.Get(), POLLOUT}}, stop, -1) == TWaitResult::Stopped) return -1;
    int error = 0;
    socklen_t size = sizeof error;
    if (::getsockopt(fd.Get(), SOL_SOCKET, SO_ERROR, &error, &size) != 0) return errno;
    return error;
}

}  // namespace

TSocketFd Connect(const QString& host, int port, const TRunControl* stop)
{
    const TAddressList addresses = Resolve(host, port);
    int error = ECONNREFUSED;
    for (const addrinfo* a = addresses.get(); a; a = a->ai_next) {
        TSocketFd fd;
        error = ConnectTo(*a, fd, stop);
        if (error == 0) return fd;
        if (error < 0) return {};
    }
    Fail(Format(_("Keine Verbindung zu %s:%d: %s"), {host, QString::number(port), qt_error_string(error)}));
}

bool SendAll(int fd, const QByteArray& bytes, const TRunControl* stop)
{
    qsizetype sent = 0;
    while (sent < bytes.size()) {
        const ssize_t n = ::send(fd, bytes.constData() + sent, static_cast<size_t>(bytes.size() - sent), MSG_NOSIGNAL);
        if (n >= 0) {
            sent += n;
            continue;
        }
        if (errno == EINTR) continue;
        if (errno != EAGAIN) FailSystem("Senden fehlgeschlagen: %s", errno);
        if (WaitForEvents({{fd, POLLOUT}}, stop, -1) == TWaitResult::Stopped) return false;
    }
    return true;
}

TReply ReadReply(int fd, const QByteArray& sentinel, const TRunControl* stop, qsizetype limit)
{
    TReply reply;
    char chunk[65536];
    qsizetype searchFrom = 0;
    for (;;) {
        if (!sentinel.isEmpty()) {
            if (reply.bytes.indexOf(sentinel, searchFrom) >= 0) return reply;
            searchFrom = std::max<qsizetype>(0, reply.bytes.size() - sentinel.size() + 1);
        }
        if (reply.bytes.size() > limit) {
            Fail(Format(_("Die Antwort ist länger als %d Bytes, ohne dass ihr Ende empfangen wurde."),
                        {QString::number(limit)}));
        }
        if (sentinel.isEmpty()) {
            // Only what has already arrived: read without waiting, end at the first empty read.
            const ssize_t n = ::recv(fd, chunk, sizeof chunk, MSG_DONTWAIT);
            if (n > 0) {
                reply.bytes.append(chunk, n);
                continue;
            }
            if (n < 0 && errno == EINTR) continue;
            if (n < 0 && errno != EAGAIN) FailSystem("Lesen fehlgeschlagen: %s", errno);
            return reply;
        }
        if (WaitForEvents({{fd, POLLIN}}, stop, -1) == TWaitResult::Stopped) {
            reply.stopped = true;
            return reply;
        }
        const ssize_t n = ::recv(fd, chunk, sizeof chunk, MSG_DONTWAIT);
        if (n > 0) {
            reply.bytes.append(chunk, n);
        } else if (n == 0) {
            Fail(Format(_("Die Verbindung wurde geschlossen, bevor das Ende der Antwort empfangen wurde "
                          "(%d Bytes empfangen)."),
                        {QString::number(reply.bytes.size())}));
        } else if (errno != EINTR && errno != EAGAIN) {
            FailSystem("Lesen fehlgeschlagen: %s", errno);
        }
    }
}

QByteArray CutAtSentinel(const QByteArray& reply, const QByteArray& sentinel)
{
    if (sentinel.isEmpty()) return reply;
    qsizetype end = reply.indexOf(sentinel);
    if (end < 0) return reply;
    if (sentinel == "\n" && end > 0 && reply[end - 1] == '\r') --end;
    return reply.left(end);
}

QString SentinelText(const QString& parameterText)
{
    static const QRegularExpression bracketed(QStringLiteral(R"(^\[\s*(\d{1,3}(\s*,\s*\d{1,3})*)?\s*\]$)"));
    static const QRegularExpression braced(QStringLiteral(R"(^(\{\d{1,3}\})+$)"));
    if (!bracketed.match(parameterText).hasMatch() && !braced.match(parameterText).hasMatch()) return parameterText;
    static const QRegularExpression number(QStringLiteral(R"(\d+)"));
    QString text;
    for (const QRegularExpressionMatch& m : number.globalMatch(parameterText)) {
        const int code = m.captured().toInt();
        if (code > 255) return parameterText;
        text += Chr1252(code);
    }
    return text;
}

}  // namespace dv::tcpclient
