#include "host/numericnodes.h"

#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>

namespace dv::host {

namespace {

// How an operand is read. A constant is kept as a double (which it must be exactly): eight bytes load
// faster than ten. A Number variable of its own always holds a number (TVariable's invariant), so
// its value is read without looking at its kind.
struct TConstOperand {
    double value;
    long double Get(TExec&) const { return value; }
};

struct TGlobalOperand {
    int slot;
    long double& Ref(TExec& ex) const { return ex.globals->Slot(slot).value.number; }
    long double Get(TExec& ex) const { return Ref(ex); }
};

struct TLocalOperand {
    int slot;
    long double& Ref(TExec& ex) const { return ex.frame->Slot(slot).value.number; }
    long double Get(TExec& ex) const { return Ref(ex); }
};

struct TNodeOperand {
    TExprPtr node;
    long double Get(TExec& ex) const { return node->Num(ex); }
};

constexpr bool IsComparisonOp(TOp op) { return op >= TOp::Eq && op <= TOp::Ge; }

// Reading a constant or a variable can neither fail nor change anything, so it may come after the
// other operand's evaluation. When the other operand is a node it does: the node's result then
// stays in the FPU's register, instead of the read value being stored to the stack around the call
// and loaded back, and an 80-bit store loaded back at once is slow (it cannot be forwarded).
template <class L, class R>
constexpr bool kRightFirst = std::is_same_v<R, TNodeOperand> && !std::is_same_v<L, TNodeOperand>;

// f(left, right), the operands read in the order kRightFirst picks.
template <class L, class R, class F>
auto Operands(TExec& ex, const L& left, const R& right, F f)
{
    if constexpr (kRightFirst<L, R>) {
        const long double b = right.Get(ex);
        return f(left.Get(ex), b);
    } else {
        const long double a = left.Get(ex);
        return f(a, right.Get(ex));
    }
}

template <TOp Op, class L, class R>
long double Apply(TExec& ex, const L& left, const R& right)
{
    return Operands(ex, left, right, [](long double a, long double b) { return Arithmetic(Op, a, b); });
}

template <TOp Op, class L, class R>
bool Holds(TExec& ex, const L& left, const R& right)
{
    return Operands(ex, left, right, [](long double a, long double b) { return CompareNumbers(Op, a, b); });
}

// `V := V op X` for a Number variable V of its own: one node instead of an assignment and an
// operator node.
template <TOp Op, class Target, class R>
class TNumUpdate final : public TStmt {
public:
    TNumUpdate(int line, Target target, R operand) : TStmt(line), target_(target), operand_(std::move(operand)) {}
    void Exec(TExec& ex) const override
    {
        ex.line = Line();
        const long double b = operand_.Get(ex);
        long double& v = target_.Ref(ex);
        v = Arithmetic(Op, v, b);
    }

private:
    Target target_;
    R operand_;
};

// An operator node that can become the update statement of its left operand.
class IUpdateSource {
public:
    virtual ~IUpdateSource() = default;
    // The statement `V := V op right` when the left operand is the variable (global, slot), taking
    // this node's right operand; else nullptr.
    virtual TStmtPtr TakeUpdate(int line, bool global, int slot) = 0;
};

template <TOp Op, class L, class R>
class TArithmetic final : public TExpr, public IUpdateSource {
public:
    TArithmetic(int line, int column, L left, R right)
        : TExpr(line, column), left_(std::move(left)), right_(std::move(right)) {}
    long double Num(TExec& ex) const override { return Apply<Op>(ex, left_, right_); }
    TStmtPtr TakeUpdate(int line, bool global, int slot) override
    {
        constexpr bool globalLeft = std::is_same_v<L, TGlobalOperand>;
        if constexpr (globalLeft || std::is_same_v<L, TLocalOperand>) {
            if (global == globalLeft && slot == left_.slot) {
                return std::make_unique<TNumUpdate<Op, L, R>>(line, left_, std::move(right_));
            }
        }
        return nullptr;
    }
    void Eval(TExec& ex, TVal& out) const override
    {
        const long double x = Num(ex);
        out.kind = TValueKind::Number;
        out.number = x;
    }
    TValueKind StaticKind() const override { return TValueKind::Number; }

private:
    L left_;
    R right_;
};

template <TOp Op, class L, class R>
class TComparison final : public TExpr {
public:
    TComparison(int line, int column, L left, R right)
        : TExpr(line, column), left_(std::move(left)), right_(std::move(right)) {}
    bool Bool(TExec& ex) const override { return Holds<Op>(ex, left_, right_); }
    void Eval(TExec& ex, TVal& out) const override { out = TVal::Boolean(Bool(ex)); }
    TValueKind StaticKind() const override { return TValueKind::Boolean; }

private:
    L left_;
    R right_;
};

template <TOp Op, class L, class R>
TExprPtr Build(int line, int column, L left, R right)
{
    if constexpr (IsComparisonOp(Op)) {
        return std::make_unique<TComparison<Op, L, R>>(line, column, std::move(left), std::move(right));
    } else {
        return std::make_unique<TArithmetic<Op, L, R>>(line, column, std::move(left), std::move(right));
    }
}

std::optional<long double> ConstantOf(const TExpr& e)
{
    const auto* literal = dynamic_cast<const TLiteral*>(&e);
    if (!literal || literal->Value().kind != TValueKind::Number) return std::nullopt;
    return literal->Value().number;
}

// The constant as a double, when it is one exactly.
std::optional<double> DoubleConstantOf(const TExpr& e)
{
    const std::optional<long double> c = ConstantOf(e);
    // Beyond the double range the conversion itself would be undefined.
    if (!c || !(std::fabs(*c) <= std::numeric_limits<double>::max())) return std::nullopt;
    if (static_cast<long double>(static_cast<double>(*c)) != *c) return std::nullopt;
    return static_cast<double>(*c);
}

const TVarRef* PlainNumberVariable(const TExpr& e)
{
    const auto* var = dynamic_cast<const TVarRef*>(&e);
    return var && var->PlainNumber() ? var : nullptr;
}

// Calls `make` with the operand form of `e`.
template <class Make>
TExprPtr WithOperand(TExprPtr e, Make make)
{
    if (const std::optional<double> c = DoubleConstantOf(*e)) return make(TConstOperand{*c});
    if (const TVarRef* var = PlainNumberVariable(*e)) {
        if (var->Global()) return make(TGlobalOperand{var->SlotIndex()});
        return make(TLocalOperand{var->SlotIndex()});
    }
    return make(TNodeOperand{std::move(e)});
}

template <TOp Op>
TExprPtr Specialised(int line, int column, TExprPtr left, TExprPtr right)
{
    return WithOperand(std::move(left), [&](auto l) {
        return WithOperand(std::move(right), [&](auto r) { return Build<Op>(line, column, std::move(l), std::move(r)); });
    });
}

template <class Target>
class TNumAssign final : public TStmt {
public:
    TNumAssign(int line, Target target, TExprPtr value) : TStmt(line), target_(target), value_(std::move(value)) {}
    void Exec(TExec& ex) const override
    {
        ex.line = Line();
        const long double x = value_->Num(ex);
        target_.Ref(ex) = x;
    }

private:
    Target target_;
    TExprPtr value_;
};

}  // namespace

TNumberSource::TNumberSource(const TExpr& e) : node_(&e)
{
    if (const std::optional<long double> c = ConstantOf(e)) {
        kind_ = TKind::Constant;
        constant_ = *c;
    } else if (const TVarRef* var = PlainNumberVariable(e)) {
        kind_ = var->Global() ? TKind::Global : TKind::Local;
        slot_ = var->SlotIndex();
    }
}

TExprPtr MakeNumBinary(int line, int column, TOp op, TExprPtr left, TExprPtr right)
{
    switch (op) {
    case TOp::Add: return Specialised<TOp::Add>(line, column, std::move(left), std::move(right));
    case TOp::Sub: return Specialised<TOp::Sub>(line, column, std::move(left), std::move(right));
    case TOp::Mul: return Specialised<TOp::Mul>(line, column, std::move(left), std::move(right));
    case TOp::Div: return Specialised<TOp::Div>(line, column, std::move(left), std::move(right));
    case TOp::Eq: return Specialised<TOp::Eq>(line, column, std::move(left), std::move(right));
    case TOp::Ne: return Specialised<TOp::Ne>(line, column, std::move(left), std::move(right));
    case TOp::Lt: return Specialised<TOp::Lt>(line, column, std::move(left), std::move(right));
    case TOp::Gt: return Specialised<TOp::Gt>(line, column, std::move(left), std::move(right));
    case TOp::Le: return Specialised<TOp::Le>(line, column, std::move(left), std::move(right));
    case TOp::Ge: return Specialised<TOp::Ge>(line, column, std::move(left), std::move(right));
    default: break;  // div and mod, seldom in a hot loop
    }
    return std::make_unique<TNumBinary>(line, column, op, std::move(left), std::move(right));
}

TStmtPtr MakeNumAssign(int line, std::unique_ptr<TVarRef> target, TExprPtr value)
{
    if (auto* source = dynamic_cast<IUpdateSource*>(value.get())) {
        if (TStmtPtr update = source->TakeUpdate(line, target->Global(), target->SlotIndex())) return update;
    }
    const int slot = target->SlotIndex();
    if (target->Global()) return std::make_unique<TNumAssign<TGlobalOperand>>(line, TGlobalOperand{slot}, std::move(value));
    return std::make_unique<TNumAssign<TLocalOperand>>(line, TLocalOperand{slot}, std::move(value));
}

}  // namespace dv::host
