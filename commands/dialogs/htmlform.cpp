#include "commands/dialogs/htmlform.h"

#include "framework/exceptions.h"
#include "framework/translate.h"
#include "framework/waitevents.h"

#include <QAbstractHttpServer>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QMimeDatabase>
#include <QRandomGenerator>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QTimer>
#include <QUrl>

#include <algorithm>
#include <chrono>
#include <limits>
#include <optional>
#include <utility>

#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

namespace dv {

using TStatus = QHttpServerResponder::StatusCode;

namespace {

// Room for a request's line and headers beside the body limit.
constexpr qsizetype kHeaderLimit = 64 * 1024;

// Refuses a body over the limit before QAbstractHttpServer buffers it: by its Content-Length as
// soon as the header is in, and by the bytes that arrive for a body sent without one (chunked).
// It sees each piece of a connection's data before the server does, and closes the connection
// of a refused request.
class TBodyGuard final : public QObject {
public:
    explicit TBodyGuard(QTcpSocket* socket) : QObject(socket), socket_(socket)
    {
        connect(socket, &QTcpSocket::readyRead, this, &TBodyGuard::Check);
    }
    // The server answered the request: the next one starts with its header.
    void RequestAnswered()
    {
        head_.clear();
        headerDone_ = false;
        received_ = 0;
    }

private:
    void Check()
    {
        if (refused_) {
            socket_->readAll();
            return;
        }
        // The server reads all it is given, so what is buffered now arrived since the last call.
        const qint64 available = socket_->bytesAvailable();
        received_ += available;
        if (!headerDone_) {
            head_ += socket_->peek(std::min<qint64>(available, kHeaderLimit - head_.size()));
            const qsizetype end = head_.indexOf("\r\n\r\n");
            if (end >= 0) {
                headerDone_ = true;
                if (ContentLength(head_.left(end)) > THtmlForm::kBodyLimit) return Refuse();
            } else if (head_.size() >= kHeaderLimit) {
                return Refuse();
            }
        }
        if (received_ > THtmlForm::kBodyLimit + kHeaderLimit) Refuse();
    }

    static qint64 ContentLength(const QByteArray& head)
    {
        for (const QByteArray& line : head.split('\n')) {
            const qsizetype colon = line.indexOf(':');
            if (colon > 0 && line.left(colon).trimmed().compare("Content-Length", Qt::CaseInsensitive) == 0) {
                bool ok = false;
                const qint64 length = line.mid(colon + 1).trimmed().toLongLong(&ok);
                return ok ? length : std::numeric_limits<qint64>::max();
            }
        }
        return 0;
    }

    // Answers 413 itself; the server never sees the rest of the connection. What the client still
    // sends is read and dropped until it has our answer and closes (or kLinger passes): closing
    // on unread data would reset the connection and could lose the answer on the way.
    void Refuse()
    {
        refused_ = true;
        QObject::disconnect(socket_, &QTcpSocket::readyRead, nullptr, nullptr);
        connect(socket_, &QTcpSocket::readyRead, this, &TBodyGuard::Check);
        socket_->readAll();
        const QByteArray text = "zu gro\xc3\x9f";
        socket_->write("HTTP/1.1 413 Payload Too Large\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: " +
                       QByteArray::number(text.size()) + "\r\nConnection: close\r\n\r\n" + text);
        connect(socket_, &QTcpSocket::bytesWritten, this, &TBodyGuard::EndSending);
        socket_->flush();
        EndSending();
        QTimer::singleShot(kLinger, socket_, &QTcpSocket::abort);
    }

    // The answer is out: the client sees the end of it.
    void EndSending()
    {
        if (socket_->bytesToWrite() == 0 && socket_->socketDescriptor() >= 0) {
            ::shutdown(static_cast<int>(socket_->socketDescriptor()), SHUT_WR);
        }
    }

    static constexpr std::chrono::seconds kLinger{5};

