#pragma once
// What the commands that talk to the person at the test station need from a GUI: a message box,
// a file dialog and a browser window. The dialog layer installs the real ones when the host has a
// display; without them each command takes its headless answer (dvrun --answer) or fails saying so.
#include <QString>

#include <functional>
#include <optional>

namespace dv {

struct TMessageRequest {
    QString text;
    int type = 3;     // row of MessageTypes()
    int buttons = 4;  // bit set of MessageButtons()
    bool standardPosition = true;
    int xPercent = 0;  // of the screen, used when standardPosition is off
    int yPercent = 0;
};

struct TFileRequest {
    bool open = true;  // false: save dialog
    QString caption;
    QString initialDir;
    QString defaultExtension;
    QString proposedFile;
};

class IDVOperatorDialogs {
public:
    virtual ~IDVOperatorDialogs() = default;
    // Shows the message modally; the modal result of the pressed button (1 OK, 2 Cancel, 3 Abort,
    // 4 Retry, 5 Ignore, 6 Yes, 7 No).
    virtual int ShowMessage(const TMessageRequest& request) = 0;
    // The confirmed path, or nullopt when the person cancelled.
    virtual std::optional<QString> ChooseFile(const TFileRequest& request) = 0;
    // Opens url in a browser window of our own, identified by formId; closes it again. closed runs
    // on the GUI thread when the window ends by itself (the person closed it, the browser failed),
    // never after CloseBrowser.
    virtual void OpenBrowser(const QString& formId, const QString& url, bool fullscreen,
                             std::function<void()> closed) = 0;
    virtual void CloseBrowser(const QString& formId) = 0;
};

// Installed by the dialog layer when the host shows windows to a person (nullptr removes them).
// Calls reach them on the GUI thread.
void SetOperatorDialogs(IDVOperatorDialogs* dialogs);
// The installed dialogs when a GUI can show them, else nullptr.
IDVOperatorDialogs* OperatorDialogs();

// Checks before anything is shown that name is a declared variable that takes text (String or
// Misc), as parameter of procedure needs it; raises TDVRuntimeException naming both otherwise.
void RequireTextVariable(const QString& procedure, const QString& parameter, const QString& name);

// The headless answer for procedure; raises TDravikException naming "dvrun --answer" and an
// example when there is none, so that a run without a GUI never waits for a window.
QString RequiredHeadlessAnswer(const QString& procedure, const QString& example);

}  // namespace dv
