#pragma once
// Script files as Windows stations and this host write them. A file is read as dvrun reads it
// (UTF-8 when the bytes are valid UTF-8, otherwise Windows-1252), and also as UTF-16 when it
// begins with a byte order mark; its encoding and line ending are remembered so that saving
// writes the file back the way it came.
#include "framework/typeconversion.h"

#include <QByteArray>
#include <QString>

#include <optional>

namespace dv::workbench {

using dv::TTextEncoding;

struct TScriptFormat {
    TTextEncoding encoding = TTextEncoding::Utf8;
    bool crlf = false;  // lines end with CR LF
    bool operator==(const TScriptFormat&) const = default;
};

struct TScriptFileText {
    QString text;  // lines broken at '\n'
    TScriptFormat format;
};

TScriptFileText DecodeScriptFile(const QByteArray& bytes);
// The bytes of text (lines broken at '\n') in the format; nullopt when the encoding cannot hold
// one of its characters (Windows-1252 holds 251 of them).
std::optional<QByteArray> EncodeScriptFile(const QString& text, const TScriptFormat& format);
// The encoding as the status bar names it ("Windows-1252").
QString EncodingName(TTextEncoding encoding);

}  // namespace dv::workbench
