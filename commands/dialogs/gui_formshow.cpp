#include "commands/dialogs/gui_formshow.h"

#include "commands/dialogs/operatordialogs.h"
#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/intconvert.h"
#include "framework/parser.h"
#include "framework/services.h"
#include "framework/synchronize.h"
#include "framework/systemlog.h"
#include "framework/translate.h"

#include <cstdio>
#include <mutex>

namespace dv {

namespace {

std::mutex g_formMutex;
std::shared_ptr<THtmlForm> g_shownForm;
bool g_browserOpen = false;

const QString kFile = QStringLiteral("File");
const QString kFullscreen = QStringLiteral("Fullscreen");
const QString kClose = QStringLiteral("Close");
const QString kTimeout = QStringLiteral("Timeout");
const QString kResult = QStringLiteral("Result");
const QString kUnpack = QStringLiteral("Unpack");

// Without a display the URL is the operator's way in: any browser or tool can answer it.
void PrintUrl(const QString& url)
{
    std::fputs(QStringLiteral("FormShow: %1\n").arg(url).toUtf8().constData(), stdout);
    std::fflush(stdout);
}

// Each submitted field into the declared variable of its name; the names of all fields.
QString Unpack(const TFormFields& fields)
{
    QStringList names;
    for (const auto& [name, value] : fields) {
        names << name;
        if (VarAccess().FindVariable(name)) VarAccess().SetVariable(name, std::make_unique<TStringValue>(value));
    }
    return names.join(',');
}

}  // namespace

std::shared_ptr<THtmlForm> ShownForm()
{
    std::lock_guard lock(g_formMutex);
    return g_shownForm;
}

void CloseShownForm()
{
    std::shared_ptr<THtmlForm> form;
    bool browser = false;
    {
        std::lock_guard lock(g_formMutex);
        form.swap(g_shownForm);
        std::swap(browser, g_browserOpen);
    }
    if (!form || !browser) return;
    if (IDVOperatorDialogs* dialogs = OperatorDialogs()) {
        Synchronize([&] { dialogs->CloseBrowser(form->Token()); });
    }
}

TDVCmdFormShow::TDVCmdFormShow(TDVParser* parser) : TDVFuncRunEdit("TDVCmdFormShow", parser) {}

void TDVCmdFormShow::Run(TParamList& params)
{
    SetParams(params);
    const QString file = ResolveProjectPath(StripQuotes(BoundField(kFile)));
    const bool fullscreen = StrToBoolEx(BoundField(kFullscreen), false);
    auto form = std::make_shared<THtmlForm>(file);
    CloseShownForm();
    IDVOperatorDialogs* dialogs = OperatorDialogs();
    if (dialogs) {
        Synchronize([&] { dialogs->OpenBrowser(form->Token(), form->Url(), fullscreen); });
    } else {
        PrintUrl(form->Url());
    }
    std::lock_guard lock(g_formMutex);
    g_shownForm = std::move(form);
    g_browserOpen = dialogs != nullptr;
}

TDVCmdFormResult::TDVCmdFormResult(TDVParser* parser) : TDVThreadRunEdit("TDVCmdFormResult", parser) {}

void TDVCmdFormResult::RunThreaded(TParamList& params)
{
    SetParams(params);
    const bool close = StrToBoolEx(BoundField(kClose), true);
    const QString timeoutText = BoundField(kTimeout).trimmed();
    const int timeout = timeoutText.isEmpty() ? -1 : StrToInt(timeoutText);
    const QString result = BoundField(kResult).trimmed();
    const bool unpack = StrToBoolEx(BoundField(kUnpack), false);
    if (!result.isEmpty() && !VarAccess().FindVariable(result)) {
        throw TDVRuntimeException(Format(_("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!"), {result}));
    }
    const std::shared_ptr<THtmlForm> form = ShownForm();
    if (!form) throw TDravikException(_("FormResult: es wird kein Formular gezeigt; zuerst FormShow aufrufen"));

    TFormFields fields;
    const TFormWait outcome = form->WaitForSubmission(&TestEnvironment().GetRunControl(), timeout, fields);
    if (close) CloseShownForm();
    if (outcome == TFormWait::Stopped) return;
    QString text;
    if (outcome == TFormWait::TimedOut) {
        SystemLog.Warn(Format(_("FormResult: keine Eingabe innerhalb von %s ms"), {QString::number(timeout)}));
    } else {
        text = unpack ? Unpack(fields) : EncodeFormFields(fields);
    }
    if (!result.isEmpty()) VarAccess().SetVariable(result, std::make_unique<TStringValue>(text));
}

}  // namespace dv
