#include "commands/dialogs/operatordialogs_form.h"

#include "commands/dialogs/gui_meldungsbox.h"
#include "framework/exceptions.h"
#include "framework/headless.h"
#include "framework/translate.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>

#include <array>

namespace dv {

namespace {

constexpr std::array<QMessageBox::Icon, 4> kIcons{QMessageBox::Warning, QMessageBox::Critical, QMessageBox::Information,
                                                  QMessageBox::Question};
static_assert(kIcons.size() == static_cast<std::size_t>(TMsgDlgType::Count));

constexpr std::array<QMessageBox::StandardButton, 7> kStandardButtons{
    QMessageBox::Yes, QMessageBox::No, QMessageBox::Ok, QMessageBox::Cancel,
    QMessageBox::Abort, QMessageBox::Retry, QMessageBox::Ignore};
static_assert(kStandardButtons.size() == static_cast<std::size_t>(TMsgDlgBtn::Count));

}  // namespace

TOperatorDialogs::TOperatorDialogs() = default;
TOperatorDialogs::~TOperatorDialogs() = default;

int TOperatorDialogs::ShowMessage(const TMessageRequest& request)
{
    const auto type = static_cast<std::size_t>(request.type);
    QMessageBox box(kIcons.at(type), _(MessageTypes()[type].caption), request.text);
    box.setObjectName(QStringLiteral("MeldungsBox"));
    std::map<QAbstractButton*, int> results;
    const int offered = OfferedButtons(request.buttons);
    for (std::size_t i = 0; i < kStandardButtons.size(); ++i) {
        const TMsgDlgBtnRow& row = MessageButtons()[i];
        if (!(offered & row.bit)) continue;
        QAbstractButton* button = box.addButton(kStandardButtons[i]);
        button->setText(_(row.caption));
        button->setObjectName(QLatin1String(row.keyword));
        results[button] = row.modalResult;
    }
    if (!request.standardPosition) {
        const QScreen* screen = QGuiApplication::primaryScreen();
        box.move(MessagePosition(screen ? screen->geometry().size() : QSize(), request.xPercent, request.yPercent));
    }
    box.exec();
    const auto pressed = results.find(box.clickedButton());
    return pressed == results.end() ? 0 : pressed->second;
}

std::optional<QString> TOperatorDialogs::ChooseFile(const TFileRequest& request)
{
    QFileDialog dialog(QApplication::activeWindow(), request.caption, request.initialDir);
    dialog.setObjectName(QStringLiteral("OpenSaveDialog"));
    dialog.setAcceptMode(request.open ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(request.open ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setDefaultSuffix(request.defaultExtension.startsWith('.') ? request.defaultExtension.mid(1)
                                                                     : request.defaultExtension);
    if (!request.proposedFile.isEmpty()) dialog.selectFile(request.proposedFile);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return std::nullopt;
    return dialog.selectedFiles().front();
}

void TOperatorDialogs::OpenBrowser(const QString& formId, const QString& url, bool fullscreen, std::function<void()> closed)
{
    QString program = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("dvformbrowser"));
    if (!QFileInfo(program).isExecutable()) program = QStandardPaths::findExecutable(QStringLiteral("dvformbrowser"));
    auto browser = std::make_unique<QProcess>();
    browser->setProcessChannelMode(QProcess::ForwardedErrorChannel);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("DV_FORM_PARENT"), QString::number(QCoreApplication::applicationPid()));
    browser->setProcessEnvironment(environment);
    browser->start(program, fullscreen ? QStringList{url, QStringLiteral("--fullscreen")} : QStringList{url});
    if (program.isEmpty() || !browser->waitForStarted(10000)) {
        throw TDravikException(Format(_("FormShow: das Formularfenster dvformbrowser kann nicht gestartet werden; "
                                        "das Formular steht unter %s"), {url}));
    }
    QObject::connect(browser.get(), &QProcess::finished, browser.get(), [closed = std::move(closed)] { closed(); });
    browsers_[formId] = std::move(browser);
}

void TOperatorDialogs::CloseBrowser(const QString& formId)
{
    const auto it = browsers_.find(formId);
    if (it == browsers_.end()) return;
    it->second->disconnect();  // an end we ask for is no closed window
    it->second->terminate();
    if (!it->second->waitForFinished(1000)) it->second->kill();
    browsers_.erase(it);
}

void TOperatorDialogs::CloseAllBrowsers()
{
    while (!browsers_.empty()) CloseBrowser(browsers_.begin()->first);
}

void RegisterOperatorDialogs()
{
    if (!ShowsWindows()) return;
    // Never destroyed; browsers still open when the application ends are closed with it.
    static auto* dialogs = new TOperatorDialogs;
    SetOperatorDialogs(dialogs);
    qAddPostRoutine([] { dialogs->CloseAllBrowsers(); });
}

}  // namespace dv
