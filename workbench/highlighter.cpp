#include "workbench/highlighter.h"

#include "framework/catalogue.h"
#include "framework/scanner.h"

namespace dv::workbench {

namespace {

enum TBlockState { kPlain = 0, kInComment = 1 };

bool IsKeyword(TTokenType type) { return type >= TTokenType::kwProcedure; }

}  // namespace

TScriptHighlighter::TScriptHighlighter(QTextDocument* document) : QSyntaxHighlighter(document)
{
    for (const TCatalogueRow& row : Catalogue()) {
        if (*row.signature) commands_.insert(QString::fromLatin1(row.procedure).toLower());
    }
    commands_.insert(QStringLiteral("log"));
    commands_.insert(QStringLiteral("check"));
}

QTextCharFormat TScriptHighlighter::Format(TTokenStyle style)
{
    QTextCharFormat f;
    switch (style) {
    case TTokenStyle::Keyword: f.setForeground(QColor(0x00, 0x00, 0xa0)); f.setFontWeight(QFont::Bold); break;
    case TTokenStyle::Command: f.setForeground(QColor(0x80, 0x00, 0x80)); break;
    case TTokenStyle::String: f.setForeground(QColor(0xa0, 0x30, 0x00)); break;
    case TTokenStyle::Number: f.setForeground(QColor(0x00, 0x70, 0x70)); break;
    case TTokenStyle::Comment: f.setForeground(QColor(0x70, 0x70, 0x70)); f.setFontItalic(true); break;
    }
    return f;
}

void TScriptHighlighter::highlightBlock(const QString& text)
{
    int start = 0;
    if (previousBlockState() == kInComment) {
        const qsizetype close = text.indexOf(QLatin1String("*)"));
        if (close < 0) {
            setFormat(0, static_cast<int>(text.size()), Format(TTokenStyle::Comment));
            setCurrentBlockState(kInComment);
            return;
        }
        start = static_cast<int>(close) + 2;
        setFormat(0, start, Format(TTokenStyle::Comment));
    }
    setCurrentBlockState(HighlightTokens(text, start) ? kPlain : kInComment);
}

bool TScriptHighlighter::HighlightTokens(const QString& text, int start)
{
    // What the tokenizer skips between tokens is blanks and comments; blanks show no colour.
    setFormat(start, static_cast<int>(text.size()) - start, Format(TTokenStyle::Comment));
    TScanner scanner(text);
    scanner.SetScript(text, start);
    try {
        for (TToken t = scanner.GetNextToken(); t.type != TTokenType::EndOfText; t = scanner.GetNextToken()) {
            QTextCharFormat f;
            if (IsKeyword(t.type)) f = Format(TTokenStyle::Keyword);
            else if (t.type == TTokenType::String || t.type == TTokenType::ArrayText) f = Format(TTokenStyle::String);
            else if (t.type == TTokenType::Number) f = Format(TTokenStyle::Number);
            else if (t.type == TTokenType::Identifier && commands_.contains(t.text.toLower())) f = Format(TTokenStyle::Command);
            setFormat(t.offset, t.length, f);
        }
    } catch (const TDVSyntaxError& e) {
        // An unclosed (* runs on into the next lines; any other error the checker reports.
        return !e.Message().contains(QLatin1String("(*"));
    }
    return true;
}

}  // namespace dv::workbench
