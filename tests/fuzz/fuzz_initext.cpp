// INI text: parse, change one key, write, and parse the written file again. The key reads back as
// written, a key it did not touch keeps its value, and the file does not grow beyond the change.
#include "commands/system/initext.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

QString Name(FuzzedDataProvider& in) { return QString::fromStdString(in.ConsumeRandomLengthString(24)).trimmed(); }

bool IsLineText(const QString& s) { return !s.contains('\n') && !s.contains('\r'); }

// A section name that reads back from its "[name]" line.
bool IsSectionName(const QString& s) { return IsLineText(s) && !s.contains(']'); }

// A key that its "key=value" line reads back as: not a comment, no section line, no "=".
bool IsKeyName(const QString& s)
{
    return IsLineText(s) && !s.isEmpty() && !s.contains('=') && !s.startsWith(';') && !s.startsWith('#') &&
           !s.startsWith('[');
}

// A value that reads back unchanged: no blanks around it, no pair of enclosing quotes.
bool IsPlainValue(const QString& s)
{
    const bool quoted = s.size() >= 2 && (s.front() == '"' || s.front() == '\'') && s.back() == s.front();
    return IsLineText(s) && s == s.trimmed() && !quoted;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider in(data, size);
    const QString section = Name(in), key = Name(in), otherSection = Name(in), otherKey = Name(in);
    const QString value = QString::fromStdString(in.ConsumeRandomLengthString(64));
    const bool erase = in.ConsumeBool();
    const std::string rest = in.ConsumeRemainingBytesAsString();
    const QByteArray content(rest.data(), static_cast<qsizetype>(rest.size()));

    dv::TIniText ini(content);
    if (ini.Content() != dv::TIniText(ini.Content()).Content()) std::abort();  // writing is stable
    // Bytes that are no text of the file's encoding: the command refuses to write such a file.
    if (!ini.Intact()) return 0;
    if (!IsSectionName(section) || !IsKeyName(key) || !IsPlainValue(value)) return 0;
    // The command refuses what the file's encoding cannot hold (Windows-1252 lacks most characters).
    if (!ini.CanHold(section + key + value)) return 0;
    const bool other = otherSection.compare(section, Qt::CaseInsensitive) != 0 || otherKey.compare(key, Qt::CaseInsensitive) != 0;
    const std::optional<QString> otherBefore = ini.ReadString(otherSection, otherKey);

    if (erase) ini.DeleteKey(section, key);
    else ini.WriteString(section, key, value);
    const QByteArray written = ini.Content();
    // The command refuses a change after which the file would read in another encoding.
    if (!ini.ReadsBackAlike(written)) return 0;
    const dv::TIniText again(written);
    // At most a new section: "[", "]", "=" and three line ends of two bytes (the one the file's
    // last line lacked, and one after each new line); a file with CRLF line ends also writes its
    // lone LF ones as CRLF. Counted in UTF-8 bytes, of which UTF-16 takes at most twice as many.
    const bool utf16 = ini.Encoding() == dv::TIniEncoding::Utf16LE || ini.Encoding() == dv::TIniEncoding::Utf16BE;
    const qsizetype change = (utf16 ? 2 : 1) * (section.toUtf8().size() + key.toUtf8().size() + value.toUtf8().size() + 3 +
                                                3 * 2 + content.count('\n'));
    if (written.size() > content.size() + change) std::abort();
    if (!erase && again.ReadString(section, key) != value) std::abort();
    if (other && again.ReadString(otherSection, otherKey) != otherBefore) std::abort();
    return 0;
}
