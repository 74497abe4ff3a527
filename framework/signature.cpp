#include "framework/signature.h"

#include "framework/translate.h"

namespace dv {

const TDVParamDecl* TDVSignature::Find(const QString& paramName) const
{
    for (const TDVParamDecl& p : params) {
        if (p.name.compare(paramName, Qt::CaseInsensitive) == 0) return &p;
    }
    return nullptr;
}

QStringList TDVSignature::ParamNames() const
{
    QStringList names;
    for (const TDVParamDecl& p : params) names << p.name;
    return names;
}

namespace {

TValueKind KindOfName(const TToken& t)
{
    const QString n = t.text.toLower();
    if (n == "number") return TValueKind::Number;
    if (n == "string") return TValueKind::String;
    if (n == "boolean") return TValueKind::Boolean;
    if (n == "misc") return TValueKind::Misc;
    throw TDVSyntaxError(Format(_("Unbekannter Typ '%s'"), {t.text}), t.line, t.column);
}

// default -> any tokens up to ';' or ')' outside brackets; the source text between them.
QString ReadDefault(TScanner& scanner)
{
    int depth = 0;
    int from = -1, to = -1;
    for (;;) {
        const TToken& t = scanner.LookAhead();
        if (t.type == TTokenType::EndOfText) break;
        if (depth == 0 && (t.type == TTokenType::Semicolon || t.type == TTokenType::RParen)) break;
        if (t.type == TTokenType::LParen || t.type == TTokenType::LBracket) ++depth;
        if (t.type == TTokenType::RParen || t.type == TTokenType::RBracket) --depth;
        if (from < 0) from = t.offset;
        to = t.offset + t.length;
        scanner.GetNextToken();
    }
    return from < 0 ? QString() : scanner.Script().mid(from, to - from).trimmed();
}

}  // namespace

TDVType ParseTypeName(TScanner& scanner, QString* typeText)
{
    const TToken first = scanner.GetNextToken();
    if (first.type == TTokenType::kwArray) {
        scanner.Require(TTokenType::kwOf);
        const TToken element = scanner.Require(TTokenType::Identifier);
        if (typeText) *typeText = first.text + " of " + element.text;
        return {TValueKind::Array, KindOfName(element)};
    }
    if (first.type != TTokenType::Identifier) {
        throw TDVSyntaxError(Format(_("Typ erwartet bei '%s'"), {first.text}), first.line, first.column);
    }
    if (typeText) *typeText = first.text;
    return {KindOfName(first), TValueKind::Misc};
}

TDVSignature ParseProcedureHeading(TScanner& scanner)
{
    TDVSignature sig;
    scanner.Require(TTokenType::kwProcedure);
    sig.name = scanner.Require(TTokenType::Identifier).text;
    if (scanner.LookAhead().type == TTokenType::LParen) {
        scanner.GetNextToken();
        // param -> [VAR] name {',' name} ':' type ['=' default]
        while (scanner.LookAhead().type != TTokenType::RParen) {
            TDVParamDecl decl;
            if (scanner.LookAhead().type == TTokenType::kwVar) {
                scanner.GetNextToken();
                decl.isVar = true;
            }
            QStringList names{scanner.Require(TTokenType::Identifier).text};
            while (scanner.LookAhead().type == TTokenType::Comma) {
                scanner.GetNextToken();
                names << scanner.Require(TTokenType::Identifier).text;
            }
            scanner.Require(TTokenType::Colon);
            decl.type = ParseTypeName(scanner, &decl.typeText);
            if (scanner.LookAhead().type == TTokenType::Equal) {
                scanner.GetNextToken();
                decl.hasDefault = true;
                decl.defaultText = ReadDefault(scanner);
            }
            for (const QString& n : names) {
                decl.name = n;
                sig.params.push_back(decl);
            }
            if (scanner.LookAhead().type == TTokenType::Semicolon) {
                scanner.GetNextToken();
            } else if (scanner.LookAhead().type != TTokenType::RParen) {
                const TToken& t = scanner.LookAhead();
                throw TDVSyntaxError(Format(_("\";\" oder \")\" erwartet bei '%s'"), {t.text}), t.line, t.column);
            }
        }
        scanner.Require(TTokenType::RParen);
    }
    if (scanner.LookAhead().type == TTokenType::Semicolon) scanner.GetNextToken();
    return sig;
}

TDVSignature ParseSignature(const QString& literal)
{
    TScanner scanner(literal, false);
    return ParseProcedureHeading(scanner);
}

}  // namespace dv
