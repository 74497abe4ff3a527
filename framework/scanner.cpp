#include "framework/scanner.h"

#include "framework/translate.h"

#include <array>
#include <utility>

namespace dv {

namespace {

struct Keyword {
    const char* text;
    TTokenType type;
};

constexpr std::array<Keyword, 25> kKeywords{{
    {"procedure", TTokenType::kwProcedure}, {"var", TTokenType::kwVar},     {"end", TTokenType::kwEnd},
    {"while", TTokenType::kwWhile},         {"do", TTokenType::kwDo},       {"repeat", TTokenType::kwRepeat},
    {"until", TTokenType::kwUntil},         {"for", TTokenType::kwFor},     {"to", TTokenType::kwTo},
    {"downto", TTokenType::kwDownto},       {"if", TTokenType::kwIf},       {"then", TTokenType::kwThen},
    {"else", TTokenType::kwElse},           {"case", TTokenType::kwCase},   {"of", TTokenType::kwOf},
    {"select", TTokenType::kwSelect},       {"and", TTokenType::kwAnd},     {"or", TTokenType::kwOr},
    {"xor", TTokenType::kwXor},             {"not", TTokenType::kwNot},     {"div", TTokenType::kwDiv},
    {"mod", TTokenType::kwMod},             {"true", TTokenType::kwTrue},   {"false", TTokenType::kwFalse},
    {"array", TTokenType::kwArray},
}};

struct Symbol {
    const char* text;
    TTokenType type;
};

// Longest first, so ":=" wins over ":".
constexpr std::array<Symbol, 19> kSymbols{{
    {":=", TTokenType::Assignment}, {"<>", TTokenType::NotEqual}, {"<=", TTokenType::LessEqual},
    {">=", TTokenType::GreaterEqual}, {":", TTokenType::Colon},   {";", TTokenType::Semicolon},
    {",", TTokenType::Comma},       {".", TTokenType::Dot},       {"(", TTokenType::LParen},
    {")", TTokenType::RParen},      {"[", TTokenType::LBracket},  {"]", TTokenType::RBracket},
    {"+", TTokenType::Plus},        {"-", TTokenType::Minus},     {"*", TTokenType::Star},
    {"/", TTokenType::Slash},       {"=", TTokenType::Equal},     {"<", TTokenType::Less},
    {">", TTokenType::Greater},
}};

bool IsIdentStart(QChar c) { return c.isLetter() || c == '_'; }
// Numbers are written in ASCII digits only: QChar::isDigit also takes full-width and
// Arabic-Indic digits, which no number conversion reads.
bool IsDigit(QChar c) { return c >= '0' && c <= '9'; }
bool IsIdentPart(QChar c) { return c.isLetterOrNumber() || c == '_'; }

}  // namespace

QString TokenTypeName(TTokenType type)
{
    for (const Keyword& k : kKeywords) {
        if (k.type == type) return QString::fromLatin1(k.text);
    }
    for (const Symbol& s : kSymbols) {
        if (s.type == type) return QString::fromLatin1(s.text);
    }
    switch (type) {
    case TTokenType::Identifier: return QStringLiteral("Bezeichner");
    case TTokenType::Number: return QStringLiteral("Zahl");
    case TTokenType::String: return QStringLiteral("Zeichenkette");
    case TTokenType::ArrayText: return QStringLiteral("Array");
    case TTokenType::EndOfText: return QStringLiteral("Textende");
    default: return {};
    }
}

TScanner::TScanner(const QString& script, bool dropMarkers) : dropMarkers_(dropMarkers) { SetScript(script, 0); }

void TScanner::SetScript(const QString& text, int start)
{
    text_ = text;
    pos_ = 0;
    line_ = 1;
    column_ = 1;
    atLineStart_ = true;
    lookahead_.reset();
    last_ = TToken();
    while (pos_ < start && pos_ < text_.size()) Advance();
}

QChar TScanner::Peek(int ahead) const
{
    const int at = pos_ + ahead;
    return at < text_.size() ? text_[at] : QChar();
}

void TScanner::Advance()
{
    if (text_[pos_] == '\n') {
        ++line_;
        column_ = 1;
        atLineStart_ = true;
    } else {
        ++column_;
    }
    ++pos_;
}

void TScanner::SkipMarker()
{
    int n = 0;
    while (IsDigit(Peek(n))) ++n;
    if (n > 0 && Peek(n) == ':' && Peek(n + 1) != '=') {
        for (int i = 0; i <= n; ++i) Advance();
    }
}

void TScanner::SkipBlanksAndComments()
{
    for (;;) {
        if (atLineStart_) {
            while (pos_ < text_.size() && (Peek() == ' ' || Peek() == '\t')) Advance();
            atLineStart_ = false;
            if (dropMarkers_) SkipMarker();
        }
        if (pos_ >= text_.size()) return;
        const QChar c = Peek();
        if (c.isSpace()) {
            Advance();
        } else if (c == '/' && Peek(1) == '/') {
            while (pos_ < text_.size() && Peek() != '\n') Advance();
        } else if (c == '(' && Peek(1) == '*') {
            const int line = line_, column = column_;
            Advance();
            Advance();
            while (pos_ < text_.size() && !(Peek() == '*' && Peek(1) == ')')) Advance();
            if (pos_ >= text_.size()) throw TDVSyntaxError(_("Kommentar \"(*\" wird nicht geschlossen"), line, column);
            Advance();
            Advance();
        } else {
            return;
        }
    }
}

TToken TScanner::Make(TTokenType type, int startOffset, int line, int column) const
{
    TToken t;
    t.type = type;
    t.offset = startOffset;
    t.length = pos_ - startOffset;
    t.text = text_.mid(startOffset, t.length);
    t.line = line;
    t.column = column;
    return t;
}

TToken TScanner::Scan()
{
    SkipBlanksAndComments();
    const int start = pos_, line = line_, column = column_;
    if (pos_ >= text_.size()) return Make(TTokenType::EndOfText, start, line, column);
    const QChar c = Peek();

    if (IsIdentStart(c)) {
        while (pos_ < text_.size() && IsIdentPart(Peek())) Advance();
        TToken t = Make(TTokenType::Identifier, start, line, column);
        const QString lower = t.text.toLower();
        for (const Keyword& k : kKeywords) {
            if (lower == QLatin1String(k.text)) t.type = k.type;
        }
        return t;
    }
    if (IsDigit(c) || (c == '$' && QString("0123456789abcdefABCDEF").contains(Peek(1)))) {
        if (c == '$') {
            Advance();
            while (pos_ < text_.size() && QString("0123456789abcdefABCDEF").contains(Peek())) Advance();
            return Make(TTokenType::Number, start, line, column);
        }
        while (IsDigit(Peek())) Advance();
        if (Peek() == '.' && IsDigit(Peek(1))) {
            Advance();
            while (IsDigit(Peek())) Advance();
        }
        if ((Peek() == 'e' || Peek() == 'E') &&
            (IsDigit(Peek(1)) || ((Peek(1) == '-' || Peek(1) == '+') && IsDigit(Peek(2))))) {
            Advance();
            Advance();
            while (IsDigit(Peek())) Advance();
        }
        return Make(TTokenType::Number, start, line, column);
    }
    if (c == '"') {
        QString value;
        Advance();
        for (;;) {
            if (pos_ >= text_.size() || Peek() == '\n') {
                throw TDVSyntaxError(_("Zeichenkette wird nicht geschlossen"), line, column);
            }
            if (Peek() == '"') {
                if (Peek(1) != '"') break;
                Advance();
            }
            value += Peek();
            Advance();
        }
        Advance();
        TToken t = Make(TTokenType::String, start, line, column);
        t.text = value;
        return t;
    }
    if (c == '{') {
        while (Peek() == '{') {
            while (pos_ < text_.size() && Peek() != '}' && Peek() != '\n') Advance();
            if (Peek() != '}') throw TDVSyntaxError(_("\"}\" erwartet"), line_, column_);
            Advance();
        }
        return Make(TTokenType::ArrayText, start, line, column);
    }
    for (const Symbol& s : kSymbols) {
        const QLatin1String sym(s.text);
        if (text_.mid(pos_, sym.size()) == sym) {
            for (qsizetype i = 0; i < sym.size(); ++i) Advance();
            return Make(s.type, start, line, column);
        }
    }
    Advance();
    throw TDVSyntaxError(Format(_("Unerwartetes Zeichen '%s'"), {QString(c)}), line, column);
}

TToken TScanner::GetNextToken()
{
    if (lookahead_) {
        last_ = std::move(*lookahead_);
        lookahead_.reset();
    } else {
        last_ = Scan();
    }
    return last_;
}

const TToken& TScanner::LookAhead()
{
    if (!lookahead_) lookahead_ = Scan();
    return *lookahead_;
}

TToken TScanner::Require(TTokenType type)
{
    TToken t = GetNextToken();
    if (t.type != type) {
        const QString near = t.type == TTokenType::EndOfText ? TokenTypeName(t.type) : t.text;
        throw TDVSyntaxError(Format(_("\"%s\" erwartet bei '%s'"), {TokenTypeName(type), near}), t.line, t.column);
    }
    return t;
}

bool TScanner::HasMoreTokens() { return LookAhead().type != TTokenType::EndOfText; }

}  // namespace dv
