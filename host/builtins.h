#pragma once
// The host's own functions and procedures beside Log and Check: numbers, texts and arrays, time.
// A script's procedures, Log/Check and the library's commands are looked up before them, so a name
// that one of those already uses keeps its meaning.
#include "framework/signature.h"
#include "host/statements.h"

#include <array>

namespace dv::host {

// The most parameters a built-in has.
inline constexpr std::size_t kMaxBuiltinParams = 3;
// The evaluated arguments, converted to the parameters' types; a left-out one has the kind Misc.
using TBuiltinArgs = std::array<TVal, kMaxBuiltinParams>;

struct TBuiltin {
    TDVSignature signature;
    // The result's kind; Misc for a procedure, which gives no value.
    TValueKind result = TValueKind::Misc;
    TVal (*run)(TExec& ex, const TBuiltinArgs& args) = nullptr;
    bool IsFunction() const { return result != TValueKind::Misc; }
};

// The built-in of that name (any case), or nullptr.
const TBuiltin* FindBuiltin(const QString& name);
// One line per built-in, Log and Check included: "Name\tfunction Name(...) : Type;".
QString BuiltinListing();

// A call of a built-in function inside an expression.
class TBuiltinCall final : public TExpr {
public:
    TBuiltinCall(int line, int column, const TBuiltin& builtin, std::vector<TExprPtr> args)
        : TExpr(line, column), builtin_(builtin), args_(std::move(args)) {}
    void Eval(TExec& ex, TVal& out) const override;
    TValueKind StaticKind() const override { return builtin_.result; }

private:
    const TBuiltin& builtin_;
    std::vector<TExprPtr> args_;  // per parameter; nullptr when left out
};

// Sleep(Milliseconds): waits on the run's stop event, so a stop ends it at once.
class TSleepCall final : public TStmt {
public:
    TSleepCall(int line, TExprPtr milliseconds) : TStmt(line), milliseconds_(std::move(milliseconds)) {}
    void Exec(TExec& ex) const override;

private:
    TExprPtr milliseconds_;
};

// SetLength(var A; N): cuts the array variable to N elements or fills it up with default elements.
class TSetLengthCall final : public TStmt {
public:
    TSetLengthCall(int line, std::unique_ptr<TVarRef> array, TExprPtr length)
        : TStmt(line), array_(std::move(array)), length_(std::move(length)) {}
    void Exec(TExec& ex) const override;

private:
    std::unique_ptr<TVarRef> array_;
    TExprPtr length_;
};

// The statement for a call of the built-in procedure `builtin` with its bound arguments.
TStmtPtr MakeBuiltinStatement(int line, const TBuiltin& builtin, std::vector<TBoundArg> args);

}  // namespace dv::host