    QTcpSocket* socket_;
    QByteArray head_;  // the start of the request, up to kHeaderLimit
    bool headerDone_ = false;
    qint64 received_ = 0;  // bytes of the request so far
    bool refused_ = false;
};

// Gives every connection its guard before the HTTP server connects to it.
class TGuardedTcpServer final : public QTcpServer {
public:
    using QTcpServer::QTcpServer;
    QTcpSocket* nextPendingConnection() override
    {
        QTcpSocket* socket = QTcpServer::nextPendingConnection();
        if (socket) new TBodyGuard(socket);
        return socket;
    }
};

}  // namespace

// Serves one form's folder; everything outside it, other hosts and other tokens are refused.
class TFormHttpServer final : public QAbstractHttpServer {
public:
    TFormHttpServer(THtmlForm& form, QString folder, QString page, QString pagePath, QString token)
        : form_(form), folder_(std::move(folder)), page_(std::move(page)), pagePath_(std::move(pagePath)),
          token_(std::move(token))
    {
    }
    quint16 port = 0;

    // Listens on 127.0.0.1 at a free port; 0 when none could be had.
    quint16 Listen()
    {
        auto* tcp = new TGuardedTcpServer(this);
        if (!tcp->listen(QHostAddress::LocalHost, 0)) return 0;
        bind(tcp);
        port = tcp->serverPort();
        return port;
    }

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override
    {
        for (QObject* child : socket->children()) {
            if (auto* guard = dynamic_cast<TBodyGuard*>(child)) guard->RequestAnswered();
        }
        QHttpServerResponder responder = makeResponder(request, socket);
        const auto [status, text] = Answer(request);
        if (status == TStatus::Ok && !text.isEmpty()) {
            responder.write(text, "text/html; charset=utf-8");
        } else if (status == TStatus::Ok) {
            Serve(responder, request);
        } else {
            responder.write(text, "text/plain; charset=utf-8", status);
        }
        // The reply leaves before FormResult learns of the submission: a FormResult that closes
        // the form at once must not cut the sender's answer off.
        socket->flush();
        if (submitted_) form_.Submit(*std::exchange(submitted_, std::nullopt));
        return true;
    }
    void missingHandler(const QHttpServerRequest&, QTcpSocket*) override {}

private:
    struct TAnswer {
        TStatus status;
        QByteArray text;  // empty with Ok: serve the file the path names
    };

    QByteArray Header(const QHttpServerRequest& request, const char* name) const
    {
        for (const auto& [key, value] : request.headers()) {
            if (key.compare(name, Qt::CaseInsensitive) == 0) return value;
        }
        return {};
    }

    bool FromThisHost(const QHttpServerRequest& request) const
    {
        if (!request.remoteAddress().isLoopback()) return false;
        const QByteArray host = Header(request, "Host").toLower();
        const QByteArray suffix = ':' + QByteArray::number(port);
        return host == "127.0.0.1" + suffix || host == "localhost" + suffix;
    }

    // The file a path names inside the folder, or "" when it leaves the folder or names none.
    QString FileOf(const QStringList& segments) const
    {
        if (segments.contains(QStringLiteral("..")) || segments.join('/').contains('\\')) return {};
        const QString relative = segments.isEmpty() || segments.join('/').isEmpty() ? page_ : segments.join('/');
        const QFileInfo info(QDir(folder_).filePath(relative));
        const QString canonical = info.canonicalFilePath();
        if (canonical.isEmpty() || !info.isFile() || !canonical.startsWith(folder_ + '/')) return {};
        return canonical;
    }

