// The HTML form server of FormShow, sent any request over a real connection on 127.0.0.1. In the
// input, "TOKEN" and "PORT" stand for the form's token and port, so that requests can reach the
// form. The server answers or closes every connection, never hands out a file outside the form's
// folder, and survives every request; submissions are taken as FormResult takes them.
#include "commands/dialogs/htmlform.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QUrl>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr char kSecret[] = "GEHEIM-4711";

void WriteFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size()) std::abort();
}

// form/seite.html with a picture beside it; geheim.txt one folder up and a link to it inside.
dv::THtmlForm& Form()
{
    static std::unique_ptr<dv::THtmlForm> form = [] {
        const QString root = QDir::temp().filePath(QStringLiteral("dv-fuzz-form-%1").arg(QCoreApplication::applicationPid()));
        QDir().mkpath(root + QStringLiteral("/form"));
        WriteFile(root + QStringLiteral("/form/seite.html"), "<form method=post><input name=a></form>");
        WriteFile(root + QStringLiteral("/form/bild.png"), "png");
        WriteFile(root + QStringLiteral("/geheim.txt"), kSecret);
        QFile::link(root + QStringLiteral("/geheim.txt"), root + QStringLiteral("/form/verweis.txt"));
        return std::make_unique<dv::THtmlForm>(root + QStringLiteral("/form/seite.html"));
    }();
    return *form;
}

quint16 Port() { return static_cast<quint16>(QUrl(Form().Url()).port()); }

// A connection to the form server. Thousands a second would use up one address's ephemeral ports
// while closed connections wait out TIME_WAIT, so each comes from the next loopback address
// (127.1.0.1, 127.1.0.2, ...); a port still in use is waited for.
int Connect()
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(Port());
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int error = 0;
    for (int attempt = 0; attempt < 500; ++attempt) {
        static std::uint32_t next = 0;
        sockaddr_in source{};
        source.sin_family = AF_INET;
        source.sin_addr.s_addr = htonl((127u << 24) | (1u << 16) | (1 + next++ % 65000));
        const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (fd >= 0 && ::bind(fd, reinterpret_cast<sockaddr*>(&source), sizeof source) == 0 &&
            ::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) return fd;
        error = errno;
        if (fd >= 0) ::close(fd);
        // libFuzzer's timer signal may interrupt the connect
        if (error != EADDRNOTAVAIL && error != EINTR) break;
        if (error == EADDRNOTAVAIL) ::usleep(10000);
    }
    std::fprintf(stderr, "no connection to the form server: %s\n", std::strerror(error));
    std::abort();
}

// Sends the request, ends the sending side, and reads the answer until the server closes or two
// seconds pass without data.
QByteArray Exchange(const QByteArray& request)
{
    const int fd = Connect();
    for (qsizetype sent = 0; sent < request.size();) {
        const ssize_t n = ::send(fd, request.constData() + sent, static_cast<std::size_t>(request.size() - sent), MSG_NOSIGNAL);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;  // the server closed early, as it may on a refused request
        sent += n;
    }
    ::shutdown(fd, SHUT_WR);
    QByteArray answer;
    pollfd p{fd, POLLIN, 0};
    char buffer[4096];
    for (;;) {
        const int ready = ::poll(&p, 1, 2000);
        if (ready < 0 && errno == EINTR) continue;
        if (ready <= 0) break;
        const ssize_t n = ::recv(fd, buffer, sizeof buffer, 0);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) break;
        answer.append(buffer, n);
    }
    ::close(fd);
    return answer;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication app(*argc, *argv);
    Form();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 16 * 1024) return -1;
    QByteArray request(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    request.replace("TOKEN", Form().Token().toUtf8());
    request.replace("PORT", QByteArray::number(Port()));
    const QByteArray answer = Exchange(request);
    if (answer.contains(kSecret)) std::abort();
    if (!answer.isEmpty() && !answer.startsWith("HTTP/1.")) {
        std::fprintf(stderr, "answer without a status line: %s\n", answer.left(200).toHex().constData());
        std::abort();
    }
    dv::TFormFields fields;
    while (Form().WaitForSubmission(nullptr, 0, fields) == dv::TFormWait::Submitted) {
    }
    return 0;
}
