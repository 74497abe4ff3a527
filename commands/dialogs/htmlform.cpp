#include "commands/dialogs/htmlform.h"

#include "framework/exceptions.h"
#include "framework/translate.h"
#include "framework/waitevents.h"

#include <QAbstractHttpServer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QMimeDatabase>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QThread>
#include <QUrl>

#include <optional>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

namespace dv {

using TStatus = QHttpServerResponder::StatusCode;

// Serves one form's folder; everything outside it, other hosts and other tokens are refused.
class TFormHttpServer final : public QAbstractHttpServer {
public:
    TFormHttpServer(THtmlForm& form, QString folder, QString page, QString token)
        : form_(form), folder_(std::move(folder)), page_(std::move(page)), token_(std::move(token))
    {
    }
    quint16 port = 0;

protected:
    bool handleRequest(const QHttpServerRequest& request, QTcpSocket* socket) override
    {
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
        const bool isPage = file == QDir(folder_).filePath(page_);
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
    QString folder_;  // canonical
    QString page_;    // file name inside folder_
    QString token_;
};

THtmlForm::THtmlForm(const QString& file)
{
    const QFileInfo info(file);
    if (!info.isFile() || !info.isReadable()) {
        throw TDravikException(Format(_("FormShow: die Formulardatei \"%s\" gibt es nicht oder sie ist nicht lesbar"), {file}));
    }
    if (!QCoreApplication::instance()) throw TDravikException(_("FormShow: der Host hat kein Anwendungsobjekt"));
    const QString folder = info.canonicalPath();
    token_ = QString::number(QRandomGenerator::system()->generate64(), 16) +
             QString::number(QRandomGenerator::system()->generate64(), 16);
    signal_ = ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE);
    if (signal_ < 0) throw TDravikException(_("FormShow: kein Ereignis für das Formular verfügbar"));
    thread_ = new QThread;
    thread_->setObjectName(QStringLiteral("FormServer"));
    server_ = new TFormHttpServer(*this, folder, info.fileName(), token_);
    server_->moveToThread(thread_);
    thread_->start();
    quint16 port = 0;
    QMetaObject::invokeMethod(
        server_, [this, &port] { port = server_->port = server_->listen(QHostAddress::LocalHost, 0); },
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
    {
        std::lock_guard lock(mutex_);
        submissions_.push_back(std::move(fields));
    }
    const eventfd_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(signal_, &one, sizeof one);
}

TFormWait THtmlForm::WaitForSubmission(const TRunControl* stop, int timeoutMs, TFormFields& fields)
{
    switch (WaitForEvents({{signal_, POLLIN}}, stop, timeoutMs)) {
    case TWaitResult::Stopped: return TFormWait::Stopped;
    case TWaitResult::TimedOut: return TFormWait::TimedOut;
    case TWaitResult::Ready: break;
    }
    eventfd_t taken = 0;
    [[maybe_unused]] const ssize_t read = ::read(signal_, &taken, sizeof taken);
    std::lock_guard lock(mutex_);
    fields = std::move(submissions_.front());
    submissions_.pop_front();
    return TFormWait::Submitted;
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
