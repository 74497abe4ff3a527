#include "commands/text/gui_strtoarray.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/olderline.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "framework/typeconversion.h"

namespace dv {

TDVCmdStringToArray::TDVCmdStringToArray(TDVParser* parser)
    : TDVFieldsCommand("TDVCmdStringToArray", parser)
{
}

void TDVCmdStringToArray::SetParams(const TParamList& params)
{
    fields_.str = params.GetString(QStringLiteral("str"));
    fields_.arr = params.GetString(QStringLiteral("arr"));
}

void TDVCmdStringToArray::ReadParams(TParamList& params)
{
    params.AddString(QStringLiteral("str"), fields_.str);
    params.AddString(QStringLiteral("arr"), fields_.arr);
}

// StrToArray(str, arr)
bool TDVCmdStringToArray::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    const QString args = GetStrPart(QStringLiteral("("), QStringLiteral(")"), script);
    fields_.str = Segment(args, QStringLiteral(","), 1);
    fields_.arr = Segment(args, QStringLiteral(","), 2);
    ReadParams(params);
    return true;
}

bool TDVCmdStringToArray::IsOlderLine(const QString& line) const { return IsPlainCall(line, QStringLiteral("StrToArray")); }

void TDVCmdStringToArray::Run(TParamList& params)
{
    SetParams(params);
    Start();
}

void TDVCmdStringToArray::Start()
{
    TDVVariable* variable = VarAccess().FindVariable(fields_.arr);
    if (!variable) {
        throw TDVRuntimeException(Format(_("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!"), {fields_.arr}));
    }
    auto* array = dynamic_cast<TArrayValue*>(&variable->GetValue());
    if (variable->GetType().kind != TValueKind::Array || !array) {
        throw TDVRuntimeException(Format(_("Die Variable \"%s\" ist kein Array."), {fields_.arr}));
    }
    // Only arrays of numbers or of strings can take characters.
    const TValueKind elementKind = variable->GetType().elementKind;
    if (static_cast<int>(elementKind) >= 2) {
        throw TDVRuntimeException(Format(_("Es wurde ein Array erwartet"), {fields_.arr}));
    }
    // The variable's array is changed in place; no SetVariable.
    array->Reset();
    for (qsizetype i = 0; i < fields_.str.size(); ++i) {
        const QChar c = fields_.str[i];
        TValuePtr element;
        if (elementKind == TValueKind::String) {
            element = std::make_unique<TStringValue>(QString(c));
        } else {
            element = std::make_unique<TNumberValue>(static_cast<long double>(Ord1252(c)));
        }
        array->SetVal(static_cast<int>(i) + 1, std::move(element));
    }
}

}  // namespace dv
