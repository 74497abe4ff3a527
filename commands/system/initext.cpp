#include "commands/system/initext.h"

#include "framework/typeconversion.h"

#include <QStringDecoder>
#include <QStringList>
#include <QStringEncoder>

#include <algorithm>

namespace dv {

namespace {

const QByteArray kUtf8Bom = QByteArrayLiteral("\xEF\xBB\xBF");
const QByteArray kUtf16LEBom = QByteArrayLiteral("\xFF\xFE");
const QByteArray kUtf16BEBom = QByteArrayLiteral("\xFE\xFF");

bool SameName(const QString& a, const QString& b) { return a.compare(b.trimmed(), Qt::CaseInsensitive) == 0; }

// The name of a "[name]" line; nullopt for any other line.
std::optional<QString> SectionName(const QString& line)
{
    const QString t = line.trimmed();
    const qsizetype close = t.indexOf(']');
    if (!t.startsWith('[') || close < 0) return std::nullopt;
    return t.mid(1, close - 1).trimmed();
}

bool IsComment(const QString& trimmed) { return trimmed.startsWith(';') || trimmed.startsWith('#'); }

// The key of a "key=value" line; nullopt for comments, sections and lines without "=".
std::optional<QString> KeyName(const QString& line)
{
    const QString t = line.trimmed();
    const qsizetype eq = t.indexOf('=');
    if (t.isEmpty() || IsComment(t) || SectionName(t) || eq <= 0) return std::nullopt;
    return t.left(eq).trimmed();
}

QString ValueOf(const QString& line)
{
    QString v = line.mid(line.indexOf('=') + 1).trimmed();
    if (v.size() >= 2 && (v.front() == '"' || v.front() == '\'') && v.back() == v.front()) v = v.mid(1, v.size() - 2);
    return v;
}

// Decodes with a byte order mark already taken off: a U+FEFF that follows is text, not a mark.
QString Decode(QStringConverter::Encoding encoding, QByteArrayView bytes, bool* failed = nullptr)
{
    QStringDecoder decoder(encoding, QStringConverter::Flag::ConvertInitialBom);
    QString text = decoder(bytes);
    if (failed) *failed = decoder.hasError();
    return text;
}

QByteArray Encode(QStringConverter::Encoding encoding, const QString& text)
{
    QStringEncoder encoder(encoding, QStringConverter::Flag::Default);
    return encoder(text);
}

QString FromWindows1252(const QByteArray& bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (char b : bytes) text += Chr1252(static_cast<unsigned char>(b));
    return text;
}

bool InWindows1252(QChar c) { return c == '?' || Ord1252(c) != '?'; }

// The text of a file and the encoding it was found in.
QString DecodeFile(const QByteArray& content, TIniEncoding& encoding)
{
    if (content.startsWith(kUtf16LEBom)) {
        encoding = TIniEncoding::Utf16LE;
        return Decode(QStringConverter::Utf16LE, QByteArrayView(content).sliced(2));
    }
    if (content.startsWith(kUtf16BEBom)) {
        encoding = TIniEncoding::Utf16BE;
        return Decode(QStringConverter::Utf16BE, QByteArrayView(content).sliced(2));
    }
    if (content.startsWith(kUtf8Bom)) {
        encoding = TIniEncoding::Utf8Bom;
        return Decode(QStringConverter::Utf8, QByteArrayView(content).sliced(3));
    }
    bool invalid = false;
    const QString text = Decode(QStringConverter::Utf8, content, &invalid);
    encoding = invalid ? TIniEncoding::Windows1252 : TIniEncoding::Utf8;
    return invalid ? FromWindows1252(content) : text;
}

}  // namespace

TIniText::TIniText(const QByteArray& content)
{
    QString text = DecodeFile(content, encoding_);
    if (text.contains(QStringLiteral("\r\n"))) eol_ = QStringLiteral("\r\n");
    finalEol_ = text.isEmpty() || text.endsWith('\n');
    if (eol_.size() == 2) text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    if (text.endsWith('\n')) text.chop(1);
    if (!content.isEmpty()) {
        for (const QString& line : text.split('\n')) lines_.push_back(line);
    }
}

QByteArray TIniText::Content() const
{
    QString text;
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        text += lines_[i];
        if (i + 1 < lines_.size() || finalEol_) text += eol_;
    }
    switch (encoding_) {
    case TIniEncoding::Utf8: return text.toUtf8();
    case TIniEncoding::Utf8Bom: return kUtf8Bom + text.toUtf8();
    case TIniEncoding::Utf16LE: return kUtf16LEBom + Encode(QStringConverter::Utf16LE, text);
    case TIniEncoding::Utf16BE: return kUtf16BEBom + Encode(QStringConverter::Utf16BE, text);
    case TIniEncoding::Windows1252: break;
    }
    QByteArray bytes;
    bytes.reserve(text.size());
    for (QChar c : text) bytes += static_cast<char>(Ord1252(c));
    return bytes;
}

