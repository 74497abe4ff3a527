#include "commands/dialogs/gui_meldungsbox.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/intconvert.h"
#include "framework/olderline.h"
#include "framework/services.h"
#include "framework/synchronize.h"

#include <QRegularExpression>

#include <array>

namespace dv {

namespace {

constexpr std::array<TMsgDlgTypeRow, 4> kTypes{{
    {TMsgDlgType::Warning, "mtWarning", "RB_Warning", "Warnung"},
    {TMsgDlgType::Error, "mtError", "RB_Error", "Fehler"},
    {TMsgDlgType::Information, "mtInformation", "RB_Information", "Information"},
    {TMsgDlgType::Confirmation, "mtConfirmation", "RB_Confirmation", "Bestätigung"},
}};
static_assert(kTypes.size() == static_cast<std::size_t>(TMsgDlgType::Count));

constexpr std::array<TMsgDlgBtnRow, 7> kButtons{{
    {TMsgDlgBtn::Yes, "mbYes", 0, 1, "CB_YES", "Ja", 6},
    {TMsgDlgBtn::No, "mbNo", 1, 2, "CB_No", "Nein", 7},
    {TMsgDlgBtn::OK, "mbOK", 2, 4, "CB_OK", "OK", 1},
    {TMsgDlgBtn::Cancel, "mbCancel", 3, 8, "CB_Cancel", "Abbrechen", 2},
    {TMsgDlgBtn::Abort, "mbAbort", 4, 16, "", "Abbrechen", 3},
    {TMsgDlgBtn::Retry, "mbRetry", 5, 32, "CB_Retry", "Wiederholen", 4},
    {TMsgDlgBtn::Ignore, "mbIgnore", 6, 64, "CB_Ignore", "Ignorieren", 5},
}};
static_assert(kButtons.size() == static_cast<std::size_t>(TMsgDlgBtn::Count));

struct TResultText {
    int modalResult;
    const char* text;
};
constexpr std::array<TResultText, 7> kResultTexts{{
    {1, "OK"}, {2, "ABBRECHEN"}, {3, "ABBRECHEN"}, {4, "WIEDERHOLEN"}, {5, "IGNORIEREN"}, {6, "JA"}, {7, "NEIN"},
}};

constexpr int kCancel = 2;
constexpr int kAbort = 3;

QString Quoted(const QString& text) { return '"' + text + '"'; }

const QString kPosition = QStringLiteral("Position");
const QString kText = QStringLiteral("Text");
const QString kType = QStringLiteral("Type");
const QString kButtonsParam = QStringLiteral("Buttons");
const QString kXPos = QStringLiteral("XPos");
const QString kYPos = QStringLiteral("YPos");

// The result a headless answer gives, refused when the message offers no such button.
int AnsweredResult(const QString& answer, int buttons)
{
    const std::optional<int> result = ModalResultOfText(answer);
    const int offered = OfferedButtons(buttons);
    for (const TMsgDlgBtnRow& row : kButtons) {
        if (result && (offered & row.bit) && ButtonResultText(row.modalResult) == ButtonResultText(*result)) {
            return row.modalResult;
        }
    }
    throw TDravikException(Format(_("MeldungsBox: die Antwort \"%s\" passt zu keinem Knopf der Meldung (%s)"),
                                  {answer, MessageButtonsText(offered)}));
}

}  // namespace

std::span<const TMsgDlgTypeRow> MessageTypes() { return kTypes; }
std::span<const TMsgDlgBtnRow> MessageButtons() { return kButtons; }

QString ButtonResultText(int modalResult)
{
    for (const TResultText& r : kResultTexts) {
        if (r.modalResult == modalResult) return QString::fromLatin1(r.text);
    }
    return {};
}

std::optional<int> ModalResultOfText(const QString& text)
{
    for (const TResultText& r : kResultTexts) {
        if (text.trimmed().compare(QLatin1String(r.text), Qt::CaseInsensitive) == 0) return r.modalResult;
    }
    return std::nullopt;
}

int ReadMessageType(const QString& text, int previous)
{
    int type = previous;
    for (const TMsgDlgTypeRow& row : kTypes) {
        if (text.contains(QLatin1String(row.keyword))) type = static_cast<int>(row.value);
    }
    return type;
}

int ReadMessageButtons(const QString& text)
{
    int buttons = 0;
    for (const TMsgDlgBtnRow& row : kButtons) {
        if (text.contains(QLatin1String(row.keyword)) || text.contains(QChar(row.code))) buttons |= row.bit;
    }
    return buttons;
}

int OfferedButtons(int buttons) { return buttons == 0 ? kButtons[static_cast<std::size_t>(TMsgDlgBtn::OK)].bit : buttons; }

QString MessageButtonsText(int buttons)
{
    QStringList keywords;
    for (const TMsgDlgBtnRow& row : kButtons) {
        if ((buttons & row.bit) && row.value != TMsgDlgBtn::Abort) keywords << QLatin1String(row.keyword);
    }
    return keywords.join(QStringLiteral(" + "));
}

QPoint MessagePosition(QSize screen, int xPercent, int yPercent)
{
    return {static_cast<int>(RoundHalfEven(screen.width() / 100.0L * xPercent)),
            static_cast<int>(RoundHalfEven(screen.height() / 100.0L * yPercent))};
}

TDVCmdMeldungsBox::TDVCmdMeldungsBox(TDVParser* parser)
    : TDVFieldsCommand("TDVCmdMeldungsBox", parser)
{
}

void TDVCmdMeldungsBox::SetParams(const TParamList& params)
{
    fields_.text = params.GetString(kText);
    fields_.x = StrToIntDef(params.GetString(kXPos), 0);
    fields_.y = StrToIntDef(params.GetString(kYPos), 0);
    fields_.standardPosition = StrToBoolEx(params.GetString(kPosition), true);
    fields_.buttons = ReadMessageButtons(params.GetString(kButtonsParam));
    fields_.type = ReadMessageType(params.GetString(kType), fields_.type);
}

// The list holds script text: the keywords go in as string literals, so that the written line runs.
void TDVCmdMeldungsBox::ReadParams(TParamList& params)
{
    params.AddString(kText, fields_.text);
    params.AddString(kType, Quoted(QLatin1String(kTypes.at(static_cast<std::size_t>(fields_.type)).keyword)));
    params.AddString(kButtonsParam, Quoted(MessageButtonsText(fields_.buttons)));
    params.AddString(kPosition, fields_.standardPosition ? QStringLiteral("True") : QStringLiteral("False"));
    params.AddString(kXPos, QString::number(fields_.x));
    params.AddString(kYPos, QString::number(fields_.y));
}

// MeldungsBox("text",mtWarning,[mbYes][mbNo],@x:10,@y:20);: type and buttons are words of the
// line, not texts, or the position carries its markers.
bool TDVCmdMeldungsBox::IsOlderLine(const QString& line) const
{
    if (!BeginsWithCall(line, OlderNames())) return false;
    if (IsOlderForm(line)) return true;
    const QString outside = OutsideStrings(line);
    for (const TMsgDlgTypeRow& row : kTypes) {
        const QRegularExpression word(QStringLiteral("\\b%1\\b").arg(QLatin1String(row.keyword)));
        if (word.match(outside).hasMatch()) return true;
    }
    return false;
}

bool TDVCmdMeldungsBox::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    fields_.text = GetStrPart(QStringLiteral("("), QStringLiteral(","), script);
    fields_.type = ReadMessageType(script, fields_.type);
    fields_.buttons = 0;
    for (const TMsgDlgBtnRow& row : kButtons) {
        if (row.value == TMsgDlgBtn::Abort) continue;
        if (script.contains('[' + QLatin1String(row.keyword) + ']')) fields_.buttons |= row.bit;
    }
    const bool placed = script.contains(QLatin1String("@x:")) || script.contains(QLatin1String("@y:"));
    fields_.standardPosition = !placed;
    fields_.x = placed ? StrToIntDef(GetStrPart(QStringLiteral("@x:"), QStringLiteral(",@y:"), script).trimmed(), 0) : 0;
    fields_.y = placed ? StrToIntDef(GetStrPart(QStringLiteral("@y:"), QStringLiteral(");"), script).trimmed(), 0) : 0;
    ReadParams(params);
    return true;
}

