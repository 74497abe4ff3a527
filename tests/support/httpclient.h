#pragma once
// A plain HTTP/1.1 client over a POSIX socket, for tests that answer the served HTML forms: the
// request goes out exactly as written, without any client-side path clean-up.
#include <QByteArray>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace dv::test {

struct THttpReply { int status = 0; QByteArray body; };

// Sends one request to 127.0.0.1:port; status 0 when nothing answered within waitSeconds.
inline THttpReply Http(int port, const QByteArray& request, int waitSeconds = 20)
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    const timeval wait{waitSeconds, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &wait, sizeof wait);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    THttpReply reply;
    if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        ::close(fd);
        return reply;
    }
    for (qsizetype sent = 0; sent < request.size();) {
        const ssize_t n = ::send(fd, request.constData() + sent, static_cast<size_t>(request.size() - sent), MSG_NOSIGNAL);
        if (n <= 0) break;
        sent += n;
    }
    QByteArray in;
    char buffer[4096];
    for (;;) {
        const qsizetype headerEnd = in.indexOf("\r\n\r\n");
        if (headerEnd >= 0) {
            const QByteArray head = in.left(headerEnd).toLower();
            const qsizetype at = head.indexOf("content-length:");
            const qsizetype length = at < 0 ? 0 : head.mid(at + 15, head.indexOf("\r\n", at) - at - 15).trimmed().toLongLong();
            if (in.size() >= headerEnd + 4 + length) {
                reply.status = in.mid(9, 3).toInt();
                reply.body = in.mid(headerEnd + 4, length);
                break;
            }
        }
        const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
        if (n <= 0) break;
        in.append(buffer, n);
    }
    ::close(fd);
    return reply;
}


// A GET of path; host is the Host header, "127.0.0.1:port" unless given.
inline QByteArray GetRequest(int port, const QByteArray& path, const QByteArray& host = {})
{
    const QByteArray h = host.isEmpty() ? "127.0.0.1:" + QByteArray::number(port) : host;
    return "GET " + path + " HTTP/1.1\r\nHost: " + h + "\r\nConnection: close\r\n\r\n";
}

// A POST of url-encoded form fields to path; length is the Content-Length, the body's size unless given.
inline QByteArray PostRequest(int port, const QByteArray& path, const QByteArray& body, qint64 length = -1)
{
    return "POST " + path + " HTTP/1.1\r\nHost: 127.0.0.1:" + QByteArray::number(port) +
           "\r\nContent-Type: application/x-www-form-urlencoded\r\nContent-Length: " +
           QByteArray::number(length < 0 ? body.size() : length) + "\r\nConnection: close\r\n\r\n" + body;
}

}  // namespace dv::test
