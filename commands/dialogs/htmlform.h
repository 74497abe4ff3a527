#pragma once
// One HTML form shown to the operator: the page and the files beside it are served on 127.0.0.1
// under a random token, and what the form submits is kept until FormResult takes it. The server
// runs on a thread of its own, so a submission arrives whatever the script is doing meanwhile.
#include <QList>
#include <QPair>
#include <QString>

#include <deque>
#include <memory>
#include <mutex>

class QThread;

namespace dv {

class TRunControl;
class TFormHttpServer;

using TFormFields = QList<QPair<QString, QString>>;  // name, value; in the order submitted

enum class TFormWait { Submitted, TimedOut, Stopped, WindowClosed };

class THtmlForm {
public:
    // Starts serving file; raises TDravikException when it is no readable file or no port is free.
    explicit THtmlForm(const QString& file);
    ~THtmlForm();
    THtmlForm(const THtmlForm&) = delete;
    THtmlForm& operator=(const THtmlForm&) = delete;

    // http://127.0.0.1:PORT/TOKEN/FILE
    QString Url() const { return url_; }
    const QString& Token() const { return token_; }

    // Waits for the next submission, the stop event, timeoutMs (negative: no limit) or the end of
    // the form's window, whichever comes first; a submission's fields go into fields. Submissions
    // that arrived before the window ended are still taken.
    TFormWait WaitForSubmission(const TRunControl* stop, int timeoutMs, TFormFields& fields);

    // Called on the server's thread.
    void Submit(TFormFields fields);
    // The window showing the form has ended before FormResult was answered; any thread.
    void WindowClosed();

    static constexpr qsizetype kBodyLimit = 1024 * 1024;

private:
    void Shutdown();
    void Wake();

    QString url_;
    QString token_;
    int signal_;  // eventfd, readable while submissions wait
    std::mutex mutex_;
    std::deque<TFormFields> submissions_;
    bool windowClosed_ = false;
    QThread* thread_ = nullptr;
    TFormHttpServer* server_;  // lives on thread_
};

// The fields of a url-encoded text ("a=1&b=x+y"), '+' read as a blank.
TFormFields ParseFormFields(const QByteArray& encoded);
// The fields url-encoded as "name=value&...".
QString EncodeFormFields(const TFormFields& fields);

}  // namespace dv
