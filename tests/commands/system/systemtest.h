#pragma once
// What the system command tests share: the test host and parameter lists, failure texts, timing,
// files, and servers that the pipe and TCP tests run on a thread of their own (every server wait
// also watches the server's quit event).
#include "commands/system/localpipe.h"
#include "commands/system/platform_process.h"
#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/waitevents.h"
#include "tests/commands/params.h"
#include "tests/support/process.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <thread>

namespace dv::test {

using Clock = std::chrono::steady_clock;
inline long long MsSince(Clock::time_point t)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - t).count();
}

// Whether pred came to hold within ms, asked every 10 ms.
inline bool Eventually(const std::function<bool()>& pred, int ms = 5000)
{
    for (const auto start = Clock::now(); !pred(); std::this_thread::sleep_for(std::chrono::milliseconds(10))) {
        if (MsSince(start) > ms) return false;
    }
    return true;
}

// A parameter list of name/text pairs whose texts may be computed.
inline TParamList ParamsOf(std::initializer_list<std::pair<const char*, QString>> rows)
{
    TParamList params;
    for (const auto& [name, text] : rows) params.AddString(QString::fromUtf8(name), text);
    return params;
}

// The message of the exception a call raised, or "" when it succeeded.
inline QString FailureOf(const std::function<void()>& call) { return RaisedMessage<TDravikException>(call).value_or(""); }

// Signals stop after delayMs; MsSinceSignal tells how long a wait went on after that.
struct TStopLater {
    TStopLater(TRunControl& stop, int delayMs)
        : thread([this, &stop, delayMs] {
              std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
              signalled = Clock::now();
              stop.SignalStop();
          }) {}
    ~TStopLater() { if (thread.joinable()) thread.join(); }
    long long MsSinceSignal() { thread.join(); return MsSince(signalled); }
    Clock::time_point signalled;
    std::thread thread;
};

// Serves each accepted connection with handler(connection, quit), starting after startDelayMs.
using TConnectionHandler = std::function<void(int fd, const TRunControl& quit)>;
struct TTestServer {
    TTestServer(TSocketFd listenerFd, TConnectionHandler handler, int startDelayMs = 0)
        : listener(std::move(listenerFd)), thread([this, handler = std::move(handler), startDelayMs] {
              if (startDelayMs > 0 && quit.WaitForStop(startDelayMs)) return;
              while (WaitForEvents({{listener.Get(), POLLIN}}, &quit, -1) == TWaitResult::Ready) {
                  TSocketFd client(::accept4(listener.Get(), nullptr, nullptr, SOCK_CLOEXEC));
                  if (client.Valid()) handler(client.Get(), quit);
              }
          }) {}
    ~TTestServer() { quit.SignalStop(); thread.join(); }
    TSocketFd listener;
    TRunControl quit;
    std::thread thread;
};

inline QString UniquePipeName()
{
    static std::atomic<int> counter{0};
    return QStringLiteral("dvtest-%1-%2").arg(::getpid()).arg(++counter);
}

struct TPipeServer {
    explicit TPipeServer(TConnectionHandler handler, int backlog = 16, int startDelayMs = 0)
        : server(localpipe::ListenEndpoint(name, backlog), std::move(handler), startDelayMs) {}
    ~TPipeServer() { QFile::remove(path); }
    const QString name = UniquePipeName();
    const QString path = localpipe::EndpointPath(name);
    TTestServer server;
};

// A loopback TCP socket on a port the system picks, listening or (for a port nobody serves) not.
inline TSocketFd LoopbackSocket(bool listen, int& port)
{
    TSocketFd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(fd.Get(), reinterpret_cast<sockaddr*>(&address), size) != 0 || (listen && ::listen(fd.Get(), 8) != 0) ||
        ::getsockname(fd.Get(), reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        throw std::runtime_error("test: no loopback socket");
    }
    port = ntohs(address.sin_port);
    return fd;
}

struct TTcpServer {
    explicit TTcpServer(TConnectionHandler handler) : server(LoopbackSocket(true, port), std::move(handler)) {}
    int port = 0;
    TTestServer server;
};

// What the peer sent first; empty on quit, on close or after 5 s.
inline QByteArray ReceiveSome(int fd, const TRunControl& quit)
{
    if (WaitForEvents({{fd, POLLIN}}, &quit, 5000) != TWaitResult::Ready) return {};
    char buffer[65536];
    const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
    return n > 0 ? QByteArray(buffer, n) : QByteArray();
}

inline void SendBytes(int fd, const QByteArray& bytes) { ::send(fd, bytes.constData(), size_t(bytes.size()), MSG_NOSIGNAL); }

inline sockaddr_un UnixAddress(const QString& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    QFile::encodeName(path).toStdString().copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

// An endpoint made by hand wherever path points, as another program could make one.
inline TSocketFd ListenAt(const QString& path)
{
    TSocketFd fd(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    const sockaddr_un address = UnixAddress(path);
    if (::bind(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || ::listen(fd.Get(), 8) != 0) {
        throw std::runtime_error("test: cannot listen");
    }
    return fd;
}

// A client that connects to a pipe endpoint and is never served: it takes a place in the queue.
inline TSocketFd ConnectFiller(const QString& endpointPath)
{
    TSocketFd fd(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    const sockaddr_un address = UnixAddress(endpointPath);
    if (::connect(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) throw std::runtime_error("test: no filler");
    return fd;
}

}  // namespace dv::test
