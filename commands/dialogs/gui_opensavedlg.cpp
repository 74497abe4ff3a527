#include "commands/dialogs/gui_opensavedlg.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/olderline.h"
#include "framework/parser.h"
#include "framework/services.h"
#include "framework/synchronize.h"
#include "framework/translate.h"

#include <QFileInfo>

namespace dv {

namespace {

const QString kOpenDlg = QStringLiteral("OpenDlg");
const QString kFileName = QStringLiteral("FileName");
const QString kInitDir = QStringLiteral("InitDir");
const QString kCaption = QStringLiteral("Caption");
const QString kExtension = QStringLiteral("Extension");

// A field as script text: what the host's parser reads as an expression (a string literal, a
// variable, PROJEKTPFAD + "/daten") stays as it is, so that an edit never changes what a line
// means; anything else is text as typed and becomes a string literal.
QString ScriptText(const QString& field)
{
    TDVParser* parser = CurrentParser();
    if (!field.trimmed().isEmpty() && parser && parser->ParseSingleExpression(field)) return field;
    return '"' + QString(field).replace('"', QStringLiteral("\"\"")) + '"';
}

// The person's choice: nullopt when cancelled.
std::optional<QString> Choose(const TFileRequest& request)
{
    if (IDVOperatorDialogs* dialogs = OperatorDialogs()) {
        std::optional<QString> chosen;
        Synchronize([&] { chosen = dialogs->ChooseFile(request); });
        return chosen;
    }
    const QString answer = RequiredHeadlessAnswer(QStringLiteral("OpenSaveDlg"), QStringLiteral("/pfad/datei.csv"));
    if (answer.trimmed().compare(QLatin1String(kCancelAnswer), Qt::CaseInsensitive) == 0) return std::nullopt;
    return WithDefaultExtension(answer, request.defaultExtension);
}

}  // namespace

QString WithDefaultExtension(const QString& path, const QString& extension)
{
    const QString suffix = extension.startsWith('.') ? extension.mid(1) : extension;
    if (suffix.isEmpty() || path.isEmpty() || !QFileInfo(path).suffix().isEmpty()) return path;
    return path + '.' + suffix;
}

TDVCmdOpenSave::TDVCmdOpenSave(TDVParser* parser) : TDVFieldsCommand("TDVCmdOpenSave", parser) {}

void TDVCmdOpenSave::SetParams(const TParamList& params)
{
    fields_.openDialog = StrToBoolEx(params.GetString(kOpenDlg), true);
    fields_.fileName = params.GetString(kFileName).trimmed();
    fields_.initDir = params.GetString(kInitDir);
    fields_.caption = params.GetString(kCaption);
    fields_.extension = params.GetString(kExtension);
}

void TDVCmdOpenSave::ReadParams(TParamList& params)
{
    params.AddString(kOpenDlg, fields_.openDialog ? QStringLiteral("True") : QStringLiteral("False"));
    params.AddString(kFileName, fields_.fileName);
    params.AddString(kInitDir, ScriptText(fields_.initDir));
    params.AddString(kCaption, ScriptText(fields_.caption));
    params.AddString(kExtension, ScriptText(fields_.extension));
}

// OpenSaveDlg(OPEN_DIALOG,[FILE:Datei][DIR:c:\daten][CAP:Titel][EXT:csv]);
bool TDVCmdOpenSave::IsOlderLine(const QString& line) const
{
    return BeginsWithCall(line, OlderNames()) &&
           ContainsAny(OutsideStrings(line), {"OPEN_DIALOG", "SAVE_DIALOG", "[FILE:", "[DIR:", "[CAP:", "[EXT:"});
}

bool TDVCmdOpenSave::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    const QString end = QStringLiteral("]");
    fields_.openDialog = script.contains(QLatin1String("OPEN_DIALOG"));
    fields_.fileName = GetStrPart(QStringLiteral("[FILE:"), end, script);
    fields_.initDir = GetStrPart(QStringLiteral("[DIR:"), end, script);
    fields_.caption = GetStrPart(QStringLiteral("[CAP:"), end, script);
    fields_.extension = GetStrPart(QStringLiteral("[EXT:"), end, script);
    ReadParams(params);
    return true;
}

QString TDVCmdOpenSave::GetDescription(const QString&, const TParamList& params)
{
    SetParams(params);
    return (fields_.openDialog ? _("Datei öffnen: ") : _("Datei speichern: ")) + fields_.fileName;
}

void TDVCmdOpenSave::Run(TParamList& params)
{
    SetParams(params);
    const QString variable = fields_.fileName;
    // Checked before the dialog shows, so that a misspelt name never costs the person a choice.
    if (!variable.isEmpty()) RequireTextVariable(QStringLiteral("OpenSaveDlg"), kFileName, variable);
    TFileRequest request;
    request.open = fields_.openDialog;
    request.caption = fields_.caption;
    request.initialDir = ResolveProjectPath(fields_.initDir);
    request.defaultExtension = fields_.extension;
    request.proposedFile = variable.isEmpty() ? QString() : VarAccess().ResolveText(variable);
    const std::optional<QString> chosen = Choose(request);
    if (chosen && !variable.isEmpty()) VarAccess().SetVariable(variable, std::make_unique<TStringValue>(*chosen));
}

}  // namespace dv
