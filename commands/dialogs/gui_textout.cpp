#include "commands/dialogs/gui_textout.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/intconvert.h"
#include "framework/olderline.h"
#include "framework/services.h"
#include "framework/translate.h"

#include <QRegularExpression>

#include <array>

namespace dv {

namespace {

constexpr std::array<TFontStyleRow, 4> kFontStyles{{
    {TFontStyle::Bold, "BOLD", "bold ", 1},
    {TFontStyle::Italic, "ITALIC", "Italic ", 2},
    {TFontStyle::Underline, "UNDERLINE", "Underline ", 4},
    {TFontStyle::StrikeOut, "STRIKEOUT", "Strikeout ", 8},
}};
static_assert(kFontStyles.size() == static_cast<std::size_t>(TFontStyle::Count));

QString Quoted(const QString& text) { return '"' + text + '"'; }

// A size or colour that is no integer fails naming its parameter, so that the user finds the text
// to fix among the six.
int IntegerParameter(const QString& name, const QString& text)
{
    if (const std::optional<std::int32_t> value = TryStrToInt(text)) return *value;
    throw TDVRuntimeException(Format(_("%s: \"%s\" ist kein gültiger Integerwert"), {name, text}));
}

}  // namespace

std::span<const TFontStyleRow> FontStyles() { return kFontStyles; }

int StyleBits(const QString& styleText)
{
    const QString upper = styleText.toUpper();
    int bits = 0;
    for (const TFontStyleRow& row : kFontStyles) {
        if (upper.contains(QLatin1String(row.keyword))) bits |= row.bit;
    }
    return bits;
}

QString BuildStyleText(bool bold, bool italic, bool underline, bool strikeOut)
{
    const std::array<bool, 4> chosen{bold, italic, underline, strikeOut};
    QString text;
    QString separator;
    for (std::size_t i = 0; i < kFontStyles.size(); ++i) {
        if (!chosen[i]) continue;
        text = QLatin1String(kFontStyles[i].rebuilt) + separator + text;
        separator = QStringLiteral(" + ");
    }
    return text;
}

TDVCmdTextOut::TDVCmdTextOut(TDVParser* parser)
    : TDVFieldsCommand("TDVCmdTextOut", parser)
{
}

void TDVCmdTextOut::SetParams(const TParamList& params)
{
    fields_.text = params.GetString(QStringLiteral("Text"));
    fields_.font = StripQuotes(params.GetString(QStringLiteral("Font")));
    fields_.size = GetDefStr(params.GetString(QStringLiteral("FontSize")), QStringLiteral("10"));
    fields_.colour = GetDefStr(params.GetString(QStringLiteral("FontColor")), QStringLiteral("0"));
    fields_.style = StripQuotes(params.GetString(QStringLiteral("FontStyle")));
    fields_.formFeed = StrToBoolEx(params.GetString(QStringLiteral("FormFeed")), false);
}

void TDVCmdTextOut::ReadParams(TParamList& params)
{
    params.AddString(QStringLiteral("Text"), fields_.text);
    params.AddString(QStringLiteral("Font"), Quoted(fields_.font));
    params.AddString(QStringLiteral("FontSize"), fields_.size);
    params.AddString(QStringLiteral("FontColor"), fields_.colour);
    params.AddString(QStringLiteral("FontStyle"), Quoted(fields_.style));
    params.AddString(QStringLiteral("FormFeed"), fields_.formFeed ? QStringLiteral("True") : QStringLiteral("False"));
}

// TextOut([OUT:text][FONT:name:size:style][COL:colour][FORMFEED]);
// The markers open the argument list, and a text in one may hold quotes of its own; a marker
// further on counts where it stands outside the line's strings.
bool TDVCmdTextOut::IsOlderLine(const QString& line) const
{
    static const QRegularExpression opening(QStringLiteral("^\\s*TextOut\\s*\\(\\s*\\[(?:OUT:|FONT:|COL:|FORMFEED\\])"),
                                            QRegularExpression::CaseInsensitiveOption);
    const QString outside = OutsideStrings(line);
    return opening.match(line).hasMatch() ||
           (BeginsWithCall(line, OlderNames()) &&
            (outside.contains(QLatin1String("[OUT:")) || ContainsAny(outside, {"[FONT:", "[COL:", "[FORMFEED]"}, Qt::CaseInsensitive)));
}

bool TDVCmdTextOut::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    TFields f;
    // The older form's default font name lands in the style field and the font stays empty;
    // scripts converted so have always run with the host's default font.
    f.style = QStringLiteral("Arial");
    const QString end = QStringLiteral("]");
    if (script.contains(QLatin1String("[OUT:"))) f.text = GetStrPart(QStringLiteral("[OUT:"), end, script);
    const QString upper = script.toUpper();
    if (upper.contains(QLatin1String("[FONT:"))) {
        const QString font = GetStrPart(QStringLiteral("[FONT:"), end, upper);
        f.font = Segment(font, QStringLiteral(":"), 1);
        f.size = Segment(font, QStringLiteral(":"), 2);
        f.style = Segment(font, QStringLiteral(":"), 3);
    }
    if (upper.contains(QLatin1String("[COL:"))) f.colour = GetStrPart(QStringLiteral("[COL:"), end, upper);
    f.formFeed = upper.contains(QLatin1String("[FORMFEED]"));
    fields_ = f;
    ReadParams(params);
    return true;
}

QString TDVCmdTextOut::GetDescription(const QString&, const TParamList& params)
{
    SetParams(params);
    return _("Textausgabe: ") + fields_.text;
}

void TDVCmdTextOut::Run(TParamList& params)
{
    SetParams(params);
    const int style = StyleBits(fields_.style);
    const int size = IntegerParameter(QStringLiteral("FontSize"), fields_.size);
    const int colour = IntegerParameter(QStringLiteral("FontColor"), fields_.colour);
    // The form-feed flag is not passed on: the output has no pages.
    TestEnvironment().WriteOutput(StripChar(fields_.text, QChar(0)), fields_.font, size, style, colour);
}

}  // namespace dv
