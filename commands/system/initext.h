#pragma once
// An INI file held as its lines, so that a change touches only the line it concerns: comments,
// blank lines, lines of other forms, the file's line endings and its encoding stay as they were.
// Sections and keys match without regard to case and to blanks around them, as on Windows; the
// first section and the first key of a name count.
#include "framework/typeconversion.h"

#include <QByteArray>
#include <QString>

#include <optional>
#include <vector>

namespace dv {

// A file is written back in the encoding it was found in.
using TIniEncoding = TTextEncoding;

class TIniText {
public:
    explicit TIniText(const QByteArray& content = {});
    // The lines in the file's own encoding.
    QByteArray Content() const;
    TIniEncoding Encoding() const { return encoding_; }
    // Whether the file's encoding can hold the text (Windows-1252 lacks most characters).
    bool CanHold(const QString& text) const;
    // Whether the file's bytes are text of its encoding: a UTF-8 mark before invalid bytes or a
    // UTF-16 file of odd length reads with replacement characters, which a write would store.
    bool Intact() const { return intact_; }
    // Whether written, the file's Content() now, reads back in the file's encoding. A Windows-1252
    // file is told by bytes that are no UTF-8: once a change removes the last of them, its other
    // characters would read as UTF-8 ("Ã" and a no-break space as "à").
    bool ReadsBackAlike(const QByteArray& written) const;

    // The value of a key: blanks around it removed and one pair of enclosing quotes taken off.
    std::optional<QString> ReadString(const QString& section, const QString& ident) const;
    // Replaces the key's value, or adds the key at the end of its section, or the section at the
    // end of the file. Names are written without the blanks around them.
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

    std::vector<QString> lines_;
    TIniEncoding encoding_ = TIniEncoding::Utf8;
    QString eol_ = QStringLiteral("\n");
    bool finalEol_ = true;
    bool intact_ = true;
};

}  // namespace dv
