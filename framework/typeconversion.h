#pragma once
// Characters and codes always convert through the Windows-1252 code page, never through UTF-16.
#include <QByteArray>
#include <QChar>
#include <QString>

namespace dv {

// The character of a Windows-1252 code (128 is the euro sign); "?" for a code outside 0..255.
QChar Chr1252(int code);
// The Windows-1252 code of a character; 63 ("?") for a character the code page lacks.
int Ord1252(QChar c);

// How a text file's characters are stored: UTF-16 and UTF-8 with a byte order mark as they are
// found, UTF-8 without one, and Windows-1252 for a file that is not valid UTF-8.
enum class TTextEncoding { Utf8, Utf8Bom, Utf16LE, Utf16BE, Windows1252 };
// The text of a file and the encoding it was found in (a U+FEFF after the mark is text).
QString DecodeText(const QByteArray& bytes, TTextEncoding& encoding);
// The bytes as a Windows program that reads single-byte text sees them: a file with a byte order
// mark is Unicode text brought to Windows-1252 (what the code page lacks becomes "?"); any other
// file is taken byte for byte.
QByteArray AnsiBytes(const QByteArray& bytes);
// The text stored as a file in that encoding, mark included; a character Windows-1252 lacks
// becomes "?" there.
QByteArray EncodeText(const QString& text, TTextEncoding encoding);

}  // namespace dv
