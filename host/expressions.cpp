#include "host/expressions.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/translate.h"
#include "host/numericnodes.h"

#include <cmath>

namespace dv::host {

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

namespace {

const TArrayValue& IndexedArray(const TExec& ex, const TVarRef& ref)
{
    const TVariable& var = ref.Var(ex);
    if (var.value.kind != TValueKind::Array) {
        throw TDVRuntimeException(Format(_("Die Variable \"%s\" ist kein Array."), {var.GetName()}));
    }
    return *var.value.array;
}

}  // namespace

void TIndexExpr::Eval(TExec& ex, TVal& out) const
{
    const int index = ArrayIndex(index_->Num(ex));
    out = ElementValue(IndexedArray(ex, *array_), index);
}

long double TIndexExpr::Num(TExec& ex) const
{
    const int index = ArrayIndex(index_->Num(ex));
    const TArrayValue& array = IndexedArray(ex, *array_);
    if (array.GetKindAt(index) == TValueKind::Number) return array.GetNumber(index);
    return RequireNumber(ElementValue(array, index));
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

[[noreturn]] void Incompatible(const TVal& a, const TVal& b)
{
    throw TDVRuntimeException(Format(_("Typen unverträglich: %s und %s"), {KindName(a.kind), KindName(b.kind)}));
}

bool IsComparison(TOp op) { return op >= TOp::Eq && op <= TOp::Ge; }

}  // namespace

bool CompareValues(TOp op, const TVal& a, const TVal& b)
{
    using K = TValueKind;
    if (a.kind == K::Number && b.kind == K::Number) return CompareNumbers(op, a.number, b.number);
    if (a.kind == K::String && b.kind == K::String) return CompareOrder(op, QString::compare(a.text, b.text));
    if (a.kind == K::Boolean && b.kind == K::Boolean) return CompareOrder(op, int(a.boolean) - int(b.boolean));
    if (a.kind == K::Array && b.kind == K::Array && (op == TOp::Eq || op == TOp::Ne)) {
        return CompareOrder(op, a.array->AsText() == b.array->AsText() ? 0 : 1);
    }
    // A number text (as commands write into Misc variables) compares with a number by value.
    if (a.kind == K::Number && b.kind == K::String) return CompareNumbers(op, a.number, DVStrToFloat(b.text));
    if (a.kind == K::String && b.kind == K::Number) return CompareNumbers(op, DVStrToFloat(a.text), b.number);
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

namespace {

bool IsLogic(TOp op) { return op == TOp::And || op == TOp::Or || op == TOp::Xor; }

// a op b for the arithmetic operators and the joining of texts; out may be a.
void Combine(const TExec& ex, TOp op, const TVal& a, const TVal& b, TVal& out)
{
    using K = TValueKind;
    if (a.kind == K::Number && b.kind == K::Number) {
        out = TVal::Number(Arithmetic(op, a.number, b.number));
        return;
    }
    const bool scalars = a.kind != K::Array && b.kind != K::Array;
    if (op == TOp::Add && scalars && (a.kind == K::String || b.kind == K::String)) {
        if (&out == &a && a.kind == K::String) {  // a chain's running text grows in place
            const QString right = ValText(b);
            CheckStringLength(ex, out.text.size() + right.size());
            out.text += right;
            return;
        }
        QString left = ValText(a);
        const QString right = ValText(b);
        CheckStringLength(ex, left.size() + right.size());
        left += right;
        out = TVal::String(std::move(left));
        return;
    }
    Incompatible(a, b);
}

// a op b for and / or / xor; b is evaluated only when it decides.
bool Logic(TExec& ex, TOp op, bool a, const TExpr& b)
{
    if (op == TOp::And) return a && b.Bool(ex);
    if (op == TOp::Or) return a || b.Bool(ex);
    return a != b.Bool(ex);
}

}  // namespace

void CheckStringLength(const TExec& ex, qsizetype length)
{
    if (length <= ex.limits.maxString) return;
    throw TDVRuntimeException(Format(_("Der Text wäre mit %s Zeichen länger als erlaubt (--max-string %s)"),
                                     {QString::number(length), QString::number(ex.limits.maxString)}));
}

void TBinary::Eval(TExec& ex, TVal& out) const
{
    if (IsLogic(op_) || IsComparison(op_)) {
        out = TVal::Boolean(Bool(ex));
        return;
    }
    TVal a, b;
    left_->Eval(ex, a);
    right_->Eval(ex, b);
    Combine(ex, op_, a, b, out);
}

bool TBinary::Bool(TExec& ex) const
{
    if (IsLogic(op_)) return Logic(ex, op_, left_->Bool(ex), *right_);
    if (!IsComparison(op_)) return TExpr::Bool(ex);
    TVal a, b;
    left_->Eval(ex, a);
    right_->Eval(ex, b);
    return CompareValues(op_, a, b);
}

namespace {

// The kind of a op b from the kinds of its operands.
TValueKind ResultKind(TOp op, TValueKind left, TValueKind right)
{
    using K = TValueKind;
    if (IsLogic(op) || IsComparison(op)) return K::Boolean;
    if (op != TOp::Add || (left == K::Number && right == K::Number)) return K::Number;
    return left == K::String || right == K::String ? K::String : K::Misc;
}

}  // namespace

TValueKind TBinary::StaticKind() const { return ResultKind(op_, left_->StaticKind(), right_->StaticKind()); }

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
    const long double a = left_->Num(ex);
    return CompareNumbers(op_, a, right_->Num(ex));
}

TValueKind TNumBinary::StaticKind() const { return IsComparison(op_) ? TValueKind::Boolean : TValueKind::Number; }

TExprPtr MakeBinary(int line, int column, TOp op, TExprPtr left, TExprPtr right)
{
    const bool numeric = left->StaticKind() == TValueKind::Number && right->StaticKind() == TValueKind::Number;
    if (numeric && !IsLogic(op)) return MakeNumBinary(line, column, op, std::move(left), std::move(right));
    return std::make_unique<TBinary>(line, column, op, std::move(left), std::move(right));
}

TChain::TChain(TExprPtr first, std::vector<TChainLink> links)
    : TExpr(links.front().line, links.front().column),
      first_(std::move(first)),
      links_(std::move(links)),
      kind_(first_->StaticKind()),
      logic_(IsLogic(links_.front().op)),
      numeric_(kind_ == TValueKind::Number && !logic_)
{
    for (const TChainLink& link : links_) {
        const TValueKind operand = link.operand->StaticKind();
        numeric_ = numeric_ && operand == TValueKind::Number;
        kind_ = ResultKind(link.op, kind_, operand);
    }
}

void TChain::Eval(TExec& ex, TVal& out) const
{
    if (logic_) {
        out = TVal::Boolean(Bool(ex));
        return;
    }
    if (numeric_) {
        out = TVal::Number(Num(ex));
        return;
    }
    first_->Eval(ex, out);
    TVal operand;
    for (const TChainLink& link : links_) {
        link.operand->Eval(ex, operand);
        Combine(ex, link.op, out, operand, out);
    }
}

long double TChain::Num(TExec& ex) const
{
    if (!numeric_) return TExpr::Num(ex);
    long double result = first_->Num(ex);
    for (const TChainLink& link : links_) result = Arithmetic(link.op, result, link.operand->Num(ex));
    return result;
}

bool TChain::Bool(TExec& ex) const
{
    if (!logic_) return TExpr::Bool(ex);
    bool result = first_->Bool(ex);
    for (const TChainLink& link : links_) result = Logic(ex, link.op, result, *link.operand);
    return result;
}

TExprPtr MakeChain(TExprPtr first, std::vector<TChainLink> links)
{
    // Up to this many operators keep the nested nodes, whose depth is then harmless.
    constexpr std::size_t kLongestNested = 32;
    if (links.size() > kLongestNested) return std::make_unique<TChain>(std::move(first), std::move(links));
    for (TChainLink& link : links) {
        first = MakeBinary(link.line, link.column, link.op, std::move(first), std::move(link.operand));
    }
    return first;
}

}  // namespace dv::host
