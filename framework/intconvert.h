#pragma once
// The runtime's integer conversions and rounding, as the commands' run bodies rely on them: a text
// that is no integer is a run-time error naming the text, not a silent 0.
#include <QString>

#include <cstdint>
#include <optional>

namespace dv {

// A 32-bit integer from text: leading blanks, an optional sign, then decimal digits or hexadecimal
// digits after "$", "x" or "0x" (up to FFFFFFFF, which reads as -1); nullopt for anything else,
// trailing blanks included.
std::optional<std::int32_t> TryStrToInt(const QString& text);
// As TryStrToInt; raises TDVRuntimeException "\"%s\" ist kein gültiger Integerwert".
std::int32_t StrToInt(const QString& text);
// The same, giving def instead of raising.
std::int32_t StrToIntDef(const QString& text, std::int32_t def);
// "True"/"False" in any case, or an integer (non-zero true); raises TDVRuntimeException
// "\"%s\" ist kein gültiger Boolean-Wert" for anything else.
bool StrToBoolStrict(const QString& text);
// x rounded to the nearest integer, halves to even. Raises TDVRuntimeException
// "Ungültige Gleitkommaoperation" when x is no number or outside the 64-bit range.
std::int64_t RoundHalfEven(long double x);

}  // namespace dv
