#include "commands/dialogs/gui_formshow.h"

#include "commands/dialogs/operatordialogs.h"
#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/headless.h"
#include "framework/intconvert.h"
#include "framework/parser.h"
#include "framework/services.h"
#include "framework/synchronize.h"
#include "framework/systemlog.h"
#include "framework/translate.h"

#include <mutex>
#include <vector>

namespace dv {

namespace {

std::mutex g_formMutex;
std::shared_ptr<THtmlForm> g_shownForm;
bool g_browserOpen = false;

const QString kFormResult = QStringLiteral("FormResult");
const QString kFile = QStringLiteral("File");
const QString kFullscreen = QStringLiteral("Fullscreen");
const QString kClose = QStringLiteral("Close");
const QString kTimeout = QStringLiteral("Timeout");
const QString kResult = QStringLiteral("Result");
const QString kUnpack = QStringLiteral("Unpack");

// The time-out in milliseconds, negative for none; an empty text is none.
int ReadTimeout(const QString& text)
{
    if (text.trimmed().isEmpty()) return -1;
    const std::optional<std::int32_t> timeout = TryStrToInt(text.trimmed());
    if (!timeout) {
        throw TDravikException(Format(_("FormResult: Timeout \"%s\" ist keine ganze Zahl von Millisekunden (-1: ohne Grenze)"),
                                      {text}));
    }
    return *timeout;
}

// Each submitted field into the declared variable of its name; the names of all fields. A field
// that its variable cannot take fails the call before any variable is written.
QString Unpack(const TFormFields& fields)
{
    QStringList names;
    std::vector<std::pair<QString, TValuePtr>> previous;  // to put back on failure
    try {
        for (const auto& [name, value] : fields) {
            names << name;
            TDVVariable* variable = VarAccess().FindVariable(name);
            if (!variable) continue;
            previous.emplace_back(name, variable->GetValue().Clone());
            VarAccess().SetVariable(name, std::make_unique<TStringValue>(value));
        }
    } catch (const TDravikException& e) {
        if (previous.empty()) throw;
        const QString field = previous.back().first;
        for (auto it = previous.rbegin(); it != previous.rend(); ++it) VarAccess().SetVariable(it->first, std::move(it->second));
        throw TDVRuntimeException(Format(_("FormResult: Unpack: das Feld \"%s\" passt nicht in die Variable %s: %s"),
                                         {field, field, e.Message()}));
    }
    return names.join(',');
}

// The headless answer "name=value&..." stands for a submission.
std::optional<TFormFields> AnsweredFields(int timeout)
{
    if (timeout >= 0) {
        if (std::optional<QString> answer = TakeHeadlessAnswer(kFormResult)) return ParseFormFields(answer->toUtf8());
        return std::nullopt;
    }
    // Without a time limit nothing could end a wait for a submission that nobody is told to send.
    return ParseFormFields(RequiredHeadlessAnswer(kFormResult, QStringLiteral("Name=Wert&...")).toUtf8());
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
        const std::weak_ptr<THtmlForm> shown = form;
        auto closed = [shown] {
            if (const std::shared_ptr<THtmlForm> f = shown.lock()) f->WindowClosed();
        };
        Synchronize([&] { dialogs->OpenBrowser(form->Token(), form->Url(), fullscreen, closed); });
    } else {
        // Without a window the address is the operator's way in: any browser or tool can answer it.
        WriteOperatorLine(QStringLiteral("FormShow: ") + form->Url());
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
    const int timeout = ReadTimeout(BoundField(kTimeout));
    const QString result = BoundField(kResult).trimmed();
    const bool unpack = StrToBoolEx(BoundField(kUnpack), false);
    if (!result.isEmpty()) RequireTextVariable(kFormResult, kResult, result);
    const std::shared_ptr<THtmlForm> form = ShownForm();
    if (!form) throw TDravikException(_("FormResult: es wird kein Formular gezeigt; zuerst FormShow aufrufen"));

    TFormFields fields;
    TFormWait outcome = TFormWait::Submitted;
    std::optional<TFormFields> answered;
    if (!OperatorDialogs()) answered = AnsweredFields(timeout);
    if (answered) {
        fields = std::move(*answered);
    } else {
        outcome = form->WaitForSubmission(&TestEnvironment().GetRunControl(), timeout, fields);
    }
    if (close) CloseShownForm();
    if (outcome == TFormWait::Stopped) return;
    QString text;
    if (outcome == TFormWait::TimedOut) {
        SystemLog.Warn(Format(_("FormResult: keine Eingabe innerhalb von %s ms"), {QString::number(timeout)}));
    } else if (outcome == TFormWait::WindowClosed) {
        SystemLog.Warn(_("FormResult: das Formularfenster wurde ohne Eingabe geschlossen"));
    } else {
        text = unpack ? Unpack(fields) : EncodeFormFields(fields);
    }
    if (!result.isEmpty()) VarAccess().SetVariable(result, std::make_unique<TStringValue>(text));
}

}  // namespace dv