    TAnswer Answer(const QHttpServerRequest& request)
    {
        if (!FromThisHost(request)) return {TStatus::Forbidden, "fremder Host"};
        if (Header(request, "Content-Length").toLongLong() > THtmlForm::kBodyLimit ||
            request.body().size() > THtmlForm::kBodyLimit) {
            return {TStatus::PayloadTooLarge, "zu groß"};
        }
        QStringList segments = request.url().path(QUrl::FullyDecoded).split('/');
        if (!segments.isEmpty() && segments.front().isEmpty()) segments.removeFirst();
        if (segments.isEmpty() || segments.front() != token_) return {TStatus::NotFound, "unbekanntes Formular"};
        segments.removeFirst();
        if (segments.contains(QStringLiteral(".."))) return {TStatus::Forbidden, "Pfad außerhalb des Formulars"};
        const QString file = FileOf(segments);
        if (file.isEmpty()) return {TStatus::NotFound, "keine Datei des Formulars"};
        // Compared as canonical paths: the page may be a link to a file beside it.
        const bool isPage = file == pagePath_;
        const bool post = request.method() == QHttpServerRequest::Method::Post;
        const bool query = request.url().hasQuery();
        if (post && !isPage) return {TStatus::MethodNotAllowed, "nur das Formular nimmt Eingaben an"};
        if (isPage && (post || query)) {
            if (post && Header(request, "Content-Type").toLower().startsWith("multipart/")) {
                return {TStatus::UnsupportedMediaType, "nur application/x-www-form-urlencoded"};
            }
            submitted_ = ParseFormFields(post ? request.body() : request.url().query(QUrl::FullyEncoded).toUtf8());
            return {TStatus::Ok, _("<!DOCTYPE html><html><body><p>Die Eingabe wurde übernommen.</p></body></html>").toUtf8()};
        }
        if (request.method() != QHttpServerRequest::Method::Get) return {TStatus::MethodNotAllowed, "nicht erlaubt"};
        return {TStatus::Ok, {}};
    }

    void Serve(QHttpServerResponder& responder, const QHttpServerRequest& request)
    {
        QStringList segments = request.url().path(QUrl::FullyDecoded).split('/').mid(2);
        QFile file(FileOf(segments));
        if (!file.open(QIODevice::ReadOnly)) {
            responder.write("nicht lesbar", "text/plain; charset=utf-8", TStatus::NotFound);
            return;
        }
        responder.write(file.readAll(), QMimeDatabase().mimeTypeForFile(file.fileName()).name().toUtf8());
    }

    THtmlForm& form_;
    std::optional<TFormFields> submitted_;  // of the request being answered
    QString folder_;    // canonical
    QString page_;      // the name the page was shown by, inside folder_
    QString pagePath_;  // canonical
    QString token_;
};

THtmlForm::THtmlForm(const QString& file)
{
    const QFileInfo info(file);
    if (!info.isFile() || !info.isReadable()) {
        throw TDravikException(Format(_("FormShow: die Formulardatei \"%s\" gibt es nicht oder sie ist nicht lesbar"), {file}));
    }
    if (!QCoreApplication::instance()) throw TDravikException(_("FormShow: der Host hat kein Anwendungsobjekt"));
    // The folder the page was named in is served; a page that links out of it is refused, since the
    // files beside the target would be out of reach.
    const QString folder = QDir(info.absolutePath()).canonicalPath();
    const QString pagePath = info.canonicalFilePath();
    if (!pagePath.startsWith(folder + '/')) {
        throw TDravikException(Format(_("FormShow: die Formulardatei \"%s\" verweist aus ihrem Ordner hinaus auf \"%s\""),
                                      {file, pagePath}));
    }
    token_ = QString::number(QRandomGenerator::system()->generate64(), 16) +
             QString::number(QRandomGenerator::system()->generate64(), 16);
    signal_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE);
    if (signal_ < 0) throw TDravikException(_("FormShow: kein Ereignis für das Formular verfügbar"));
    thread_ = new QThread;
    thread_->setObjectName(QStringLiteral("FormServer"));
    server_ = new TFormHttpServer(*this, folder, info.fileName(), pagePath, token_);
    server_->moveToThread(thread_);
    thread_->start();
    quint16 port = 0;
    QMetaObject::invokeMethod(
        server_, [this, &port] { port = server_->Listen(); },
        Qt::BlockingQueuedConnection);
    if (port == 0) {
        Shutdown();
        throw TDravikException(_("FormShow: kein freier Port auf 127.0.0.1"));
    }
    url_ = QStringLiteral("http://127.0.0.1:%1/%2/%3")
               .arg(port)
               .arg(token_, QString::fromUtf8(QUrl::toPercentEncoding(info.fileName())));
}

