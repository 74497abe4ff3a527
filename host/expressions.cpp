#include "host/expressions.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/translate.h"

#include <cmath>

namespace dv::host {

void TExec::CheckStop() const
{
    if (runControl && runControl->StopRequested()) throw TRunStopped{};
    if (stopChecksLeft == 0) throw TRunStopped{};
    if (stopChecksLeft > 0) --stopChecksLeft;
}

long double TExpr::Num(TExec& ex) const
{
    TVal v;
    Eval(ex, v);
    return RequireNumber(v);
}

bool TExpr::Bool(TExec& ex) const
{
    TVal v;
    Eval(ex, v);
    return RequireBoolean(v);
}

void TLiteral::Eval(TExec&, TVal& out) const { out = value_; }

long double TLiteral::Num(TExec&) const { return RequireNumber(value_); }

long double TVarRef::Num(TExec& ex) const { return RequireNumber(Var(ex).value); }

void TArrayLiteral::Eval(TExec& ex, TVal& out) const
{
    auto array = std::make_shared<TArrayValue>();
    TVal element;
    for (const TExprPtr& e : elements_) {
        e->Eval(ex, element);
        array->Append(ToValue(element));
    }
    out = TVal::Array(std::move(array));
}

int ArrayIndex(long double x)
{
    if (x != std::floor(x) || std::fabs(x) > 2.0e9L) {
        throw TDVRuntimeException(Format(_("Arrayindex %s ist keine ganze Zahl"), {DVFloatToStr(x)}));
    }
    return static_cast<int>(x);
}

void TIndexExpr::Eval(TExec& ex, TVal& out) const
{
    const int index = ArrayIndex(index_->Num(ex));
    const TVariable& var = array_->Var(ex);
    if (var.value.kind != TValueKind::Array) {
        throw TDVRuntimeException(Format(_("Die Variable \"%s\" ist kein Array."), {var.GetName()}));
    }
    out = FromValue(var.value.array->GetVal(index));
}

TValueKind TIndexExpr::StaticKind() const
{
    const TDVType& t = array_->Type();
    return t.kind == TValueKind::Array ? t.elementKind : TValueKind::Misc;
}

long double Division(TOp op, long double a, long double b)
{
    if (b == 0) throw TDVRuntimeException(_("Division durch Null"));
    if (op == TOp::Div) return a / b;
    if (op == TOp::IntDiv) return std::trunc(a / b);
    return std::fmod(a, b);
}

namespace {

bool Compare(TOp op, int order)
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

int NumberOrder(long double a, long double b) { return a < b ? -1 : (a > b ? 1 : 0); }

[[noreturn]] void Incompatible(const TVal& a, const TVal& b)
{
    throw TDVRuntimeException(Format(_("Typen unverträglich: %s und %s"), {KindName(a.kind), KindName(b.kind)}));
}

bool IsComparison(TOp op) { return op >= TOp::Eq && op <= TOp::Ge; }

}  // namespace

bool CompareValues(TOp op, const TVal& a, const TVal& b)
{
    using K = TValueKind;
    if (a.kind == K::Number && b.kind == K::Number) return Compare(op, NumberOrder(a.number, b.number));
    if (a.kind == K::String && b.kind == K::String) return Compare(op, QString::compare(a.text, b.text));
    if (a.kind == K::Boolean && b.kind == K::Boolean) return Compare(op, int(a.boolean) - int(b.boolean));
    if (a.kind == K::Array && b.kind == K::Array && (op == TOp::Eq || op == TOp::Ne)) {
        return Compare(op, a.array->AsText() == b.array->AsText() ? 0 : 1);
    }
    // A number text (as commands write into Misc variables) compares with a number by value.
    if (a.kind == K::Number && b.kind == K::String) return Compare(op, NumberOrder(a.number, DVStrToFloat(b.text)));
    if (a.kind == K::String && b.kind == K::Number) return Compare(op, NumberOrder(DVStrToFloat(a.text), b.number));
    Incompatible(a, b);
}

void TUnary::Eval(TExec& ex, TVal& out) const
{
    if (op_ == TOp::Neg) {
        out = TVal::Number(Num(ex));
    } else {
        out = TVal::Boolean(Bool(ex));
    }
}

long double TUnary::Num(TExec& ex) const
{
    if (op_ != TOp::Neg) return TExpr::Num(ex);
    return -operand_->Num(ex);
}

bool TUnary::Bool(TExec& ex) const
{
    if (op_ != TOp::Not) return TExpr::Bool(ex);
    return !operand_->Bool(ex);
}

void TBinary::Eval(TExec& ex, TVal& out) const
{
    using K = TValueKind;
    if (op_ == TOp::And || op_ == TOp::Or || op_ == TOp::Xor || IsComparison(op_)) {
        out = TVal::Boolean(Bool(ex));
        return;
    }
    TVal a, b;
    left_->Eval(ex, a);
    right_->Eval(ex, b);
    if (a.kind == K::Number && b.kind == K::Number) {
        out = TVal::Number(Arithmetic(op_, a.number, b.number));
        return;
    }
    const bool scalars = a.kind != K::Array && b.kind != K::Array;
    if (op_ == TOp::Add && scalars && (a.kind == K::String || b.kind == K::String)) {
        out = TVal::String(ValText(a) + ValText(b));
        return;
    }
    Incompatible(a, b);
}

bool TBinary::Bool(TExec& ex) const
{
    if (op_ == TOp::And) return left_->Bool(ex) && right_->Bool(ex);
    if (op_ == TOp::Or) return left_->Bool(ex) || right_->Bool(ex);
    if (op_ == TOp::Xor) return left_->Bool(ex) != right_->Bool(ex);
    if (!IsComparison(op_)) return TExpr::Bool(ex);
    TVal a, b;
    left_->Eval(ex, a);
    right_->Eval(ex, b);
    return CompareValues(op_, a, b);
}

TValueKind TBinary::StaticKind() const
{
    if (op_ == TOp::And || op_ == TOp::Or || op_ == TOp::Xor || IsComparison(op_)) return TValueKind::Boolean;
    if (op_ == TOp::Add) {
        if (left_->StaticKind() == TValueKind::String || right_->StaticKind() == TValueKind::String) return TValueKind::String;
        return TValueKind::Misc;
    }
    return TValueKind::Number;
}

void TNumBinary::Eval(TExec& ex, TVal& out) const
{
    if (IsComparison(op_)) {
        out = TVal::Boolean(Bool(ex));
    } else {
        out.kind = TValueKind::Number;
        out.number = Num(ex);
    }
}

long double TNumBinary::Num(TExec& ex) const
{
    if (IsComparison(op_)) return TExpr::Num(ex);
    return Arithmetic(op_, left_->Num(ex), right_->Num(ex));
}

bool TNumBinary::Bool(TExec& ex) const
{
    if (!IsComparison(op_)) return TExpr::Bool(ex);
    return Compare(op_, NumberOrder(left_->Num(ex), right_->Num(ex)));
}

TValueKind TNumBinary::StaticKind() const { return IsComparison(op_) ? TValueKind::Boolean : TValueKind::Number; }

TExprPtr MakeBinary(int line, int column, TOp op, TExprPtr left, TExprPtr right)
{
    const bool numeric = left->StaticKind() == TValueKind::Number && right->StaticKind() == TValueKind::Number;
    if (numeric && op != TOp::And && op != TOp::Or && op != TOp::Xor) {
        return std::make_unique<TNumBinary>(line, column, op, std::move(left), std::move(right));
    }
    return std::make_unique<TBinary>(line, column, op, std::move(left), std::move(right));
}

}  // namespace dv::host
