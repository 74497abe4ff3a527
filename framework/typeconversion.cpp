#include "framework/typeconversion.h"

#include <QStringDecoder>
#include <QStringEncoder>

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

const QByteArray kUtf8Bom = QByteArrayLiteral("\xEF\xBB\xBF");
const QByteArray kUtf16LEBom = QByteArrayLiteral("\xFF\xFE");
const QByteArray kUtf16BEBom = QByteArrayLiteral("\xFE\xFF");

// Decodes with a byte order mark already taken off: a U+FEFF that follows is text, not a mark.
// Stateless: a sequence cut off at the end is an error, not a state kept for more bytes.
QString Decode(QStringConverter::Encoding encoding, QByteArrayView bytes, bool* failed = nullptr)
{
    QStringDecoder decoder(encoding, QStringConverter::Flag::ConvertInitialBom | QStringConverter::Flag::Stateless);
    QString text = decoder(bytes);
    if (failed) *failed = decoder.hasError();
    return text;
}

QByteArray Encode(QStringConverter::Encoding encoding, const QString& text)
{
    QStringEncoder encoder(encoding, QStringConverter::Flag::Default);
    return encoder(text);
}

QString FromWindows1252(QByteArrayView bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (const char b : bytes) text += Chr1252(static_cast<unsigned char>(b));
    return text;
}

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

QString DecodeText(const QByteArray& bytes, TTextEncoding& encoding)
{
    if (bytes.startsWith(kUtf16LEBom)) {
        encoding = TTextEncoding::Utf16LE;
        return Decode(QStringConverter::Utf16LE, QByteArrayView(bytes).sliced(2));
    }
    if (bytes.startsWith(kUtf16BEBom)) {
        encoding = TTextEncoding::Utf16BE;
        return Decode(QStringConverter::Utf16BE, QByteArrayView(bytes).sliced(2));
    }
    if (bytes.startsWith(kUtf8Bom)) {
        encoding = TTextEncoding::Utf8Bom;
        return Decode(QStringConverter::Utf8, QByteArrayView(bytes).sliced(3));
    }
    bool invalid = false;
    const QString text = Decode(QStringConverter::Utf8, bytes, &invalid);
    encoding = invalid ? TTextEncoding::Windows1252 : TTextEncoding::Utf8;
    return invalid ? FromWindows1252(bytes) : text;
}

QByteArray EncodeText(const QString& text, TTextEncoding encoding)
{
    switch (encoding) {
    case TTextEncoding::Utf8: return text.toUtf8();
    case TTextEncoding::Utf8Bom: return kUtf8Bom + text.toUtf8();
    case TTextEncoding::Utf16LE: return kUtf16LEBom + Encode(QStringConverter::Utf16LE, text);
    case TTextEncoding::Utf16BE: return kUtf16BEBom + Encode(QStringConverter::Utf16BE, text);
    case TTextEncoding::Windows1252: break;
    }
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar c : text) bytes += static_cast<char>(Ord1252(c));
    return bytes;
}

QByteArray AnsiBytes(const QByteArray& bytes)
{
    if (!bytes.startsWith(kUtf16LEBom) && !bytes.startsWith(kUtf16BEBom) && !bytes.startsWith(kUtf8Bom)) return bytes;
    TTextEncoding encoding = TTextEncoding::Utf8;
    return EncodeText(DecodeText(bytes, encoding), TTextEncoding::Windows1252);
}

}  // namespace dv
