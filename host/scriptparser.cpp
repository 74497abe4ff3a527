#include "host/scriptparser.h"

#include "framework/translate.h"
#include "host/commandpool.h"

namespace dv::host {

namespace {
constexpr std::size_t kMaxErrors = 25;
struct TTooManyErrors {};

QString NearText(const TToken& t)
{
    return t.type == TTokenType::EndOfText ? TokenTypeName(t.type) : t.text;
}

bool EndsBlock(TTokenType t)
{
    return t == TTokenType::EndOfText || t == TTokenType::kwEnd || t == TTokenType::kwElse ||
           t == TTokenType::kwUntil || t == TTokenType::kwSelect;
}
}  // namespace

TScriptParser::TScriptParser(TProgram& program, TCommandPool& commands)
    : program_(program), commands_(commands), scope_(&program.globals)
{
}

TScriptParser::TNesting::TNesting(TScriptParser& parser, const TToken& at) : parser_(parser)
{
    if (parser_.nesting_ >= kMaxNesting) parser_.Fail(at, _("zu tief verschachtelt"));
    ++parser_.nesting_;
}

const TToken& TScriptParser::Peek() { return pending_ ? *pending_ : scanner_.LookAhead(); }

TToken TScriptParser::Next()
{
    if (pending_) {
        last_ = std::move(*pending_);
        pending_.reset();
    } else {
        last_ = scanner_.GetNextToken();
    }
    return last_;
}

TToken TScriptParser::Expect(TTokenType type)
{
    if (Peek().type != type) Fail(Peek(), Format(_("\"%s\" erwartet"), {TokenTypeName(type)}));
    return Next();
}

bool TScriptParser::Accept(TTokenType type)
{
    if (Peek().type != type) return false;
    Next();
    return true;
}

void TScriptParser::Fail(const TToken& at, const QString& message) const
{
    throw TDVSyntaxError(message + QStringLiteral(" bei '") + NearText(at) + '\'', at.line, at.column);
}

bool TScriptParser::OnSameLine() { return depth_ > 0 || Peek().line == last_.line; }

// A statement ends at ';', at the end of its line, or before a keyword that closes its block.
void TScriptParser::EndStatement()
{
    const TToken& t = Peek();
    if (t.type == TTokenType::Semicolon) {
        Next();
        return;
    }
    if (t.line > last_.line || EndsBlock(t.type)) return;
    Fail(t, _("Ende der Anweisung erwartet"));
}

// Whether the next token is already read; looking further would scan on from inside error
// recovery, where a malformed token would raise again and its error would be lost.
bool TScriptParser::HasPeeked() const { return pending_ || scanner_.HasLookAhead(); }

void TScriptParser::Report(const TDVSyntaxError& e)
{
    const bool atEnd = HasPeeked() && e.Line() >= Peek().line && Peek().type == TTokenType::EndOfText;
    if (atEnd && endOfTextReported_) return;
    endOfTextReported_ = endOfTextReported_ || atEnd;
    program_.errors.push_back({e.Line(), e.Column(), e.Message()});
    if (program_.errors.size() >= kMaxErrors) throw TTooManyErrors{};
}

// The line after which reading goes on: the error's, unless the error is the first token of a
// new line that a statement ran into (then that line is the next statement).
int TScriptParser::ResumeLine(const TDVSyntaxError& e)
{
    if (!HasPeeked()) return e.Line();  // the scanner's own error: its token is gone
    const TToken& t = Peek();
    if (t.line == e.Line() && t.column == e.Column() && t.line > last_.line) return last_.line;
    return e.Line();
}

void TScriptParser::SkipRestOfLine(int line)
{
    pending_.reset();
    for (;;) {
        try {
            const TToken& t = scanner_.LookAhead();
            if (t.type == TTokenType::EndOfText || t.line > line) return;
            last_ = scanner_.GetNextToken();
        } catch (const TDVSyntaxError& e) {
            // The scanner has moved past the malformed token; one on a later line is an error of
            // its own, and its line is skipped as well.
            if (e.Line() > line) {
                Report(e);
                line = e.Line();
            }
        }
    }
}

// Procedures may be called above their definition: their headings are read first.
void TScriptParser::CollectProcedureHeadings(const QString& text)
{
    TScanner scan(text);
    TTokenType previous = TTokenType::EndOfText;
    try {
        for (TToken t = scan.GetNextToken(); t.type != TTokenType::EndOfText; t = scan.GetNextToken()) {
            if (t.type == TTokenType::kwProcedure && previous != TTokenType::kwEnd) {
                TScanner heading(QString(), true);
                heading.SetScript(text, t.offset);
                try {
                    TDVSignature sig = ParseProcedureHeading(heading);
                    const QString key = sig.name.toLower();
                    if (!program_.procedureIndex.contains(key)) {
                        program_.procedures.emplace_back(&program_.globals);
                        program_.procedures.back().signature = std::move(sig);
                        program_.procedureIndex.insert(key, &program_.procedures.back());
                    }
                } catch (const TDVSyntaxError&) {
                    // Reported where the main reading meets it.
                }
            }
            previous = t.type;
        }
    } catch (const TDVSyntaxError&) {
        // The main reading reports malformed tokens.
    }
}

void TScriptParser::ParseProgram(const QString& text)
{
    CollectProcedureHeadings(text);
    scanner_.SetScript(text, 0);
    try {
        for (;;) {
            ParseBlock(program_.main);
            const TToken t = Peek();
            if (t.type == TTokenType::EndOfText) break;
            Report(TDVSyntaxError(Format(_("Unerwartetes \"%s\" bei '%s'"), {TokenTypeName(t.type), t.text}), t.line, t.column));
            Next();
            SkipRestOfLine(t.line);
        }
    } catch (const TTooManyErrors&) {
    }
}

// block -> { statement }, up to END, ELSE, UNTIL, SELECT or the end of the text
void TScriptParser::ParseBlock(TBlock& block)
{
    const TNesting nesting(*this, last_);
    ++blockDepth_;
    for (;;) {
        int line = last_.line;
        try {
            const TToken& t = Peek();
            if (EndsBlock(t.type)) break;
            line = t.line;
            if (TStmtPtr s = ParseStatement()) block.statements.push_back(std::move(s));
        } catch (const TDVSyntaxError& e) {
            Report(e);
            depth_ = 0;
            pending_.reset();
            SkipRestOfLine(std::max(line, ResumeLine(e)));
        }
    }
    --blockDepth_;
}

// END kind, naming the line of the opening keyword when it is missing
void TScriptParser::ExpectBlockEnd(TTokenType kind, const TToken& opener)
{
    const QString expected = QStringLiteral("end ") + TokenTypeName(kind);
    const QString message = Format(_("\"%s\" erwartet (für \"%s\" in Zeile %d)"),
                                   {expected, TokenTypeName(opener.type), QString::number(opener.line)});
    if (Peek().type != TTokenType::kwEnd) Fail(Peek(), message);
    const TToken end = Next();
    if (Peek().type != kind) {
        TToken both = Peek();
        both.text = end.text + ' ' + both.text;
        both.line = end.line;
        both.column = end.column;
        Fail(both, message);
    }
    Next();
    EndStatement();
}

// statement -> vardecl | procdecl | ifstat | forstat | whilestat | repeatstat | casestat
//            | assignment | call | ';'
TStmtPtr TScriptParser::ParseStatement()
{
    switch (Peek().type) {
    case TTokenType::kwVar: return ParseVarDecl();
    case TTokenType::kwProcedure: ParseProcedure(); return nullptr;
    case TTokenType::kwIf: return ParseIf();
    case TTokenType::kwFor: return ParseFor();
    case TTokenType::kwWhile: return ParseWhile();
    case TTokenType::kwRepeat: return ParseRepeat();
    case TTokenType::kwCase: return ParseCase();
    case TTokenType::Identifier: return ParseNameStatement();
    case TTokenType::Semicolon: Next(); return nullptr;
    default: break;
    }
    Fail(Peek(), _("Anweisung erwartet"));
}

// vardecl -> VAR name {',' name} ':' type ['=' expr]
TStmtPtr TScriptParser::ParseVarDecl()
{
    const TToken var = Next();
    std::vector<TToken> names{Expect(TTokenType::Identifier)};
    while (Accept(TTokenType::Comma)) names.push_back(Expect(TTokenType::Identifier));
    Expect(TTokenType::Colon);
    const TDVType type = ParseTypeName(scanner_);
    last_ = scanner_.LastToken();
    TExprPtr init;
    if (Accept(TTokenType::Equal)) init = ParseExpression();
    EndStatement();
    auto* scope = const_cast<TScope*>(scope_);
    std::vector<int> slotIndices;
    for (const TToken& n : names) {
        const int slot = scope->Declare({n.text, type});
        if (slot < 0) Fail(n, Format(_("Der Bezeichner \"%s\" ist bereits deklariert"), {n.text}));
        slotIndices.push_back(slot);
    }
    return std::make_unique<TDeclare>(var.line, procedure_ == nullptr, std::move(slotIndices), std::move(init));
}

// procdecl -> heading block END PROCEDURE, at the top level only
void TScriptParser::ParseProcedure()
{
    const TToken opener = Peek();
    if (procedure_ || blockDepth_ > 1) Fail(opener, _("Prozeduren dürfen nur auf oberster Ebene definiert werden"));
    TDVSignature sig = ParseProcedureHeading(scanner_);
    last_ = scanner_.LastToken();
    TProcedure* proc = program_.procedureIndex.value(sig.name.toLower());
    if (!proc || proc->defined) {
        SkipRestOfLine(last_.line);
        Fail(opener, Format(_("Die Prozedur %s ist bereits definiert"), {sig.name}));
    }
    proc->signature = sig;
    proc->defined = true;
    proc->line = opener.line;
    for (const TDVParamDecl& p : sig.params) {
        if (proc->scope.Declare({p.name, p.type, p.isVar}) < 0) {
            Fail(opener, Format(_("Der Parameter %s ist doppelt"), {p.name}));
        }
        TExprPtr def;
        if (p.hasDefault && !p.defaultText.isEmpty()) {
            try {
                def = ParseExpressionText(p.defaultText, nullptr);
            } catch (const TDVSyntaxError& e) {
                Fail(opener, Format(_("Ungültiger Vorgabewert für %s: %s"), {p.name, e.Message()}));
            }
        } else if (p.hasDefault) {
            def = std::make_unique<TLiteral>(opener.line, opener.column, TVariable(p.name, p.type).value);
        }
        proc->defaults.push_back(std::move(def));
    }
    EndStatement();
    const TScope* outer = scope_;
    scope_ = &proc->scope;
    procedure_ = proc;
    ParseBlock(proc->body);
    scope_ = outer;
    procedure_ = nullptr;
    ExpectBlockEnd(TTokenType::kwProcedure, opener);
}

// Reads a block statement's head; when it is malformed the error is reported and the block is
// still read, so that its END does not count as a stray one.
template <class Header>
bool TScriptParser::ParseHeader(Header header)
{
    const int line = Peek().line;
    try {
        header();
        Accept(TTokenType::Semicolon);  // the block's first statement may follow on the same line
        return true;
    } catch (const TDVSyntaxError& e) {
        Report(e);
        depth_ = 0;
        pending_.reset();
        SkipRestOfLine(std::max(line, ResumeLine(e)));
        return false;
    }
}

// ifstat -> IF expr THEN block [ELSE block] END IF
TStmtPtr TScriptParser::ParseIf()
{
    const TToken opener = Next();
    TExprPtr condition;
    const bool ok = ParseHeader([&] {
        condition = ParseExpression();
        Expect(TTokenType::kwThen);
    });
    TBlock thenBlock, elseBlock;
    ParseBlock(thenBlock);
    if (Accept(TTokenType::kwElse)) {
        if (Peek().line == last_.line && Peek().type == TTokenType::Semicolon) Next();
        ParseBlock(elseBlock);
    }
    ExpectBlockEnd(TTokenType::kwIf, opener);
    if (!ok) return nullptr;
    return std::make_unique<TIf>(opener.line, std::move(condition), std::move(thenBlock), std::move(elseBlock));
}

// forstat -> FOR name ':=' expr (TO | DOWNTO) expr DO block END FOR
TStmtPtr TScriptParser::ParseFor()
{
    const TToken opener = Next();
    std::unique_ptr<TVarRef> var;
    TExprPtr from, to;
    bool down = false;
    const bool ok = ParseHeader([&] {
        const TToken name = Expect(TTokenType::Identifier);
        var = ResolveVariable(name);
        if (!var) Fail(name, Format(_("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!"), {name.text}));
        const TValueKind kind = var->Type().kind;
        if (kind != TValueKind::Number && kind != TValueKind::Misc) {
            Fail(name, Format(_("Die Zählvariable %s muss vom Typ Number sein"), {name.text}));
        }
        Expect(TTokenType::Assignment);
        from = ParseExpression();
        down = Peek().type == TTokenType::kwDownto;
        if (!down) Expect(TTokenType::kwTo);
        else Next();
        to = ParseExpression();
        Expect(TTokenType::kwDo);
    });
    TBlock body;
    ParseBlock(body);
    ExpectBlockEnd(TTokenType::kwFor, opener);
    if (!ok) return nullptr;
    return std::make_unique<TFor>(opener.line, std::move(var), std::move(from), std::move(to), down, std::move(body));
}

// whilestat -> WHILE expr DO block END WHILE
TStmtPtr TScriptParser::ParseWhile()
{
    const TToken opener = Next();
    TExprPtr condition;
    const bool ok = ParseHeader([&] {
        condition = ParseExpression();
        Expect(TTokenType::kwDo);
    });
    TBlock body;
    ParseBlock(body);
    ExpectBlockEnd(TTokenType::kwWhile, opener);
    if (!ok) return nullptr;
    return std::make_unique<TWhile>(opener.line, std::move(condition), std::move(body));
}

// repeatstat -> REPEAT block UNTIL expr
TStmtPtr TScriptParser::ParseRepeat()
{
    const TToken opener = Next();
    EndStatement();
    TBlock body;
    ParseBlock(body);
    if (Peek().type != TTokenType::kwUntil) {
        Fail(Peek(), Format(_("\"until\" erwartet (für \"repeat\" in Zeile %d)"), {QString::number(opener.line)}));
    }
    const TToken until = Next();
    TExprPtr condition = ParseExpression();
    EndStatement();
    return std::make_unique<TRepeat>(opener.line, until.line, std::move(body), std::move(condition));
}

// casestat -> CASE expr OF { SELECT expr {',' expr} ':' block | ELSE block } END CASE
TStmtPtr TScriptParser::ParseCase()
{
    const TToken opener = Next();
    TExprPtr selector;
    const bool ok = ParseHeader([&] {
        selector = ParseExpression();
        Expect(TTokenType::kwOf);
    });
    std::vector<TCaseBranch> branches;
    for (;;) {
        const TToken t = Peek();
        if (t.type == TTokenType::kwEnd || t.type == TTokenType::EndOfText) break;
        TCaseBranch branch;
        branch.line = t.line;
        if (Accept(TTokenType::kwElse)) {
            Accept(TTokenType::Colon);
        } else if (Accept(TTokenType::kwSelect)) {
            branch.values.push_back(ParseExpression());
            while (Accept(TTokenType::Comma)) branch.values.push_back(ParseExpression());
            Expect(TTokenType::Colon);
        } else {
            Fail(t, _("\"select\" erwartet"));
        }
        ParseBlock(branch.body);
        branches.push_back(std::move(branch));
    }
    ExpectBlockEnd(TTokenType::kwCase, opener);
    if (!ok) return nullptr;
    return std::make_unique<TCase>(opener.line, std::move(selector), std::move(branches));
}

// assignment -> name ['[' expr ']'] ':=' expr;  call -> name ['(' [args] ')']
TStmtPtr TScriptParser::ParseNameStatement()
{
    const TToken name = Next();
    const TTokenType next = Peek().line == name.line ? Peek().type : TTokenType::Semicolon;
    if (next == TTokenType::Assignment || next == TTokenType::LBracket) {
        std::unique_ptr<TVarRef> target = ResolveVariable(name);
        if (!target) Fail(name, Format(_("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!"), {name.text}));
        TExprPtr index;
        if (Accept(TTokenType::LBracket)) {
            ++depth_;
            index = ParseExpression();
            --depth_;
            Expect(TTokenType::RBracket);
        }
        Expect(TTokenType::Assignment);
        TExprPtr value = ParseExpression();
        EndStatement();
        if (index) return std::make_unique<TIndexAssign>(name.line, std::move(target), std::move(index), std::move(value));
        return MakeAssign(name.line, std::move(target), std::move(value));
    }
    if (ResolveVariable(name)) Fail(Peek(), Format(_("\":=\" erwartet nach der Variablen %s"), {name.text}));
    std::vector<TRawArg> args;
    if (next == TTokenType::LParen) args = ParseArguments();
    EndStatement();
    return MakeCall(name, std::move(args));
}

}  // namespace dv::host
