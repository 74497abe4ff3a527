// Expressions, arguments and calls of the script reader.
#include "framework/dvtools.h"
#include "framework/translate.h"
#include "host/builtins.h"
#include "host/commandpool.h"
#include "host/scriptparser.h"

namespace dv::host {

namespace {

// The host's own procedures, read by the same heading grammar as every command signature.
const TDVSignature& LogSignature()
{
    static const TDVSignature sig = ParseSignature(QStringLiteral("procedure Log(Text : Misc);"));
    return sig;
}

const TDVSignature& CheckSignature()
{
    static const TDVSignature sig = ParseSignature(QStringLiteral("procedure Check(Condition : Boolean; Text : String = \"\");"));
    return sig;
}

}  // namespace

TExprPtr TScriptParser::ParseExpressionText(const QString& text, const TScope* scope)
{
    TScriptParser sub(program_, commands_);
    sub.scanner_.SetScript(text, 0);
    sub.scope_ = scope;
    sub.depth_ = 1;  // an expression text may span lines
    TExprPtr e = sub.ParseExpression();
    if (sub.Peek().type != TTokenType::EndOfText) sub.Fail(sub.Peek(), _("Ende des Ausdrucks erwartet"));
    return e;
}

std::unique_ptr<TVarRef> TScriptParser::ResolveVariable(const TToken& name) const
{
    if (!scope_) return nullptr;
    int slot = scope_->Find(name.text);
    if (slot >= 0) {
        const bool global = scope_ == &program_.globals;
        const TSymbol& symbol = scope_->Symbol(slot);
        return std::make_unique<TVarRef>(name.line, name.column, global, slot, symbol.type, symbol.isVarParam);
    }
    const TScope* globals = scope_->Globals();
    if (globals && (slot = globals->Find(name.text)) >= 0) {
        return std::make_unique<TVarRef>(name.line, name.column, true, slot, globals->Symbol(slot).type);
    }
    return nullptr;
}

// expr -> andexpr { (OR | XOR) andexpr }
TExprPtr TScriptParser::ParseExpression()
{
    TExprPtr first = ParseAnd();
    std::vector<TChainLink> links;
    while (OnSameLine() && (Peek().type == TTokenType::kwOr || Peek().type == TTokenType::kwXor)) {
        const TToken op = Next();
        links.push_back({op.line, op.column, op.type == TTokenType::kwOr ? TOp::Or : TOp::Xor, ParseAnd()});
    }
    return MakeChain(std::move(first), std::move(links));
}

// andexpr -> notexpr { AND notexpr }
TExprPtr TScriptParser::ParseAnd()
{
    TExprPtr first = ParseNot();
    std::vector<TChainLink> links;
    while (OnSameLine() && Peek().type == TTokenType::kwAnd) {
        const TToken op = Next();
        links.push_back({op.line, op.column, TOp::And, ParseNot()});
    }
    return MakeChain(std::move(first), std::move(links));
}

// notexpr -> NOT notexpr | relation. A run of NOTs is read in a loop; two of them still check
// that the operand is a boolean.
TExprPtr TScriptParser::ParseNot()
{
    std::vector<TToken> nots;
    while (Peek().type == TTokenType::kwNot) nots.push_back(Next());
    TExprPtr e = ParseRelation();
    const std::size_t kept = nots.empty() ? 0 : 2 - nots.size() % 2;
    for (std::size_t i = kept; i-- > 0;) e = std::make_unique<TUnary>(nots[i].line, nots[i].column, TOp::Not, std::move(e));
    return e;
}
// relation -> sum [ ('=' | '<>' | '<' | '>' | '<=' | '>=') sum ]
TExprPtr TScriptParser::ParseRelation()
{
    TExprPtr left = ParseSum();
    if (!OnSameLine()) return left;
    TOp op;
    switch (Peek().type) {
    case TTokenType::Equal: op = TOp::Eq; break;
    case TTokenType::NotEqual: op = TOp::Ne; break;
    case TTokenType::Less: op = TOp::Lt; break;
    case TTokenType::Greater: op = TOp::Gt; break;
    case TTokenType::LessEqual: op = TOp::Le; break;
    case TTokenType::GreaterEqual: op = TOp::Ge; break;
    default: return left;
    }
    const TToken t = Next();
    return MakeBinary(t.line, t.column, op, std::move(left), ParseSum());
}

// sum -> term { ('+' | '-') term }
TExprPtr TScriptParser::ParseSum()
{
    TExprPtr first = ParseTerm();
    std::vector<TChainLink> links;
    while (OnSameLine() && (Peek().type == TTokenType::Plus || Peek().type == TTokenType::Minus)) {
        const TToken op = Next();
        links.push_back({op.line, op.column, op.type == TTokenType::Plus ? TOp::Add : TOp::Sub, ParseTerm()});
    }
    return MakeChain(std::move(first), std::move(links));
}

// term -> unary { ('*' | '/' | DIV | MOD) unary }
TExprPtr TScriptParser::ParseTerm()
{
    TExprPtr first = ParseUnary();
    std::vector<TChainLink> links;
    while (OnSameLine()) {
        TOp op;
        switch (Peek().type) {
        case TTokenType::Star: op = TOp::Mul; break;
        case TTokenType::Slash: op = TOp::Div; break;
        case TTokenType::kwDiv: op = TOp::IntDiv; break;
        case TTokenType::kwMod: op = TOp::Mod; break;
        default: return MakeChain(std::move(first), std::move(links));
        }
        const TToken t = Next();
        links.push_back({t.line, t.column, op, ParseUnary()});
    }
    return MakeChain(std::move(first), std::move(links));
}

// unary -> ('-' | '+') unary | primary. A run of signs is read in a loop: an odd number of '-'
// negates once, an even number (two or more) twice, which still checks that the operand is a number.
TExprPtr TScriptParser::ParseUnary()
{
    std::vector<TToken> minus;
    while (Peek().type == TTokenType::Plus || Peek().type == TTokenType::Minus) {
        const TToken sign = Next();
        if (sign.type == TTokenType::Minus) minus.push_back(sign);
    }
    TExprPtr e = ParsePrimary();
    const std::size_t kept = minus.empty() ? 0 : 2 - minus.size() % 2;
    for (std::size_t i = kept; i-- > 0;) {
        const TToken& op = minus[i];
        if (auto* literal = dynamic_cast<TLiteral*>(e.get()); literal && literal->Value().kind == TValueKind::Number) {
            e = std::make_unique<TLiteral>(op.line, op.column, TVal::Number(-literal->Value().number));
        } else {
            e = std::make_unique<TUnary>(op.line, op.column, TOp::Neg, std::move(e));
        }
    }
    return e;
}

// A closing bracket; when missing, the message names the line of the opening one.
void TScriptParser::ExpectClosing(TTokenType type, const TToken& opener)
{
    if (Peek().type == type) {
        Next();
        return;
    }
    Fail(Peek(), Format(_("\"%s\" erwartet (für \"%s\" in Zeile %d)"), {TokenTypeName(type), opener.text, QString::number(opener.line)}));
}

TExprPtr TScriptParser::ParseNumber(const TToken& t) const
{
    if (t.text.startsWith('$')) {
        bool ok = false;
        const qulonglong value = t.text.mid(1).toULongLong(&ok, 16);
        if (!ok) Fail(t, _("Ungültige Zahl"));
        return std::make_unique<TLiteral>(t.line, t.column, TVal::Number(static_cast<long double>(value)));
    }
    try {
        return std::make_unique<TLiteral>(t.line, t.column, TVal::Number(DVStrToFloat(t.text)));
    } catch (const TDVRuntimeException&) {
        Fail(t, _("Ungültige Zahl"));  // out of range, as 1e99999: an error of the text, found before the run
    }
}

// primary -> NUMBER | STRING | TRUE | FALSE | ARRAYTEXT | '[' [expr {',' expr}] ']' | '(' expr ')'
//          | name ['[' expr ']']
TExprPtr TScriptParser::ParsePrimary()
{
    switch (Peek().type) {
    case TTokenType::Number: case TTokenType::String: case TTokenType::kwTrue: case TTokenType::kwFalse:
    case TTokenType::ArrayText: case TTokenType::LBracket: case TTokenType::LParen: case TTokenType::Identifier: break;
    default: Fail(Peek(), _("Ausdruck erwartet"));  // not consumed: it may begin the next statement
    }
    const TToken t = Next();
    switch (t.type) {
    case TTokenType::Number: return ParseNumber(t);
    case TTokenType::String: return std::make_unique<TLiteral>(t.line, t.column, TVal::String(t.text));
    case TTokenType::kwTrue:
    case TTokenType::kwFalse: return std::make_unique<TLiteral>(t.line, t.column, TVal::Boolean(t.type == TTokenType::kwTrue));
    case TTokenType::ArrayText: {
        std::unique_ptr<TArrayValue> parsed = ParseArrayText(t.text);
        if (!parsed) Fail(t, _("Ungültiges Array"));
        std::vector<TExprPtr> elements;
        for (int i = 1; i <= parsed->GetSize(); ++i) {
            elements.push_back(std::make_unique<TLiteral>(t.line, t.column, ElementValue(*parsed, i)));
        }
        return std::make_unique<TArrayLiteral>(t.line, t.column, std::move(elements));
    }
    case TTokenType::LBracket: {
        const TNesting nesting(*this, t);
        ++depth_;
        std::vector<TExprPtr> elements;
        if (Peek().type != TTokenType::RBracket) {
            elements.push_back(ParseExpression());
            while (Accept(TTokenType::Comma)) elements.push_back(ParseExpression());
        }
        --depth_;
        ExpectClosing(TTokenType::RBracket, t);
        return std::make_unique<TArrayLiteral>(t.line, t.column, std::move(elements));
    }
    case TTokenType::LParen: {
        const TNesting nesting(*this, t);
        ++depth_;
        TExprPtr e = ParseExpression();
        --depth_;
        ExpectClosing(TTokenType::RParen, t);
        return e;
    }
    case TTokenType::Identifier: {
        std::unique_ptr<TVarRef> var = ResolveVariable(t);
        if (!var) {
            const TBuiltin* builtin = FindBuiltin(t.text);
            if (program_.procedureIndex.contains(t.text.toLower()) || FindProcedure(t.text) ||
                (builtin && !builtin->IsFunction())) {
                Fail(t, Format(_("Die Prozedur %s liefert keinen Wert"), {t.text}));
            }
            if (builtin) return ParseBuiltinCall(t, *builtin);
            Fail(t, Format(_("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!"), {t.text}));
        }
        if (!OnSameLine() || Peek().type != TTokenType::LBracket) return var;
        const TNesting nesting(*this, Next());
        ++depth_;
        TExprPtr index = ParseExpression();
        --depth_;
        Expect(TTokenType::RBracket);
        return std::make_unique<TIndexExpr>(t.line, t.column, std::move(var), std::move(index));
    }
    default: break;
    }
    Fail(t, _("Ausdruck erwartet"));
}

// builtincall -> name ['(' args ')']
TExprPtr TScriptParser::ParseBuiltinCall(const TToken& name, const TBuiltin& builtin)
{
    std::vector<TRawArg> raw;
    if (OnSameLine() && Peek().type == TTokenType::LParen) raw = ParseArguments();
    std::vector<TBoundArg> bound = BindArguments(builtin.signature, std::move(raw), name, true);
    std::vector<TExprPtr> args;
    for (TBoundArg& arg : bound) args.push_back(std::move(arg.value));
    return std::make_unique<TBuiltinCall>(name.line, name.column, builtin, std::move(args));
}

// args -> '(' [arg {',' arg}] ')';  arg -> [name ':='] [expr]
std::vector<TScriptParser::TRawArg> TScriptParser::ParseArguments()
{
    std::vector<TRawArg> args;
    const TToken open = Expect(TTokenType::LParen);
    const TNesting nesting(*this, open);
    ++depth_;
    if (Peek().type != TTokenType::RParen) {
        do {
            TRawArg arg;
            arg.at = Peek();
            if (Peek().type == TTokenType::Identifier) {
                TToken name = Next();
                if (Accept(TTokenType::Assignment)) {
                    arg.name = name.text;
                    if (Peek().type == TTokenType::Comma || Peek().type == TTokenType::RParen) {
                        args.push_back(std::move(arg));  // a named argument left empty: left out
                        continue;
                    }
                    if (Peek().type == TTokenType::Identifier) {
                        name = Next();
                    } else {
                        arg.value = ParseExpression();
                        args.push_back(std::move(arg));
                        continue;
                    }
                }
                if (Peek().type == TTokenType::Comma || Peek().type == TTokenType::RParen) {
                    arg.plainName = name;
                } else {
                    pending_ = name;
                    arg.value = ParseExpression();
                }
            } else {
                arg.value = ParseExpression();
            }
            args.push_back(std::move(arg));
        } while (Accept(TTokenType::Comma));
    }
    --depth_;
    ExpectClosing(TTokenType::RParen, open);
    return args;
}

std::vector<TBoundArg> TScriptParser::BindArguments(const TDVSignature& sig, std::vector<TRawArg> raw,
                                                    const TToken& call, bool requireAll)
{
    std::vector<TBoundArg> bound(sig.params.size());
    std::size_t position = 0;
    bool named = false;
    for (TRawArg& arg : raw) {
        std::size_t index = position;
        if (!arg.name.isEmpty()) {
            named = true;
            const TDVParamDecl* decl = sig.Find(arg.name);
            if (!decl) Fail(arg.at, Format(_("%s hat keinen Parameter %s"), {sig.name, arg.name}));
            index = static_cast<std::size_t>(decl - sig.params.data());
        } else {
            if (named) Fail(arg.at, _("Ein Argument ohne Namen folgt einem benannten"));
            if (position >= sig.params.size()) Fail(arg.at, Format(_("Zu viele Argumente für %s"), {sig.name}));
            ++position;
        }
        TBoundArg& b = bound[index];
        const TDVParamDecl& decl = sig.params[index];
        if (b.present) Fail(arg.at, Format(_("Der Parameter %s ist mehrfach angegeben"), {decl.name}));
        if (!arg.value && !arg.plainName) continue;  // "Name := ," leaves the parameter out
        b.present = true;
        if (decl.isVar) {
            if (!arg.plainName) Fail(arg.at, Format(_("Für den var-Parameter %s wird eine Variable erwartet"), {decl.name}));
            b.name = arg.plainName->text;
            b.ref = ResolveVariable(*arg.plainName);
            // A library command gets the name and fails when it runs; a script procedure needs
            // the variable now.
            if (!b.ref && requireAll) {
                Fail(*arg.plainName, Format(_("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!"), {b.name}));
            }
        } else if (arg.plainName) {
            b.value = ResolveVariable(*arg.plainName);
            const TBuiltin* builtin = b.value ? nullptr : FindBuiltin(arg.plainName->text);
            if (builtin && builtin->IsFunction()) b.value = ParseBuiltinCall(*arg.plainName, *builtin);  // Random, Pi ...
            if (!b.value) {
                Fail(*arg.plainName, Format(_("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!"), {arg.plainName->text}));
            }
        } else {
            b.value = std::move(arg.value);
        }
    }
    if (requireAll) {
        for (std::size_t i = 0; i < bound.size(); ++i) {
            if (!bound[i].present && !sig.params[i].hasDefault) {
                Fail(call, Format(_("Der Parameter %s fehlt beim Aufruf von %s"), {sig.params[i].name, sig.name}));
            }
        }
    }
    return bound;
}

std::vector<TCommandDefault> TScriptParser::CommandDefaults(const TDVThreadRunEdit& command)
{
    std::vector<TCommandDefault> defaults;
    for (const TDVParamDecl& p : command.Signature().params) {
        TCommandDefault d;
        d.present = p.hasDefault;
        if (p.hasDefault && !p.defaultText.isEmpty()) {
            TExec constants;
            TVal v;
            ParseExpressionText(p.defaultText, nullptr)->Eval(constants, v);
            d.value = ParamValue(std::move(v), p);
        }
        defaults.push_back(std::move(d));
    }
    return defaults;
}

TStmtPtr TScriptParser::MakeCall(const TToken& name, std::vector<TRawArg> raw)
{
    if (TProcedure* proc = program_.procedureIndex.value(name.text.toLower())) {
        auto args = BindArguments(proc->signature, std::move(raw), name, true);
        return std::make_unique<TProcCall>(name.line, *proc, std::move(args));
    }
    if (name.text.compare(QLatin1String("Log"), Qt::CaseInsensitive) == 0) {
        auto args = BindArguments(LogSignature(), std::move(raw), name, true);
        return std::make_unique<TLogCall>(name.line, std::move(args[0].value));
    }
    if (name.text.compare(QLatin1String("Check"), Qt::CaseInsensitive) == 0) {
        auto args = BindArguments(CheckSignature(), std::move(raw), name, true);
        return std::make_unique<TCheckCall>(name.line, std::move(args[0].value), std::move(args[1].value));
    }
    if (TDVThreadRunEdit* command = commands_.ForProcedure(name.text)) {
        auto args = BindArguments(command->Signature(), std::move(raw), name, false);
        program_.calledCommands << command->Signature().name;
        return std::make_unique<TCommandCall>(name.line, *command, std::move(args), CommandDefaults(*command));
    }
    if (FindProcedure(name.text)) Fail(name, Format(_("Der Befehl %s ist in diesem Build nicht verfügbar"), {name.text}));
    if (const TBuiltin* builtin = FindBuiltin(name.text)) {
        if (builtin->IsFunction()) Fail(name, Format(_("Der Wert der Funktion %s wird nicht verwendet"), {name.text}));
        return MakeBuiltinStatement(name.line, *builtin, BindArguments(builtin->signature, std::move(raw), name, true));
    }
    Fail(name, Format(_("Unbekannte Prozedur %s"), {name.text}));
}

}  // namespace dv::host