THtmlForm::~THtmlForm() { Shutdown(); }

void THtmlForm::Shutdown()
{
    if (!thread_) return;
    QMetaObject::invokeMethod(server_, [this] { delete server_; }, Qt::BlockingQueuedConnection);
    thread_->quit();
    thread_->wait();
    delete thread_;
    thread_ = nullptr;
    ::close(signal_);
}

void THtmlForm::Submit(TFormFields fields)
{
    std::lock_guard lock(mutex_);
    submissions_.push_back(std::move(fields));
    Wake();
}

void THtmlForm::WindowClosed()
{
    std::lock_guard lock(mutex_);
    if (windowClosed_) return;
    windowClosed_ = true;
    Wake();
}

// One count on the event per submission waiting and one for a closed window, changed together
// with them under the lock: a wait that finds the event readable finds one of them (were the count
// raised after the lock, a wait could take the submission first and then find the event readable
// with nothing to take, and spin), and a closed window keeps it readable.
void THtmlForm::Wake()
{
    const eventfd_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(signal_, &one, sizeof one);
}

TFormWait THtmlForm::WaitForSubmission(const TRunControl* stop, int timeoutMs, TFormFields& fields)
{
    QDeadlineTimer deadline(timeoutMs < 0 ? QDeadlineTimer(QDeadlineTimer::Forever) : QDeadlineTimer(timeoutMs));
    for (;;) {
        {
            std::lock_guard lock(mutex_);
            if (!submissions_.empty()) {
                eventfd_t taken = 0;
                [[maybe_unused]] const ssize_t read = ::read(signal_, &taken, sizeof taken);
                fields = std::move(submissions_.front());
                submissions_.pop_front();
                return TFormWait::Submitted;
            }
            if (windowClosed_) return TFormWait::WindowClosed;
        }
        if (deadline.hasExpired()) return TFormWait::TimedOut;
        // Whole milliseconds, rounded up: the wait never ends before the time-out.
        const int left = deadline.isForever() ? -1 : static_cast<int>((deadline.remainingTimeNSecs() + 999999) / 1000000);
        switch (WaitForEvents({{signal_, POLLIN}}, stop, left)) {
        case TWaitResult::Stopped: return TFormWait::Stopped;
        case TWaitResult::TimedOut: return TFormWait::TimedOut;
        case TWaitResult::Ready: break;
        }
    }
}

TFormFields ParseFormFields(const QByteArray& encoded)
{
    TFormFields fields;
    for (QByteArray piece : encoded.split('&')) {
        if (piece.isEmpty()) continue;
        piece.replace('+', ' ');
        const qsizetype eq = piece.indexOf('=');
        const QByteArray name = eq < 0 ? piece : piece.left(eq);
        const QByteArray value = eq < 0 ? QByteArray() : piece.mid(eq + 1);
        fields.append({QString::fromUtf8(QByteArray::fromPercentEncoding(name)),
                       QString::fromUtf8(QByteArray::fromPercentEncoding(value))});
    }
    return fields;
}

QString EncodeFormFields(const TFormFields& fields)
{
    QStringList pairs;
    for (const auto& [name, value] : fields) {
        pairs << QString::fromLatin1(QUrl::toPercentEncoding(name) + '=' + QUrl::toPercentEncoding(value));
    }
    return pairs.join('&');
}

}  // namespace dv
