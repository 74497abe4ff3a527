#include "workbench/scriptfile.h"

#include "framework/typeconversion.h"

namespace dv::workbench {

TScriptFileText DecodeScriptFile(const QByteArray& bytes)
{
    TScriptFileText file;
    file.text = DecodeText(bytes, file.format.encoding);
    // The first line break tells the file's kind; the editor works with '\n' alone.
    const qsizetype firstBreak = file.text.indexOf('\n');
    file.format.crlf = firstBreak > 0 && file.text[firstBreak - 1] == '\r';
    file.text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    return file;
}

std::optional<QByteArray> EncodeScriptFile(const QString& text, const TScriptFormat& format)
{
    const QString lines = format.crlf ? QString(text).replace('\n', QStringLiteral("\r\n")) : text;
    if (format.encoding == TTextEncoding::Windows1252) {
        for (const QChar c : lines) {
            if (c != '?' && Ord1252(c) == '?') return std::nullopt;
        }
    }
    return EncodeText(lines, format.encoding);
}

QString EncodingName(TTextEncoding encoding)
{
    switch (encoding) {
    case TTextEncoding::Utf8: return QStringLiteral("UTF-8");
    case TTextEncoding::Utf8Bom: return QStringLiteral("UTF-8 mit BOM");
    case TTextEncoding::Windows1252: return QStringLiteral("Windows-1252");
    case TTextEncoding::Utf16LE: return QStringLiteral("UTF-16 LE");
    case TTextEncoding::Utf16BE: return QStringLiteral("UTF-16 BE");
    }
    return {};
}

}  // namespace dv::workbench
