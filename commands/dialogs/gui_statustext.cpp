#include "commands/dialogs/gui_statustext.h"

#include "framework/dvtools.h"
#include "framework/olderline.h"
#include "framework/services.h"
#include "framework/translate.h"

namespace dv {

namespace {
const QString kText = QStringLiteral("Text");
}  // namespace

TDVCmdStatusBar::TDVCmdStatusBar(TDVParser* parser) : TDVFieldsCommand("TDVCmdStatusBar", parser) {}

void TDVCmdStatusBar::SetParams(const TParamList& params) { fields_.text = params.GetString(kText); }

void TDVCmdStatusBar::ReadParams(TParamList& params) { params.AddString(kText, fields_.text); }

// StatusBar(text); - read up to ");" so that a ")" inside the text survives.
bool TDVCmdStatusBar::IsOlderLine(const QString& line) const { return BeginsWithCall(line, OlderNames()); }

bool TDVCmdStatusBar::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    fields_.text = GetStrPart(QStringLiteral("("), QStringLiteral(");"), script);
    ReadParams(params);
    return true;
}

QString TDVCmdStatusBar::GetDescription(const QString&, const TParamList& params)
{
    SetParams(params);
    return _("Statuszeile: ") + fields_.text;
}

void TDVCmdStatusBar::Run(TParamList& params)
{
    SetParams(params);
    TestEnvironment().SetStatusText(fields_.text);
    result_ = fields_.text;
}

QString TDVCmdStatusBar::OnEditorTest()
{
    TParamList params;
    ReadParams(params);
    Run(params);
    return result_;
}

QString StatusBarLine(const QString& text)
{
    return text.isEmpty() ? QString() : QStringLiteral("StatusBar(") + text + QStringLiteral(");");
}

}  // namespace dv
