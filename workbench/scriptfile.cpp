#include "workbench/scriptfile.h"

#include "framework/typeconversion.h"

#include <QStringDecoder>
#include <QStringEncoder>

namespace dv::workbench {

namespace {

const QByteArray kUtf8Bom("\xEF\xBB\xBF");
const QByteArray kUtf16LEBom("\xFF\xFE");
const QByteArray kUtf16BEBom("\xFE\xFF");

QString Decode(QStringDecoder::Encoding encoding, const QByteArray& bytes)
{
    QStringDecoder decoder(encoding, QStringDecoder::Flag::Stateless);
    return decoder(bytes);
}

}  // namespace

TScriptFileText DecodeScriptFile(const QByteArray& bytes)
{
    TScriptFileText file;
    if (bytes.startsWith(kUtf16LEBom)) {
        file.format.encoding = TTextEncoding::Utf16LE;
        file.text = Decode(QStringDecoder::Utf16LE, bytes.mid(kUtf16LEBom.size()));
    } else if (bytes.startsWith(kUtf16BEBom)) {
        file.format.encoding = TTextEncoding::Utf16BE;
        file.text = Decode(QStringDecoder::Utf16BE, bytes.mid(kUtf16BEBom.size()));
    } else {
        // dvrun's reading; whether it took the bytes as UTF-8 is told by decoding them once more.
        const bool bom = bytes.startsWith(kUtf8Bom);
        file.text = DecodeUtf8Or1252(bom ? bytes.mid(kUtf8Bom.size()) : bytes);
        QStringDecoder utf8(QStringDecoder::Utf8);
        const QString asUtf8 = utf8(bytes);
        file.format.encoding = utf8.hasError() ? TTextEncoding::Windows1252
                               : bom           ? TTextEncoding::Utf8WithBom
                                               : TTextEncoding::Utf8;
    }
    // The first line break tells the file's kind; the editor works with '\n' alone.
    const qsizetype firstBreak = file.text.indexOf('\n');
    file.format.crlf = firstBreak > 0 && file.text[firstBreak - 1] == '\r';
    file.text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return file;
}

std::optional<QByteArray> EncodeScriptFile(const QString& text, const TScriptFormat& format)
{
    const QString lines = format.crlf ? QString(text).replace('\n', QStringLiteral("\r\n")) : text;
    switch (format.encoding) {
    case TTextEncoding::Utf8: return lines.toUtf8();
    case TTextEncoding::Utf8WithBom: return kUtf8Bom + lines.toUtf8();
    case TTextEncoding::Utf16LE: return kUtf16LEBom + QStringEncoder(QStringEncoder::Utf16LE)(lines);
    case TTextEncoding::Utf16BE: return kUtf16BEBom + QStringEncoder(QStringEncoder::Utf16BE)(lines);
    case TTextEncoding::Windows1252: break;
    }
    QByteArray bytes;
    bytes.reserve(lines.size());
    for (const QChar c : lines) {
        const int code = Ord1252(c);
        if (code == '?' && c != '?') return std::nullopt;
        bytes += static_cast<char>(code);
    }
    return bytes;
}

QString EncodingName(TTextEncoding encoding)
{
    switch (encoding) {
    case TTextEncoding::Utf8: return QStringLiteral("UTF-8");
    case TTextEncoding::Utf8WithBom: return QStringLiteral("UTF-8 mit BOM");
    case TTextEncoding::Windows1252: return QStringLiteral("Windows-1252");
    case TTextEncoding::Utf16LE: return QStringLiteral("UTF-16 LE");
    case TTextEncoding::Utf16BE: return QStringLiteral("UTF-16 BE");
    }
    return {};
}

}  // namespace dv::workbench
