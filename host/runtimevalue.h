#pragma once
// The interpreter's working value: numbers, strings and booleans held directly, arrays as the
// framework's TArrayValue so that commands can change an array variable in place.
#include "framework/values.h"

#include <QString>

#include <memory>

namespace dv::host {

struct TVal {
    TValueKind kind = TValueKind::Number;
    bool boolean = false;
    long double number = 0;
    QString text;
    std::shared_ptr<TArrayValue> array;

    static TVal Number(long double x);
    static TVal String(QString s);
    static TVal Boolean(bool b);
    static TVal Array(std::shared_ptr<TArrayValue> a);
};

// The name of a kind in messages ("Number", "String" ...).
QString KindName(TValueKind kind);
QString TypeName(const TDVType& type);

// The value as a parameter text: numbers locale-free, booleans "True"/"False", arrays "{..}{..}".
QString ValText(const TVal& v);
// A new framework value of the same content (arrays are copied).
TValuePtr ToValue(const TVal& v);
// The working value of a framework value (arrays are copied).
TVal FromValue(const TValue& v);
// Element `index` of an array as a working value; raises outside 1..GetSize().
TVal ElementValue(const TArrayValue& array, int index);
// Stores a working value as element `index` (>= 1) of an array, growing it as SetVal does.
void StoreElement(TArrayValue& array, int index, TVal v);
// The characters of an array used where a string is expected: number elements are Windows-1252
// codes (rounded half to even), string elements stand for themselves.
QString ArrayToChars(const TArrayValue& array);
// The value converted for a variable or parameter of the given type; raises TDVRuntimeException
// when it cannot be. Arrays that need no conversion are shared, not copied.
TVal Coerce(TVal v, const TDVType& target);
// The condition value of if/while/until and the operands of and/or/xor/not.
[[noreturn]] void KindMismatch(const TDVType& target, const TVal& v);
inline bool RequireBoolean(const TVal& v)
{
    if (v.kind != TValueKind::Boolean) KindMismatch(g_BooleanType, v);
    return v.boolean;
}
inline long double RequireNumber(const TVal& v)
{
    if (v.kind != TValueKind::Number) KindMismatch(g_NumberType, v);
    return v.number;
}

}  // namespace dv::host
