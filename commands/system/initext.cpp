#include "commands/system/initext.h"

#include "framework/typeconversion.h"

#include <QStringList>

#include <algorithm>

namespace dv {

namespace {

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

bool InWindows1252(QChar c) { return c == '?' || Ord1252(c) != '?'; }

}  // namespace

TIniText::TIniText(const QByteArray& content)
{
    QString text = DecodeText(content, encoding_);
    intact_ = EncodeText(text, encoding_) == content;
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
    return EncodeText(text, encoding_);
}

bool TIniText::ReadsBackAlike(const QByteArray& written) const
{
    if (encoding_ != TIniEncoding::Windows1252) return true;
    const bool ascii = std::all_of(written.begin(), written.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
    TIniEncoding again = encoding_;
    DecodeText(written, again);
    return ascii || again == TIniEncoding::Windows1252;
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
