#include "commands/text/gui_arraytostr.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/intconvert.h"
#include "framework/parser.h"
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

QString TDVCmdArrayToString::GetDescription(const QString&, const TParamList& params)
{
    return _("Konvertiere das Array >>") + params.GetString(QStringLiteral("Arr")) +
           _("<< in einen String und speichere ihn in ") + params.GetString(QStringLiteral("Str"));
}

QString TDVCmdArrayToString::Join(const QString& arrayText)
{
    const TDVAbsyPtr tree = GetParser().GetParser()->ParseExpression(arrayText);
    const auto* array = dynamic_cast<const TDVAbsyArray*>(tree.get());
    if (!array) throw TDVRuntimeException(_("Ungültige Typumwandlung"));
    QString result;
    const auto& elements = array->Elements();
    // Entry 0 of the element list is never converted: the elements are entries 1..N.
    for (std::size_t i = 1; i < elements.size(); ++i) {
        const TValuePtr value = elements[i]->Evaluate();
        if (const auto* text = dynamic_cast<const TStringValue*>(value.get())) {
            result += text->GetVal();
        } else if (const auto* number = dynamic_cast<const TNumberValue*>(value.get())) {
            const std::int64_t code = RoundHalfEven(number->GetVal());
            result += Chr1252(code < 0 || code > 255 ? -1 : static_cast<int>(code));
        }
    }
    return result;
}

void TDVCmdArrayToString::Run(TParamList& params)
{
    SetParams(params);
    VarAccess().SetVariable(fields_.str, std::make_unique<TStringValue>(Join(fields_.arr)));
}

}  // namespace dv
