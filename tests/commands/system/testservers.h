#pragma once
// Servers that the pipe and TCP tests run on a thread of the test process: a local pipe endpoint or
// a loopback TCP port, each connection handed to a handler. Every wait of a server also watches the
// server's quit event, so a test never leaves a thread behind.
#include "commands/system/localpipe.h"
#include "framework/services.h"
#include "framework/waitevents.h"

#include <QFile>

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>

namespace dv::test {

// handler(connection, quit): serves one accepted connection; waits must watch quit.
using TConnectionHandler = std::function<void(int fd, const TRunControl& quit)>;

class TTestServer {
public:
    ~TTestServer()
    {
        quit_.SignalStop();
        if (thread_.joinable()) thread_.join();
    }
    const TRunControl& Quit() const { return quit_; }

protected:
    // Serves connections on listener until quit, starting after startDelayMs.
    void Start(TSocketFd listener, TConnectionHandler handler, int startDelayMs = 0)
    {
        listener_ = std::move(listener);
        thread_ = std::thread([this, handler = std::move(handler), startDelayMs] {
            if (startDelayMs > 0 && quit_.WaitForStop(startDelayMs)) return;
            while (WaitForEvents({{listener_.Get(), POLLIN}}, &quit_, -1) == TWaitResult::Ready) {
                TSocketFd client(::accept4(listener_.Get(), nullptr, nullptr, SOCK_CLOEXEC));
                if (client.Valid()) handler(client.Get(), quit_);
            }
        });
    }
    TSocketFd listener_;

private:
    TRunControl quit_;
    std::thread thread_;
};

// A pipe endpoint with a name unique to this test process.
class TPipeServer : public TTestServer {
public:
    explicit TPipeServer(TConnectionHandler handler, int backlog = 16, int startDelayMs = 0)
        : name_(UniqueName()), path_(localpipe::EndpointPath(name_))
    {
        Start(localpipe::ListenEndpoint(name_, backlog), std::move(handler), startDelayMs);
    }
    ~TPipeServer() { QFile::remove(path_); }
    const QString& Name() const { return name_; }
    const QString& Path() const { return path_; }

    static QString UniqueName()
    {
        static std::atomic<int> counter{0};
        return QStringLiteral("dvtest-%1-%2").arg(::getpid()).arg(++counter);
    }

private:
    QString name_;
    QString path_;
};

// A loopback TCP port chosen by the system.
class TTcpServer : public TTestServer {
public:
    explicit TTcpServer(TConnectionHandler handler)
    {
        TSocketFd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        if (::bind(fd.Get(), reinterpret_cast<sockaddr*>(&address), size) != 0 || ::listen(fd.Get(), 8) != 0 ||
            ::getsockname(fd.Get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
            throw std::runtime_error("test TCP server: cannot listen on loopback");
        }
        port_ = ntohs(address.sin_port);
        Start(std::move(fd), std::move(handler));
    }
    int Port() const { return port_; }

private:
    int port_ = 0;
};

// Reads until the peer has sent something (or quit); what arrived, empty on quit or close.
inline QByteArray ReceiveSome(int fd, const TRunControl& quit)
{
    if (WaitForEvents({{fd, POLLIN}}, &quit, 5000) != TWaitResult::Ready) return {};
    char buffer[65536];
    const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
    return n > 0 ? QByteArray(buffer, n) : QByteArray();
}

inline void SendBytes(int fd, const QByteArray& bytes)
{
    ::send(fd, bytes.constData(), static_cast<size_t>(bytes.size()), MSG_NOSIGNAL);
}

// A client that connects to a pipe endpoint and is never served: it takes a place in the queue.
inline TSocketFd ConnectFiller(const QString& endpointPath)
{
    TSocketFd fd(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray bytes = QFile::encodeName(endpointPath);
    std::copy(bytes.begin(), bytes.end(), address.sun_path);
    if (::connect(fd.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
        throw std::runtime_error("test pipe filler: cannot connect");
    }
    return fd;
}

// A loopback port that was free a moment ago.
inline int FreeLoopbackPort()
{
    TSocketFd probe(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(probe.Get(), reinterpret_cast<sockaddr*>(&address), size) != 0 ||
        ::getsockname(probe.Get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::runtime_error("test: no free loopback port");
    }
    return ntohs(address.sin_port);
}

}  // namespace dv::test
