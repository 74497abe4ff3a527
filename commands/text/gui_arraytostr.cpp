#include "commands/text/gui_arraytostr.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/intconvert.h"
#include "framework/olderline.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "framework/typeconversion.h"

namespace dv {

TDVCmdArrayToString::TDVCmdArrayToString(TDVParser* parser)
    : TDVFieldsCommand("TDVCmdArrayToString", parser)
{
}

void TDVCmdArrayToString::SetParams(const TParamList& params)
{
    fields_.str = params.GetString(QStringLiteral("Str"));
    fields_.arr = params.GetString(QStringLiteral("Arr"));
}

void TDVCmdArrayToString::ReadParams(TParamList& params)
{
    params.AddString(QStringLiteral("Str"), fields_.str);
    params.AddString(QStringLiteral("Arr"), fields_.arr);
}

// ArrayToStr(Arr, Str): the older line names the array first, the reverse of the signature.
bool TDVCmdArrayToString::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    const QString args = GetStrPart(QStringLiteral("("), QStringLiteral(")"), script);
    fields_.str = Segment(args, QStringLiteral(","), 2);
    fields_.arr = Segment(args, QStringLiteral(","), 1);
    ReadParams(params);
    return true;
}

bool TDVCmdArrayToString::IsOlderLine(const QString& line) const { return IsPlainCall(line, QStringLiteral("ArrayToStr")); }

QString TDVCmdArrayToString::GetDescription(const QString&, const TParamList& params)
{
    return _("Konvertiere das Array >>") + params.GetString(QStringLiteral("Arr")) +
           _("<< in einen String und speichere ihn in ") + params.GetString(QStringLiteral("Str"));
}

// A text in the printed form "{72}{65}" converts into an array, as on passing it to any array
// parameter; other texts and values are no array.
QString TDVCmdArrayToString::Join(const TValue& array)
{
    std::unique_ptr<TArrayValue> parsed;
    if (const auto* text = dynamic_cast<const TStringValue*>(&array)) parsed = ParseArrayText(text->GetVal());
    const auto* elements = parsed ? parsed.get() : dynamic_cast<const TArrayValue*>(&array);
    if (!elements) throw TDVRuntimeException(_("Ungültige Typumwandlung"));
    QString result;
    result.reserve(elements->GetSize());
    for (int i = 1; i <= elements->GetSize(); ++i) {
        const TValueKind kind = elements->GetKindAt(i);
        if (kind == TValueKind::String) {
            result += elements->GetText(i);
        } else if (kind == TValueKind::Number) {
            const std::int64_t code = RoundHalfEven(elements->GetNumber(i));
            result += Chr1252(code < 0 || code > 255 ? -1 : static_cast<int>(code));
        }
    }
    return result;
}

// The host hands Arr with its evaluated array attached, and GetValue gives it back as it is: string
// elements keep their text whatever characters they hold. Only a list without a value (an older
// line read as text) has its text parsed. Arr's printed text is not asked for: the list makes it
// only on request, and for a large array it would cost more than the joining.
void TDVCmdArrayToString::Run(TParamList& params)
{
    fields_.str = params.GetString(QStringLiteral("Str"));
    const TValuePtr array = params.GetValue(QStringLiteral("Arr"));
    VarAccess().SetVariable(fields_.str, std::make_unique<TStringValue>(Join(*array)));
}

}  // namespace dv
