#pragma once
// An INI file held as its lines, so that a change touches only the line it concerns: comments,
// blank lines, lines of other forms and the file's line endings stay as they were. Sections and
// keys match without regard to case; the first section and the first key of a name count.
#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace dv {

class TIniText {
public:
    explicit TIniText(const QByteArray& content = {});
    QByteArray Content() const;

    // The value of a key: blanks around it removed and one pair of enclosing quotes taken off.
    std::optional<QString> ReadString(const QString& section, const QString& ident) const;
    // Replaces the key's value, or adds the key at the end of its section, or the section at the
    // end of the file.
    void WriteString(const QString& section, const QString& ident, const QString& value);
    void DeleteKey(const QString& section, const QString& ident);
    // Removes the section's header and every line up to the next section.
    void EraseSection(const QString& section);
    // As the classic INI class answers: a section exists when it lists at least one key.
    bool SectionExists(const QString& section) const;
    bool ValueExists(const QString& section, const QString& ident) const;

private:
    struct TRange {
        std::size_t header;  // index of the "[...]" line
        std::size_t end;     // one past the section's last line
    };
    std::optional<TRange> FindSection(const QString& section) const;
    std::optional<std::size_t> FindKey(const TRange& range, const QString& ident) const;

    std::vector<QByteArray> lines_;
    QByteArray bom_;  // a UTF-8 byte order mark the file starts with, kept as it was
    QByteArray eol_ = "\n";
    bool finalEol_ = true;
};

}  // namespace dv
