#pragma once
// Colours a script as the interpreter reads it: each line goes through the language's own
// tokenizer, so keywords, strings and numbers are exactly what the parser will see. Library
// procedures (the catalogue) and the built-ins Log and Check stand out as calls.
#include <QSet>
#include <QSyntaxHighlighter>
#include <QTextCharFormat>

namespace dv::workbench {

enum class TTokenStyle { Keyword, Command, String, Number, Comment };

class TScriptHighlighter final : public QSyntaxHighlighter {
public:
    explicit TScriptHighlighter(QTextDocument* document);
    static QTextCharFormat Format(TTokenStyle style);

protected:
    void highlightBlock(const QString& text) override;

private:
    // Colours the tokens of text from start on; returns false when a (* comment stays open.
    bool HighlightTokens(const QString& text, int start);
    QSet<QString> commands_;  // lower case
};

}  // namespace dv::workbench
