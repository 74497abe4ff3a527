#pragma once
// The runtime's strict text conversions that the system commands keep: integers in decimal or
// hexadecimal ("$1F", "0x1F", "x1F"), booleans as "True"/"False" or a number.
#include <QString>

#include <cstdint>
#include <optional>

namespace dv {

// A 32-bit integer: optional leading blanks and sign, then decimal digits or a hex prefix with
// hex digits; hex values up to FFFFFFFF wrap into the negative range. nullopt for anything else.
std::optional<std::int32_t> TryStrToInt(const QString& text);
// As TryStrToInt; raises TDVRuntimeException "'%s' ist kein gültiger Integerwert".
std::int32_t StrToIntStrict(const QString& text);
// "True"/"False" in any case, or an integer (non-zero true); raises TDVRuntimeException
// "'%s' ist kein gültiger Boolean-Wert" for anything else.
bool StrToBoolStrict(const QString& text);

}  // namespace dv
