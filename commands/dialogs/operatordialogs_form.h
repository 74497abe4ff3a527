#pragma once
// The operator dialogs of a host with a display: QMessageBox, QFileDialog and the form browser
// (the program dvformbrowser beside the host, so that Qt WebEngine loads only when a form shows).
#include "commands/dialogs/operatordialogs.h"

#include <QProcess>

#include <map>
#include <memory>

namespace dv {

class TOperatorDialogs final : public IDVOperatorDialogs {
public:
    TOperatorDialogs();
    ~TOperatorDialogs() override;

    int ShowMessage(const TMessageRequest& request) override;
    std::optional<QString> ChooseFile(const TFileRequest& request) override;
    void OpenBrowser(const QString& formId, const QString& url, bool fullscreen, std::function<void()> closed) override;
    void CloseBrowser(const QString& formId) override;
    void CloseAllBrowsers();

private:
    std::map<QString, std::unique_ptr<QProcess>> browsers_;  // dvformbrowser per form
};

// Installs one TOperatorDialogs for the life of the application when it shows windows to a person.
// An offscreen application (pictures only) stays headless: a modal dialog there would wait for a
// click that nobody can give.
void RegisterOperatorDialogs();

}  // namespace dv
