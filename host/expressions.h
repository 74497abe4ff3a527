#pragma once
// Expression nodes: literals, variables, array literals and element access, operators.
#include "host/ast.h"

namespace dv::host {

class TLiteral final : public TExpr {
public:
    TLiteral(int line, int column, TVal value) : TExpr(line, column), value_(std::move(value)) {}
    void Eval(TExec& ex, TVal& out) const override;
    long double Num(TExec& ex) const override;
    TValueKind StaticKind() const override { return value_.kind; }
    const TVal& Value() const { return value_; }

private:
    TVal value_;
};

// A variable: a slot of the program's frame or of the running procedure's frame.
class TVarRef final : public TExpr {
public:
    TVarRef(int line, int column, bool global, int slot, TDVType type, bool varParam = false)
        : TExpr(line, column), global_(global), varParam_(varParam), slot_(slot), type_(type) {}
    TVariable& Var(const TExec& ex) const { return (global_ ? ex.globals : ex.frame)->Slot(slot_); }
    void Eval(TExec& ex, TVal& out) const override { out = Var(ex).value; }
    long double Num(TExec& ex) const override;
    TValueKind StaticKind() const override { return type_.kind == TValueKind::Misc ? TValueKind::Misc : type_.kind; }
    const TDVType& Type() const { return type_; }
    bool Global() const { return global_; }
    int SlotIndex() const { return slot_; }
    // The slot holds the frame's own variable of the declared type. A var parameter's slot holds
    // the caller's variable, whose type may differ.
    bool OwnSlot() const { return !varParam_; }
    // A Number variable of its own: its value is read and written as a plain number.
    bool PlainNumber() const { return OwnSlot() && type_.kind == TValueKind::Number; }

private:
    bool global_;
    bool varParam_;
    int slot_;
    TDVType type_;
};

class TArrayLiteral final : public TExpr {
public:
    TArrayLiteral(int line, int column, std::vector<TExprPtr> elements)
        : TExpr(line, column), elements_(std::move(elements)) {}
    void Eval(TExec& ex, TVal& out) const override;
    TValueKind StaticKind() const override { return TValueKind::Array; }
    std::vector<TExprPtr>& Elements() { return elements_; }

private:
    std::vector<TExprPtr> elements_;
};

// A[i]: element i (1-based) of an array variable.
class TIndexExpr final : public TExpr {
public:
    TIndexExpr(int line, int column, std::unique_ptr<TVarRef> array, TExprPtr index)
        : TExpr(line, column), array_(std::move(array)), index_(std::move(index)) {}
    void Eval(TExec& ex, TVal& out) const override;
    long double Num(TExec& ex) const override;
    TValueKind StaticKind() const override;

private:
    std::unique_ptr<TVarRef> array_;
    TExprPtr index_;
};

enum class TOp { Add, Sub, Mul, Div, IntDiv, Mod, Eq, Ne, Lt, Gt, Le, Ge, And, Or, Xor, Neg, Not };

// a = b, a < b ...: numbers by value, strings by characters, booleans False < True, arrays only
// for (in)equality; a number text compares with a number by value. Raises on other pairs.
bool CompareValues(TOp op, const TVal& a, const TVal& b);
// The array index of a number: it must be a whole number.
int ArrayIndex(long double x);
// Raises the runtime error for a text that would grow past the run's limit.
void CheckStringLength(const TExec& ex, qsizetype length);
// The quotient and remainder operators, which check for a zero divisor.
long double Division(TOp op, long double a, long double b);
inline long double Arithmetic(TOp op, long double a, long double b)
{
    switch (op) {
    case TOp::Add: return a + b;
    case TOp::Sub: return a - b;
    case TOp::Mul: return a * b;
    default: return Division(op, a, b);
    }
}

// Whether a comparison operator holds for an order (negative: below, 0: equal, positive: above).
inline bool CompareOrder(TOp op, int order)
{
    switch (op) {
    case TOp::Eq: return order == 0;
    case TOp::Ne: return order != 0;
    case TOp::Lt: return order < 0;
    case TOp::Gt: return order > 0;
    case TOp::Le: return order <= 0;
    case TOp::Ge: return order >= 0;
    default: break;
    }
    return false;
}

// a op b for two numbers and a comparison operator. A NaN is neither below nor above anything, so it
// compares as equal.
inline bool CompareNumbers(TOp op, long double a, long double b) { return CompareOrder(op, a < b ? -1 : (a > b ? 1 : 0)); }

class TUnary final : public TExpr {
public:
    TUnary(int line, int column, TOp op, TExprPtr operand)
        : TExpr(line, column), op_(op), operand_(std::move(operand)) {}
    void Eval(TExec& ex, TVal& out) const override;
    long double Num(TExec& ex) const override;
    bool Bool(TExec& ex) const override;
    TValueKind StaticKind() const override { return op_ == TOp::Neg ? TValueKind::Number : TValueKind::Boolean; }

private:
    TOp op_;
    TExprPtr operand_;
};

// Any binary operator on values whose kinds are known only at run time.
class TBinary final : public TExpr {
public:
    TBinary(int line, int column, TOp op, TExprPtr left, TExprPtr right)
        : TExpr(line, column), op_(op), left_(std::move(left)), right_(std::move(right)) {}
    void Eval(TExec& ex, TVal& out) const override;
    bool Bool(TExec& ex) const override;
    TValueKind StaticKind() const override;

private:
    TOp op_;
    TExprPtr left_;
    TExprPtr right_;
};

// Arithmetic and comparison of two operands known to be numbers: no value objects on the way.
class TNumBinary final : public TExpr {
public:
    TNumBinary(int line, int column, TOp op, TExprPtr left, TExprPtr right)
        : TExpr(line, column), op_(op), left_(std::move(left)), right_(std::move(right)) {}
    void Eval(TExec& ex, TVal& out) const override;
    long double Num(TExec& ex) const override;
    bool Bool(TExec& ex) const override;
    TValueKind StaticKind() const override;

private:
    TOp op_;
    TExprPtr left_;
    TExprPtr right_;
};

// The node for a binary operator: a specialised numeric one when both operands are numbers.
TExprPtr MakeBinary(int line, int column, TOp op, TExprPtr left, TExprPtr right);

// One operator and its right operand in a run of operators of the same precedence.
struct TChainLink {
    int line;
    int column;
    TOp op;
    TExprPtr operand;
};

// A long run of operators of one precedence (a + b - c + ...), evaluated left to right in a loop
// rather than by one nested node (and one stack frame) per operator.
class TChain final : public TExpr {
public:
    TChain(TExprPtr first, std::vector<TChainLink> links);
    void Eval(TExec& ex, TVal& out) const override;
    long double Num(TExec& ex) const override;
    bool Bool(TExec& ex) const override;
    TValueKind StaticKind() const override { return kind_; }

private:
    TExprPtr first_;
    std::vector<TChainLink> links_;
    TValueKind kind_;
    bool logic_;    // and / or / xor: booleans that may stop early
    bool numeric_;  // arithmetic on operands known to be numbers
};

// The node for first op1 x1 op2 x2 ...: nested binary nodes for a short run, a TChain for a long one.
TExprPtr MakeChain(TExprPtr first, std::vector<TChainLink> links);

}  // namespace dv::host
