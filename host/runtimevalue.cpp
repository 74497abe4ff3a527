#include "host/runtimevalue.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/translate.h"
#include "framework/typeconversion.h"

#include <cmath>

namespace dv::host {

TVal TVal::Number(long double x)
{
    TVal v;
    v.number = x;
    return v;
}

TVal TVal::String(QString s)
{
    TVal v;
    v.kind = TValueKind::String;
    v.text = std::move(s);
    return v;
}

TVal TVal::Boolean(bool b)
{
    TVal v;
    v.kind = TValueKind::Boolean;
    v.boolean = b;
    return v;
}

TVal TVal::Array(std::shared_ptr<TArrayValue> a)
{
    TVal v;
    v.kind = TValueKind::Array;
    v.array = std::move(a);
    return v;
}

QString KindName(TValueKind kind)
{
    switch (kind) {
    case TValueKind::Number: return QStringLiteral("Number");
    case TValueKind::String: return QStringLiteral("String");
    case TValueKind::Array: return QStringLiteral("Array");
    case TValueKind::Boolean: return QStringLiteral("Boolean");
    case TValueKind::Misc: break;
    }
    return QStringLiteral("Misc");
}

QString TypeName(const TDVType& type)
{
    if (type.kind == TValueKind::Array) return QStringLiteral("Array of ") + KindName(type.elementKind);
    return KindName(type.kind);
}

QString ValText(const TVal& v)
{
    switch (v.kind) {
    case TValueKind::Number: return DVFloatToStr(v.number);
    case TValueKind::String: return v.text;
    case TValueKind::Boolean: return v.boolean ? QStringLiteral("True") : QStringLiteral("False");
    case TValueKind::Array: return v.array ? v.array->AsText() : QString();
    case TValueKind::Misc: break;
    }
    return {};
}

TValuePtr ToValue(const TVal& v)
{
    switch (v.kind) {
    case TValueKind::Number: return std::make_unique<TNumberValue>(v.number);
    case TValueKind::Boolean: return std::make_unique<TBooleanValue>(v.boolean);
    case TValueKind::Array: return v.array ? v.array->Clone() : std::make_unique<TArrayValue>();
    case TValueKind::String:
    case TValueKind::Misc: break;
    }
    return std::make_unique<TStringValue>(v.text);
}

TVal FromValue(const TValue& value)
{
    if (const auto* n = dynamic_cast<const TNumberValue*>(&value)) return TVal::Number(n->GetVal());
    if (const auto* s = dynamic_cast<const TStringValue*>(&value)) return TVal::String(s->GetVal());
    if (const auto* b = dynamic_cast<const TBooleanValue*>(&value)) return TVal::Boolean(b->GetVal());
    if (const auto* a = dynamic_cast<const TArrayValue*>(&value)) {
        return TVal::Array(std::shared_ptr<TArrayValue>(static_cast<TArrayValue*>(a->Clone().release())));
    }
    return TVal::String(value.AsText());
}

TVal ElementValue(const TArrayValue& array, int index)
{
    if (array.GetKindAt(index) == TValueKind::Number) return TVal::Number(array.GetNumber(index));
    return FromValue(array.GetVal(index));
}

void StoreElement(TArrayValue& array, int index, TVal v)
{
    if (v.kind == TValueKind::Number) {
        array.SetNumber(index, v.number);
    } else {
        array.SetVal(index, ToValue(v));
    }
}

QString ArrayToChars(const TArrayValue& array)
{
    QString out;
    for (int i = 1; i <= array.GetSize(); ++i) {
        if (array.GetKindAt(i) == TValueKind::Number) {
            out += Chr1252(static_cast<int>(TNumberValue(array.GetNumber(i)).GetAsInt()));
        } else {
            out += array.GetText(i);
        }
    }
    return out;
}

namespace {

[[noreturn]] void Mismatch(const TDVType& target, const TVal& v)
{
    throw TDVRuntimeException(Format(_("Typen unverträglich: %s erwartet, %s gefunden"), {TypeName(target), KindName(v.kind)}));
}

TVal CoerceArray(TVal v, const TDVType& target)
{
    if (v.kind == TValueKind::String) {
        std::unique_ptr<TArrayValue> parsed = ParseArrayText(v.text, target.elementKind);
        if (!parsed) Mismatch(target, v);
        return TVal::Array(std::shared_ptr<TArrayValue>(parsed.release()));
    }
    if (v.kind != TValueKind::Array) Mismatch(target, v);
    if (target.elementKind == TValueKind::Misc || v.array->GetElementKind() == target.elementKind) return v;
    auto converted = std::make_shared<TArrayValue>(target.elementKind);
    const TDVType elementType{target.elementKind, TValueKind::Misc};
    for (int i = 1; i <= v.array->GetSize(); ++i) {
        StoreElement(*converted, i, Coerce(ElementValue(*v.array, i), elementType));
    }
    return TVal::Array(std::move(converted));
}

}  // namespace

TVal Coerce(TVal v, const TDVType& target)
{
    if (target.kind == TValueKind::Misc || target.kind == v.kind) {
        if (v.kind != TValueKind::Array || target.kind == TValueKind::Misc) return v;
        return CoerceArray(std::move(v), target);
    }
    switch (target.kind) {
    case TValueKind::Number:
        if (v.kind == TValueKind::String) return TVal::Number(DVStrToFloat(v.text));
        break;
    case TValueKind::String:
        if (v.kind == TValueKind::Array) return TVal::String(ArrayToChars(*v.array));
        return TVal::String(ValText(v));
    case TValueKind::Boolean:
        if (v.kind == TValueKind::String) {
            const QString t = v.text.trimmed().toLower();
            if (t == "true" || t == "false") return TVal::Boolean(t == "true");
        }
        break;
    case TValueKind::Array: return CoerceArray(std::move(v), target);
    case TValueKind::Misc: break;
    }
    Mismatch(target, v);
}

void KindMismatch(const TDVType& target, const TVal& v) { Mismatch(target, v); }

}  // namespace dv::host
