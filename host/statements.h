#pragma once
// Statement nodes: declarations, assignments, the blocks, calls of script procedures, Log and Check.
#include "framework/signature.h"
#include "host/expressions.h"
#include "host/numericnodes.h"

#include <optional>

namespace dv::host {

class TDeclare final : public TStmt {
public:
    TDeclare(int line, bool global, std::vector<int> slotIndices, TExprPtr init)
        : TStmt(line), global_(global), slots_(std::move(slotIndices)), init_(std::move(init)) {}
    void Exec(TExec& ex) const override;

private:
    bool global_;
    std::vector<int> slots_;
    TExprPtr init_;  // nullptr: the type's default
};

class TAssign final : public TStmt {
public:
    TAssign(int line, std::unique_ptr<TVarRef> target, TExprPtr value);
    void Exec(TExec& ex) const override;

private:
    std::unique_ptr<TVarRef> target_;
    TExprPtr value_;
    const QString* text_ = nullptr;  // a string literal into a String variable of its own: its text
};

// The statement `target := value`: a plain number store when both are numbers.
TStmtPtr MakeAssign(int line, std::unique_ptr<TVarRef> target, TExprPtr value);

class TIndexAssign final : public TStmt {
public:
    TIndexAssign(int line, std::unique_ptr<TVarRef> target, TExprPtr index, TExprPtr value)
        : TStmt(line), target_(std::move(target)), index_(std::move(index)), value_(std::move(value)) {}
    void Exec(TExec& ex) const override;

private:
    std::unique_ptr<TVarRef> target_;
    TExprPtr index_;
    TExprPtr value_;
};

class TIf final : public TStmt {
public:
    TIf(int line, TExprPtr condition, TBlock thenBlock, TBlock elseBlock)
        : TStmt(line), condition_(std::move(condition)), then_(std::move(thenBlock)), else_(std::move(elseBlock)) {}
    void Exec(TExec& ex) const override;

private:
    TExprPtr condition_;
    TBlock then_;
    TBlock else_;
};

// for V := A to B do ... end for; A and B are evaluated once, V runs through A, A+1 .. B
// (downto: A, A-1 .. B).
class TFor final : public TStmt {
public:
    TFor(int line, std::unique_ptr<TVarRef> var, TExprPtr from, TExprPtr to, bool down, TBlock body)
        : TStmt(line), var_(std::move(var)), from_(std::move(from)), to_(std::move(to)), down_(down), body_(std::move(body)) {}
    void Exec(TExec& ex) const override;

private:
    std::unique_ptr<TVarRef> var_;
    TExprPtr from_;
    TExprPtr to_;
    bool down_;
    TBlock body_;
};

class TWhile final : public TStmt {
public:
    TWhile(int line, TExprPtr condition, TBlock body)
        : TStmt(line), condition_(std::move(condition)), body_(std::move(body)) {}
    void Exec(TExec& ex) const override;

private:
    TExprPtr condition_;
    TBlock body_;
};

class TRepeat final : public TStmt {
public:
    TRepeat(int line, int untilLine, TBlock body, TExprPtr condition)
        : TStmt(line), untilLine_(untilLine), body_(std::move(body)), condition_(std::move(condition)) {}
    void Exec(TExec& ex) const override;

private:
    int untilLine_;
    TBlock body_;
    TExprPtr condition_;
};

struct TCaseBranch {
    int line = 0;
    std::vector<TExprPtr> values;  // empty: the else branch
    TBlock body;
};

// case S of / select V: ... / else ... / end case: the first branch with a value equal to S runs.
class TCase final : public TStmt {
public:
    TCase(int line, TExprPtr selector, std::vector<TCaseBranch> branches)
        : TStmt(line), selector_(std::move(selector)), branches_(std::move(branches)) {}
    void Exec(TExec& ex) const override;

private:
    TExprPtr selector_;
    std::vector<TCaseBranch> branches_;
};

// A script's own procedure: parameters are the first slots of its scope.
struct TProcedure {
    explicit TProcedure(const TScope* globals) : scope(globals) {}
    TDVSignature signature;
    TScope scope;
    std::vector<TExprPtr> defaults;  // per parameter; nullptr when it has none
    TBlock body;
    int line = 0;
    bool defined = false;

    // A frame for one more call; frames are made by the first call that needs them (one per level
    // of recursion) and serve every later call, so that a call allocates nothing.
    TFrame& AcquireFrame() const
    {
        if (framesInUse_ == frames_.size()) frames_.push_back(std::make_unique<TFrame>(scope));
        return *frames_[framesInUse_++];
    }
    void ReleaseFrame() const noexcept { frames_[--framesInUse_]->Release(); }

private:
    mutable std::vector<std::unique_ptr<TFrame>> frames_;
    mutable std::size_t framesInUse_ = 0;
};

// One argument of a call, bound to its parameter.
struct TBoundArg {
    TExprPtr value;                // an input argument; nullptr when left out
    std::unique_ptr<TVarRef> ref;  // a var argument naming a declared variable
    QString name;                  // a var argument as written (also when undeclared)
    bool present = false;
};

class TProcCall final : public TStmt {
public:
    TProcCall(int line, const TProcedure& procedure, std::vector<TBoundArg> args)
        : TStmt(line), procedure_(procedure), args_(std::move(args)) {}
    void Exec(TExec& ex) const override;

private:
    // How an argument reaches its parameter.
    enum class TPass : unsigned char {
        Bind,     // a var argument: the slot names the caller's variable
        Number,   // a number into a Number parameter: stored as it is
        Value,    // any other value, converted to the parameter's type
        Default,  // left out, and no default expression: the type's default
    };
    struct TPlan {
        TPass pass;
        const TExpr* source;  // the argument or the parameter's default; nullptr for Bind and Default
        std::optional<TNumberSource> number;  // for Number
    };
    // Made at the first call: a procedure called above its definition has no defaults yet when
    // the call is read.
    void Plan() const;

    const TProcedure& procedure_;
    std::vector<TBoundArg> args_;
    mutable std::vector<TPlan> plan_;
    mutable bool planned_ = false;
};

// Log(Text : Misc) and Check(Condition : Boolean; Text : String = "").
class TLogCall final : public TStmt {
public:
    TLogCall(int line, TExprPtr text) : TStmt(line), text_(std::move(text)) {}
    void Exec(TExec& ex) const override;

private:
    TExprPtr text_;
};

class TCheckCall final : public TStmt {
public:
    TCheckCall(int line, TExprPtr condition, TExprPtr text)
        : TStmt(line), condition_(std::move(condition)), text_(std::move(text)) {}
    void Exec(TExec& ex) const override;

private:
    TExprPtr condition_;
    TExprPtr text_;
};

// Raises the runtime error for an array that would grow past the run's limit.
void CheckArrayLength(const TExec& ex, const QString& name, long double length);
// Fills an array variable's array up to `length` elements with default elements, looking at the stop
// request while it grows; raises past the run's limit before anything is allocated.
void GrowArray(const TExec& ex, const QString& name, TArrayValue& array, long double length);
// Before element `index` of an array variable is written: raises past the run's limit before
// anything is allocated, and fills the gap up to it, looking at the stop request while it grows.
void MakeRoomFor(const TExec& ex, const QString& name, TArrayValue& array, long double index);

// Raises the script error for a name that no declaration introduced.
[[noreturn]] void Undeclared(const QString& name);

}  // namespace dv::host
