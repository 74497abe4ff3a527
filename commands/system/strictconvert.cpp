#include "commands/system/strictconvert.h"

#include "framework/exceptions.h"
#include "framework/translate.h"

namespace dv {

namespace {

int DigitValue(QChar c)
{
    const char16_t u = c.unicode();
    if (u >= '0' && u <= '9') return u - '0';
    if (u >= 'a' && u <= 'f') return u - 'a' + 10;
    if (u >= 'A' && u <= 'F') return u - 'A' + 10;
    return -1;
}

}  // namespace

std::optional<std::int32_t> TryStrToInt(const QString& text)
{
    qsizetype i = 0;
    while (i < text.size() && text[i] == ' ') ++i;
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
    const std::uint64_t limit = base == 16 ? 0xFFFFFFFFull : (negative ? 0x80000000ull : 0x7FFFFFFFull);
    std::uint64_t value = 0;
    for (; i < text.size(); ++i) {
        const int digit = DigitValue(text[i]);
        if (digit < 0 || digit >= base) return std::nullopt;
        value = value * static_cast<std::uint64_t>(base) + static_cast<std::uint64_t>(digit);
        if (value > limit) return std::nullopt;
    }
    const auto bits = static_cast<std::uint32_t>(value);
    const auto wrapped = static_cast<std::int32_t>(bits);
    return negative ? static_cast<std::int32_t>(0u - bits) : wrapped;
}

std::int32_t StrToIntStrict(const QString& text)
{
    if (const auto value = TryStrToInt(text)) return *value;
    throw TDVRuntimeException(Format(_("'%s' ist kein gültiger Integerwert"), {text}));
}

bool StrToBoolStrict(const QString& text)
{
    if (text.compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0) return true;
    if (text.compare(QStringLiteral("False"), Qt::CaseInsensitive) == 0) return false;
    if (const auto value = TryStrToInt(text)) return *value != 0;
    throw TDVRuntimeException(Format(_("'%s' ist kein gültiger Boolean-Wert"), {text}));
}

}  // namespace dv
