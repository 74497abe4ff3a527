// dvpipe-echo: answers CallNamedPipe and TCP for tests and examples.
//   dvpipe-echo [--pipe NAME] [--tcp PORT] [--exit-after SECONDS]
// A pipe message is answered with the same bytes, one reply per connection. A TCP message (what
// arrives on a connection until it has been quiet for kTcpQuietMs) is answered with the same bytes
// followed by CR LF, so a TCP call with the default sentinel gets back what it sent, however long.
// "ready" on stdout says both are listening; SIGINT, SIGTERM or the time limit end the server and
// remove the pipe endpoint.
#include "commands/system/localpipe.h"
#include "framework/exceptions.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QFile>
#include <QStringList>

#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <sys/socket.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace {

volatile sig_atomic_t g_quit = 0;
void OnSignal(int) { g_quit = 1; }

struct TOptions {
    QString pipe;
    int tcpPort = 0;
    int exitAfterSeconds = 0;  // 0: no limit
};

bool ReadOptions(const QStringList& args, TOptions& options)
{
    for (qsizetype i = 0; i + 1 < args.size(); i += 2) {
        bool ok = true;
        if (args[i] == QStringLiteral("--pipe")) options.pipe = args[i + 1];
        else if (args[i] == QStringLiteral("--tcp")) options.tcpPort = args[i + 1].toInt(&ok);
        else if (args[i] == QStringLiteral("--exit-after")) options.exitAfterSeconds = args[i + 1].toInt(&ok);
        else return false;
        if (!ok) return false;
    }
    return args.size() % 2 == 0 && (!options.pipe.isEmpty() || options.tcpPort > 0);
}

dv::TSocketFd ListenTcp(int port)
{
    dv::TSocketFd fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const int yes = 1;
    ::setsockopt(fd.Get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::bind(fd.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || ::listen(fd.Get(), 16) != 0) {
        std::fprintf(stderr, "dvpipe-echo: TCP port %d: %s\n", port, std::strerror(errno));
        std::exit(1);
    }
    return fd;
}

// TCP has no message boundaries: a message has ended when nothing more arrives for this long.
constexpr auto kTcpQuietMs = std::chrono::milliseconds(50);

struct TClient {
    dv::TSocketFd fd;
    bool pipe;
    QByteArray received;  // TCP: the message so far
    std::chrono::steady_clock::time_point lastData{};
};

// A pipe message is answered whole, however long: the packet is measured before it is read, and
// the send buffer is made to hold it as far as the system allows.
bool AnswerPipe(int fd)
{
    char probe;
    const ssize_t size = ::recv(fd, &probe, 1, MSG_PEEK | MSG_TRUNC);
    if (size < 0) return errno == EINTR;
    QByteArray message(size, Qt::Uninitialized);
    const ssize_t n = ::recv(fd, message.data(), static_cast<size_t>(message.size()), 0);
    if (n < 0) return errno == EINTR;
    int buffer = 0;
    socklen_t length = sizeof buffer;
    if (::getsockopt(fd, SOL_SOCKET, SO_SNDBUF, &buffer, &length) == 0 && buffer < n + 64) {
        const int wanted = static_cast<int>(n) + 64;
        ::setsockopt(fd, SOL_SOCKET, SO_SNDBUF, &wanted, sizeof wanted);
    }
    if (::send(fd, message.constData(), static_cast<size_t>(n), MSG_NOSIGNAL) < 0) {
        std::fprintf(stderr, "dvpipe-echo: %zd bytes not echoed: %s\n", n, std::strerror(errno));
    }
    return false;
}

// Reads from one readable client; false when the connection is done.
bool Answer(TClient& client)
{
    if (client.pipe) return AnswerPipe(client.fd.Get());
    char buffer[65536];
    const ssize_t n = ::recv(client.fd.Get(), buffer, sizeof buffer, 0);
    if (n < 0) return errno == EINTR;
    if (n == 0) return false;
    client.received.append(buffer, n);
    client.lastData = std::chrono::steady_clock::now();
    return true;
}

// Echoes a TCP message that has ended; false when the connection is done.
bool EchoEndedMessage(TClient& client)
{
    if (client.pipe || client.received.isEmpty() || std::chrono::steady_clock::now() - client.lastData < kTcpQuietMs) return true;
    const QByteArray reply = client.received + "\r\n";
    client.received.clear();
    for (qsizetype sent = 0; sent < reply.size();) {
        const ssize_t n = ::send(client.fd.Get(), reply.constData() + sent, static_cast<size_t>(reply.size() - sent), MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        sent += n;
    }
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    TOptions options;
    if (!ReadOptions(app.arguments().mid(1), options)) {
        std::fputs("usage: dvpipe-echo [--pipe NAME] [--tcp PORT] [--exit-after SECONDS]\n", stderr);
        return 2;
    }
    signal(SIGINT, OnSignal);
    signal(SIGTERM, OnSignal);
    signal(SIGPIPE, SIG_IGN);

    dv::TSocketFd pipeListener;
    dv::TSocketFd tcpListener;
    QString pipePath;
    try {
        if (!options.pipe.isEmpty()) {
            pipePath = dv::localpipe::EndpointPath(dv::localpipe::EndpointName(options.pipe));
            pipeListener = dv::localpipe::ListenEndpoint(dv::localpipe::EndpointName(options.pipe));
        }
    } catch (const dv::TDravikException& e) {
        std::fprintf(stderr, "dvpipe-echo: %s\n", e.what());
        return 1;
    }
    if (options.tcpPort > 0) tcpListener = ListenTcp(options.tcpPort);
    std::puts("ready");
    std::fflush(stdout);

    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(options.exitAfterSeconds);
    std::vector<TClient> clients;
    while (!g_quit) {
        if (options.exitAfterSeconds > 0 && std::chrono::steady_clock::now() >= deadline) break;
        std::vector<pollfd> polls{{pipeListener.Get(), POLLIN, 0}, {tcpListener.Get(), POLLIN, 0}};
        int waitMs = 200;
        for (const TClient& c : clients) {
            polls.push_back({c.fd.Get(), POLLIN, 0});
            if (!c.received.isEmpty()) waitMs = static_cast<int>(kTcpQuietMs.count());
        }
        const int ready = ::poll(polls.data(), polls.size(), waitMs);
        for (std::size_t i = clients.size(); i-- > 0;) {
            const bool readable = ready > 0 && polls[i + 2].revents;
            if ((readable && !Answer(clients[i])) || !EchoEndedMessage(clients[i])) {
                clients.erase(clients.begin() + static_cast<std::ptrdiff_t>(i));
            }
        }
        if (ready <= 0) continue;
        for (int l = 0; l < 2; ++l) {
            if (!(polls[static_cast<std::size_t>(l)].revents & POLLIN)) continue;
            dv::TSocketFd accepted(::accept4(polls[static_cast<std::size_t>(l)].fd, nullptr, nullptr, SOCK_CLOEXEC));
            if (accepted.Valid()) clients.push_back({std::move(accepted), l == 0, {}, {}});
        }
    }
    if (!pipePath.isEmpty()) QFile::remove(pipePath);
    return 0;
}