// An older line may hold nothing the current grammar rejects: "[mbOK]" alone reads as an array
// literal. Its bracketed buttons and "@x:"/"@y:" outside string literals mark it all the same.
bool TDVCmdMeldungsBox::IsOlderForm(const QString& statement) const
{
    const QString outside = OutsideStrings(statement);
    if (ContainsAny(outside, {"@x:", "@y:"})) return true;
    for (const TMsgDlgBtnRow& row : kButtons) {
        if (row.value != TMsgDlgBtn::Abort && outside.contains('[' + QLatin1String(row.keyword) + ']')) return true;
    }
    return false;
}

QString TDVCmdMeldungsBox::GetDescription(const QString&, const TParamList& params)
{
    SetParams(params);
    return _("Meldung: ") + fields_.text;
}

TMessageRequest MessageRequest(const TDVCmdMeldungsBoxFields& f)
{
    return {f.text, f.type, f.buttons, f.standardPosition, f.x, f.y};
}

void TDVCmdMeldungsBox::Run(TParamList& params)
{
    SetParams(params);
    // Before the message shows: an answer that cannot be kept would cost the person a click.
    RequireTextVariable(QStringLiteral("MeldungsBox"), QStringLiteral("ButtonResult"), QStringLiteral("ButtonResult"));
    int result = 0;
    if (IDVOperatorDialogs* dialogs = OperatorDialogs()) {
        const TMessageRequest request = MessageRequest(fields_);
        Synchronize([&] { result = dialogs->ShowMessage(request); });
    } else {
        result = AnsweredResult(RequiredHeadlessAnswer(QStringLiteral("MeldungsBox"), QStringLiteral("JA")), fields_.buttons);
    }
    if (result == kCancel || result == kAbort) TestEnvironment().StopTest();
    VarAccess().SetVariable(QStringLiteral("ButtonResult"), std::make_unique<TStringValue>(ButtonResultText(result)));
}

}  // namespace dv
