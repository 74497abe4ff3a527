#pragma once
// Reads a script into a TProgram: declarations, statements, blocks, procedures and calls. Names are
// resolved to slots and calls bound to their signatures here, so errors of either kind are found
// before anything runs. Each error is recorded with its line and column; the reader then goes on
// at the next line so that one mistake gives one message.
#include "framework/scanner.h"
#include "host/commandcall.h"
#include "host/program.h"

#include <optional>

namespace dv::host {

class TCommandPool;
struct TBuiltin;

class TScriptParser {
public:
    // The deepest nesting of brackets and blocks a script may use.
    static constexpr int kMaxNesting = 200;

    TScriptParser(TProgram& program, TCommandPool& commands);

    // Parses a whole script; program.errors holds what was wrong.
    void ParseProgram(const QString& text);
    // Parses a text that must be one expression. scope: the names it may use (the program's
    // globals, a procedure's scope), or nullptr for constants only. Raises TDVSyntaxError.
    TExprPtr ParseExpressionText(const QString& text, const TScope* scope);
    // The line of the token read last: where a failure that is no syntax error happened.
    int Line() const { return last_.line; }

private:
    struct TRawArg {
        QString name;         // named argument: the parameter's name; empty for a positional one
        TToken at;            // where the argument starts
        TExprPtr value;       // nullptr for a plain name or a left-out named argument
        std::optional<TToken> plainName;  // the argument is a bare name (may be undeclared)
    };

    // One more level of brackets or blocks for as long as it lives; past kMaxNesting levels a syntax
    // error, before the reader's (or later the run's) recursion could overflow the stack.
    class TNesting {
    public:
        TNesting(TScriptParser& parser, const TToken& at);
        ~TNesting() { --parser_.nesting_; }
        TNesting(const TNesting&) = delete;
        TNesting& operator=(const TNesting&) = delete;

    private:
        TScriptParser& parser_;
    };

    // Tokens, with one pushed-back identifier as a second look-ahead.
    const TToken& Peek();
    TToken Next();
    TToken Expect(TTokenType type);
    bool Accept(TTokenType type);
    [[noreturn]] void Fail(const TToken& at, const QString& message) const;
    bool OnSameLine();
    void EndStatement();
    bool HasPeeked() const;
    void Report(const TDVSyntaxError& e);
    int ResumeLine(const TDVSyntaxError& e);
    void SkipRestOfLine(int line);

    // Statements (scriptparser.cpp).
    void CollectProcedureHeadings(const QString& text);
    void ParseBlock(TBlock& block);
    void ExpectBlockEnd(TTokenType kind, const TToken& opener);
    TStmtPtr ParseStatement();
    TStmtPtr ParseVarDecl();
    void ParseProcedure();
    TStmtPtr ParseIf();
    TStmtPtr ParseFor();
    TStmtPtr ParseWhile();
    TStmtPtr ParseRepeat();
    TStmtPtr ParseCase();
    TStmtPtr ParseNameStatement();
    template <class Header>
    bool ParseHeader(Header header);

    // Expressions and calls (exprparser.cpp).
    TExprPtr ParseExpression();
    TExprPtr ParseAnd();
    TExprPtr ParseNot();
    TExprPtr ParseRelation();
    TExprPtr ParseSum();
    TExprPtr ParseTerm();
    TExprPtr ParseUnary();
    TExprPtr ParsePrimary();
    TExprPtr ParseNumber(const TToken& t) const;
    void ExpectClosing(TTokenType type, const TToken& opener);
    std::unique_ptr<TVarRef> ResolveVariable(const TToken& name) const;
    std::vector<TRawArg> ParseArguments();
    std::vector<TBoundArg> BindArguments(const TDVSignature& sig, std::vector<TRawArg> raw, const TToken& call,
                                         bool requireAll);
    TStmtPtr MakeCall(const TToken& name, std::vector<TRawArg> raw);
    TExprPtr ParseBuiltinCall(const TToken& name, const TBuiltin& builtin);
    std::vector<TCommandDefault> CommandDefaults(const TDVThreadRunEdit& command);

    TProgram& program_;
    TCommandPool& commands_;
    TScanner scanner_;
    std::optional<TToken> pending_;
    TToken last_;
    const TScope* scope_ = nullptr;  // the names in reach; nullptr: none (constants)
    TProcedure* procedure_ = nullptr;  // the procedure being read, nullptr at the top level
    int depth_ = 0;  // open brackets: line ends inside them do not end a statement
    int blockDepth_ = 0;
    int nesting_ = 0;  // open brackets and blocks, see TNesting
    bool endOfTextReported_ = false;
};

}  // namespace dv::host