bool TIniText::CanHold(const QString& text) const
{
    return encoding_ != TIniEncoding::Windows1252 || std::all_of(text.begin(), text.end(), InWindows1252);
}

std::optional<TIniText::TRange> TIniText::FindSection(const QString& section) const
{
    for (std::size_t i = 0; i < lines_.size(); ++i) {
        const auto name = SectionName(lines_[i]);
        if (!name || !SameName(*name, section)) continue;
        std::size_t end = i + 1;
        while (end < lines_.size() && !SectionName(lines_[end])) ++end;
        return TRange{i, end};
    }
    return std::nullopt;
}

std::optional<std::size_t> TIniText::FindKey(const TRange& range, const QString& ident) const
{
    for (std::size_t i = range.header + 1; i < range.end; ++i) {
        const auto key = KeyName(lines_[i]);
        if (key && SameName(*key, ident)) return i;
    }
    return std::nullopt;
}

std::optional<QString> TIniText::ReadString(const QString& section, const QString& ident) const
{
    const auto range = FindSection(section);
    if (!range) return std::nullopt;
    const auto key = FindKey(*range, ident);
    if (!key) return std::nullopt;
    return ValueOf(lines_[*key]);
}

void TIniText::WriteString(const QString& section, const QString& ident, const QString& value)
{
    const QString entry = ident.trimmed() + '=' + value;
    const auto range = FindSection(section);
    if (!range) {
        lines_.push_back('[' + section.trimmed() + ']');
        lines_.push_back(entry);
        finalEol_ = true;
        return;
    }
    if (const auto key = FindKey(*range, ident)) {
        lines_[*key] = *KeyName(lines_[*key]) + '=' + value;
        return;
    }
    // After the section's last key, so that comments and blank lines before the next section stay
    // where they are.
    std::size_t at = range->header + 1;
    for (std::size_t i = range->header + 1; i < range->end; ++i) {
        if (KeyName(lines_[i])) at = i + 1;
    }
    lines_.insert(lines_.begin() + static_cast<std::ptrdiff_t>(at), entry);
    if (at == lines_.size() - 1) finalEol_ = true;
}

void TIniText::DeleteKey(const QString& section, const QString& ident)
{
    const auto range = FindSection(section);
    if (!range) return;
    if (const auto key = FindKey(*range, ident)) lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(*key));
}

void TIniText::EraseSection(const QString& section)
{
    const auto range = FindSection(section);
    if (!range) return;
    lines_.erase(lines_.begin() + static_cast<std::ptrdiff_t>(range->header),
                 lines_.begin() + static_cast<std::ptrdiff_t>(range->end));
}

bool TIniText::SectionExists(const QString& section) const
{
    const auto range = FindSection(section);
    if (!range) return false;
    for (std::size_t i = range->header + 1; i < range->end; ++i) {
        if (KeyName(lines_[i])) return true;
    }
    return false;
}

bool TIniText::ValueExists(const QString& section, const QString& ident) const
{
    const auto range = FindSection(section);
    return range && FindKey(*range, ident).has_value();
}

}  // namespace dv
