#pragma once
// The script language's tokenizer, shared by the interpreter and the editor commands that re-read
// script fragments token by token.
#include "framework/exceptions.h"

#include <QString>

#include <optional>
#include <vector>

namespace dv {

enum class TTokenType {
    EndOfText,
    Identifier,
    Number,     // 3, -1.5 is Minus + Number, 1e-5, $FF
    String,     // "text" with "" for one quote; text() holds the unquoted characters
    ArrayText,  // the printed array form {72}{65}{76}, taken as one token
    Assignment, // :=
    Colon, Semicolon, Comma, Dot,
    LParen, RParen, LBracket, RBracket,
    Plus, Minus, Star, Slash,
    Equal, NotEqual, Less, Greater, LessEqual, GreaterEqual,
    // keywords
    kwProcedure, kwVar, kwEnd, kwWhile, kwDo, kwRepeat, kwUntil, kwFor, kwTo, kwDownto,
    kwIf, kwThen, kwElse, kwCase, kwOf, kwSelect, kwAnd, kwOr, kwXor, kwNot, kwDiv, kwMod,
    kwTrue, kwFalse, kwArray,
};

struct TToken {
    TTokenType type = TTokenType::EndOfText;
    QString text;  // as written (strings: unquoted)
    int line = 1;  // 1-based
    int column = 1;
    int offset = 0;  // index of the first character in the script text
    int length = 0;
};

// A syntax error of a script text: position and the token it was found near.
class TDVSyntaxError : public TDravikException {
public:
    TDVSyntaxError(const QString& message, int line, int column)
        : TDravikException(message, 0), line_(line), column_(column) {}
    int Line() const { return line_; }
    int Column() const { return column_; }

private:
    int line_;
    int column_;
};

// The keyword a token type stands for ("while"), empty for other tokens; used in messages.
QString TokenTypeName(TTokenType type);

class TScanner {
public:
    // dropMarkers: a line that begins with an editor marker (digits and ":", as "93:") is read
    // without it.
    explicit TScanner(const QString& script = QString(), bool dropMarkers = true);

    // Starts reading text at character index start.
    void SetScript(const QString& text, int start = 0);
    TToken GetNextToken();
    const TToken& LookAhead();
    // Consumes the next token; raises TDVSyntaxError when it is not of that type.
    TToken Require(TTokenType type);
    bool HasMoreTokens();
    // Whether LookAhead has read the next token already (so that it cannot raise).
    bool HasLookAhead() const { return lookahead_.has_value(); }
    const QString& Script() const { return text_; }
    // The token GetNextToken or Require gave last (EndOfText before the first); a reader that
    // ends statements at line ends compares its line with the next token's.
    const TToken& LastToken() const { return last_; }

private:
    TToken Scan();
    void SkipBlanksAndComments();
    void SkipMarker();
    QChar Peek(int ahead = 0) const;
    void Advance();
    TToken Make(TTokenType type, int startOffset, int line, int column) const;

    QString text_;
    bool dropMarkers_;
    int pos_ = 0;
    int line_ = 1;
    int column_ = 1;
    bool atLineStart_ = true;
    std::optional<TToken> lookahead_;
    TToken last_;
};

}  // namespace dv
