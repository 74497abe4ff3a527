#include "framework/typeconversion.h"

#include <QStringDecoder>

#include <array>

namespace dv {

namespace {

// 0x80..0x9F; the five codes the code page leaves undefined map to the C1 control of the same
// number, as the system conversion does, so that every byte survives a round trip.
constexpr std::array<char16_t, 32> kHighControls = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

}  // namespace

QChar Chr1252(int code)
{
    if (code < 0 || code > 255) return QChar('?');
    if (code >= 0x80 && code <= 0x9F) return QChar(kHighControls[code - 0x80]);
    return QChar(static_cast<char16_t>(code));
}

int Ord1252(QChar c)
{
    const char16_t u = c.unicode();
    if (u < 0x80 || (u >= 0xA0 && u <= 0xFF)) return u;
    for (std::size_t i = 0; i < kHighControls.size(); ++i) {
        if (kHighControls[i] == u) return static_cast<int>(0x80 + i);
    }
    return '?';
}

QString DecodeUtf8Or1252(const QByteArray& bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    QString text = utf8(bytes);
    if (!utf8.hasError()) return text;
    text.clear();
    text.reserve(bytes.size());
    for (const char b : bytes) text += Chr1252(static_cast<unsigned char>(b));
    return text;
}

}  // namespace dv
