#include "framework/intconvert.h"

#include "framework/exceptions.h"
#include "framework/translate.h"

#include <cmath>
#include <limits>
#include <optional>

namespace dv {

std::optional<std::int32_t> TryStrToInt(const QString& text)
{
    qsizetype i = 0;
    while (i < text.size() && text[i] <= QChar(' ')) ++i;
    bool negative = false;
    if (i < text.size() && (text[i] == '+' || text[i] == '-')) negative = text[i++] == '-';
    int base = 10;
    if (i < text.size() && (text[i] == '$' || text[i] == 'x' || text[i] == 'X')) {
        base = 16;
        ++i;
    } else if (i + 1 < text.size() && text[i] == '0' && (text[i + 1] == 'x' || text[i + 1] == 'X')) {
        base = 16;
        i += 2;
    }
    if (i >= text.size()) return std::nullopt;
    // Decimal runs up to 2^31 (for the negative end); hexadecimal fills the unsigned 32-bit range.
    const std::uint64_t limit = base == 16 ? 0xFFFFFFFFull : (negative ? 0x80000000ull : 0x7FFFFFFFull);
    std::uint64_t value = 0;
    for (; i < text.size(); ++i) {
        const char16_t c = text[i].unicode();
        int digit = -1;
        if (c >= '0' && c <= '9') digit = c - '0';
        if (c >= 'a' && c <= 'f') digit = c - 'a' + 10;
        if (c >= 'A' && c <= 'F') digit = c - 'A' + 10;
        if (digit < 0 || digit >= base) return std::nullopt;
        value = value * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(digit);
        if (value > limit) return std::nullopt;
    }
    const auto bits = static_cast<std::uint32_t>(value);
    const auto magnitude = static_cast<std::int64_t>(static_cast<std::int32_t>(bits));
    const std::int64_t signedValue = base == 16 ? magnitude : static_cast<std::int64_t>(value);
    return static_cast<std::int32_t>(negative ? -signedValue : signedValue);
}

std::int32_t StrToInt(const QString& text)
{
    if (const auto value = TryStrToInt(text)) return *value;
    throw TDVRuntimeException(Format(_("\"%s\" ist kein gültiger Integerwert"), {text}));
}

std::int32_t StrToIntDef(const QString& text, std::int32_t def) { return TryStrToInt(text).value_or(def); }

bool StrToBoolStrict(const QString& text)
{
    if (text.compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0) return true;
    if (text.compare(QStringLiteral("False"), Qt::CaseInsensitive) == 0) return false;
    if (const auto value = TryStrToInt(text)) return *value != 0;
    throw TDVRuntimeException(Format(_("\"%s\" ist kein gültiger Boolean-Wert"), {text}));
}

std::int64_t RoundHalfEven(long double x)
{
    // 2^63 is the first value past the range; the comparison is exact in long double.
    constexpr long double bound = 9223372036854775808.0L;
    if (!std::isfinite(x) || x >= bound || x < -bound) throw TDVRuntimeException(_("Ungültige Gleitkommaoperation"));
    return static_cast<std::int64_t>(std::llrint(x));  // default rounding mode: to nearest, ties to even
}

}  // namespace dv
