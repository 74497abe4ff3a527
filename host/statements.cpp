#include "host/statements.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/translate.h"
#include "host/numericnodes.h"

#include <cmath>

namespace dv::host {

namespace {
constexpr int kMaxCallDepth = 1000;
// Arrays grow by at most this many elements between two looks at the stop request.
constexpr int kGrowthStep = 1 << 20;
// More rounds than a double counts exactly; no test would end anyway.
constexpr long double kMaxRounds = 9007199254740992.0L;  // 2^53

// The number of rounds of a for loop from `from` up to `to` in steps of 1 (down: from down to `to`).
// Where steps of 1 are exact, the count follows the values the counter takes (from + k), so that a
// rounded span (3.1 - 0.1) cannot add or drop a round.
long double ForRounds(long double from, long double to, bool down)
{
    if (!std::isfinite(from) || !std::isfinite(to)) {
        throw TDVRuntimeException(Format(_("Die Grenzen der for-Schleife sind keine endlichen Zahlen: %s, %s"),
                                         {DVFloatToStr(from), DVFloatToStr(to)}));
    }
    const long double span = down ? from - to : to - from;
    if (span < 0) return 0;
    if (span >= kMaxRounds) throw TDVRuntimeException(_("Die for-Schleife hätte mehr als 2^53 Durchläufe"));
    long double rounds = std::floor(span) + 1;
    if (std::fabs(from) < kMaxRounds && std::fabs(to) < kMaxRounds) {
        auto inside = [&](long double k) { return down ? from - k >= to : from + k <= to; };
        if (inside(rounds)) ++rounds;
        else if (!inside(rounds - 1)) --rounds;
    }
    return rounds;
}
}  // namespace

void Undeclared(const QString& name)
{
    throw TDVRuntimeException(Format(_("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!"), {name}));
}

void TDeclare::Exec(TExec& ex) const
{
    ex.line = Line();
    TFrame& frame = global_ ? *ex.globals : *ex.frame;
    TVal init;
    if (init_) init_->Eval(ex, init);
    for (int slot : slots_) {
        TVariable& var = frame.Slot(slot);
        if (global_ && ex.defines && ex.defines->contains(slot)) {
            var.Assign(ex.defines->value(slot));
        } else if (init_) {
            var.Assign(init);
        } else {
            var.SetDefault();
        }
    }
}

TAssign::TAssign(int line, std::unique_ptr<TVarRef> target, TExprPtr value)
    : TStmt(line), target_(std::move(target)), value_(std::move(value))
{
    const auto* literal = dynamic_cast<const TLiteral*>(value_.get());
    if (target_->OwnSlot() && target_->Type().kind == TValueKind::String && literal &&
        literal->Value().kind == TValueKind::String) {
        text_ = &literal->Value().text;
    }
}

void TAssign::Exec(TExec& ex) const
{
    ex.line = Line();
    TVariable& var = target_->Var(ex);
    if (text_) {
        // The same literal again (a loop) leaves the shared text as it is: no reference counting.
        if (!var.value.text.isSharedWith(*text_)) var.value.text = *text_;
        return;
    }
    TVal v;
    value_->Eval(ex, v);
    var.Assign(std::move(v));
}

TStmtPtr MakeAssign(int line, std::unique_ptr<TVarRef> target, TExprPtr value)
{
    if (target->PlainNumber() && value->StaticKind() == TValueKind::Number) {
        return MakeNumAssign(line, std::move(target), std::move(value));
    }
    return std::make_unique<TAssign>(line, std::move(target), std::move(value));
}

void TIndexAssign::Exec(TExec& ex) const
{
    ex.line = Line();
    TVariable& var = target_->Var(ex);
    if (var.value.kind != TValueKind::Array) {
        throw TDVRuntimeException(Format(_("Die Variable \"%s\" ist kein Array."), {var.GetName()}));
    }
    const int index = ArrayIndex(index_->Num(ex));
    TVal v;
    value_->Eval(ex, v);
    TArrayValue& array = *var.value.array;
    TVal element = Coerce(std::move(v), {array.GetElementKind(), TValueKind::Misc});
    MakeRoomFor(ex, var.GetName(), array, index);
    StoreElement(array, index, std::move(element));
}

void CheckArrayLength(const TExec& ex, const QString& name, long double length)
{
    if (length <= ex.limits.maxArray) return;
    throw TDVRuntimeException(Format(_("Das Array %s wäre mit %s Elementen größer als erlaubt (--max-array %s)"),
                                     {name, DVFloatToStr(length), QString::number(ex.limits.maxArray)}));
}

void GrowArray(const TExec& ex, const QString& name, TArrayValue& array, long double length)
{
    if (length <= array.GetSize()) return;
    CheckArrayLength(ex, name, length);
    const int end = static_cast<int>(length);
    array.Reserve(end);
    while (array.GetSize() < end) {
        array.Resize(std::min(end, array.GetSize() + kGrowthStep));
        ex.CheckStop();
    }
}

void MakeRoomFor(const TExec& ex, const QString& name, TArrayValue& array, long double index)
{
    if (index <= array.GetSize()) return;
    CheckArrayLength(ex, name, index);
    GrowArray(ex, name, array, index - 1);
}

void TIf::Exec(TExec& ex) const
{
    ex.line = Line();
    if (condition_->Bool(ex)) {
        then_.Exec(ex);
    } else {
        else_.Exec(ex);
    }
}

void TFor::Exec(TExec& ex) const
{
    ex.line = Line();
    const long double from = from_->Num(ex);
    const long double to = to_->Num(ex);
    const auto rounds = static_cast<std::int64_t>(ForRounds(from, to, down_));
    TVariable& var = var_->Var(ex);
    // A body with statements looks at the stop request before each of them; an empty one here.
    const bool emptyBody = body_.statements.empty();
    if (std::fabs(from) < kMaxRounds && from == std::floor(from) && !(from == 0 && std::signbit(from))) {
        // A whole start: the counter is the whole number from ± k, converted from an integer in
        // one step instead of adding k to an extended number in memory; the value is the same.
        const auto first = static_cast<std::int64_t>(from);
        const std::int64_t step = down_ ? -1 : 1;
        for (std::int64_t k = 0; k < rounds; ++k) {
            var.value.kind = TValueKind::Number;
            var.value.number = static_cast<long double>(first + step * k);
            body_.Exec(ex);
            if (emptyBody) ex.CheckStop();
        }
        return;
    }
    for (std::int64_t k = 0; k < rounds; ++k) {
        var.value.kind = TValueKind::Number;
        var.value.number = down_ ? from - static_cast<long double>(k) : from + static_cast<long double>(k);
        body_.Exec(ex);
        if (emptyBody) ex.CheckStop();
    }
}

void TWhile::Exec(TExec& ex) const
{
    for (;;) {
        ex.line = Line();
        if (!condition_->Bool(ex)) return;
        body_.Exec(ex);
        ex.CheckStop();
    }
}

void TRepeat::Exec(TExec& ex) const
{
    for (;;) {
        body_.Exec(ex);
        ex.CheckStop();
        ex.line = untilLine_;
        if (condition_->Bool(ex)) return;
    }
}

void TCase::Exec(TExec& ex) const
{
    ex.line = Line();
    TVal selector, value;
    selector_->Eval(ex, selector);
    for (const TCaseBranch& branch : branches_) {
        bool match = branch.values.empty();
        for (const TExprPtr& e : branch.values) {
            ex.line = branch.line;
            e->Eval(ex, value);
            if (CompareValues(TOp::Eq, selector, value)) {
                match = true;
                break;
            }
        }
        if (match) {
            branch.body.Exec(ex);
            return;
        }
    }
}

void TProcCall::Plan() const
{
    plan_.clear();
    for (std::size_t i = 0; i < args_.size(); ++i) {
        const TDVParamDecl& param = procedure_.signature.params[i];
        const TExpr* source = args_[i].value ? args_[i].value.get() : procedure_.defaults[i].get();
        if (args_[i].present && param.isVar) {
            plan_.push_back({TPass::Bind, nullptr, std::nullopt});
        } else if (!source) {
            plan_.push_back({TPass::Default, nullptr, std::nullopt});
        } else if (param.type.kind == TValueKind::Number && source->StaticKind() == TValueKind::Number) {
            plan_.push_back({TPass::Number, source, TNumberSource(*source)});
        } else {
            plan_.push_back({TPass::Value, source, std::nullopt});
        }
    }
    planned_ = true;
}

namespace {

// Gives the frame back and restores the caller's state, also when the call ends by an error.
class TCallScope {
public:
    TCallScope(TExec& ex, const TProcedure& procedure)
        : ex_(ex), procedure_(procedure), caller_(ex.frame), depth_(ex.depth), frame_(procedure.AcquireFrame()) {}
    ~TCallScope()
    {
        procedure_.ReleaseFrame();
        ex_.frame = caller_;
        ex_.depth = depth_;
    }
    TCallScope(const TCallScope&) = delete;
    TCallScope& operator=(const TCallScope&) = delete;
    TFrame& Frame() { return frame_; }

private:
    TExec& ex_;
    const TProcedure& procedure_;
    TFrame* caller_;
    int depth_;
    TFrame& frame_;
};

}  // namespace

void TProcCall::Exec(TExec& ex) const
{
    ex.line = Line();
    ex.CheckStop();
    const char* here = static_cast<const char*>(__builtin_frame_address(0));
    if (ex.depth >= kMaxCallDepth || here < ex.stackLimit) {
        throw TDVRuntimeException(Format(_("Zu tiefe Rekursion beim Aufruf von %s"), {procedure_.signature.name}));
    }
    if (!planned_) Plan();
    TCallScope call(ex, procedure_);
    TFrame& frame = call.Frame();
    // Arguments are evaluated in the caller's frame.
    for (std::size_t i = 0; i < plan_.size(); ++i) {
        const TPlan& p = plan_[i];
        const int slot = static_cast<int>(i);
        switch (p.pass) {
        case TPass::Bind:
            if (!args_[i].ref) Undeclared(args_[i].name);
            frame.Bind(slot, args_[i].ref->Var(ex));
            break;
        case TPass::Number: frame.Own(slot).value.number = p.number->Get(ex); break;
        case TPass::Value: {
            TVal v;
            p.source->Eval(ex, v);
            frame.Own(slot).Assign(std::move(v));
            break;
        }
        case TPass::Default: frame.Own(slot).SetDefault(); break;
        }
    }
    for (int slot = static_cast<int>(args_.size()); slot < procedure_.scope.Size(); ++slot) frame.Own(slot).SetDefault();
    ex.frame = &frame;
    ++ex.depth;
    procedure_.body.Exec(ex);
    ex.line = Line();
}

void TLogCall::Exec(TExec& ex) const
{
    ex.line = Line();
    TVal v;
    text_->Eval(ex, v);
    ex.hooks->WriteLog(ValText(v));
}

void TCheckCall::Exec(TExec& ex) const
{
    ex.line = Line();
    if (condition_->Bool(ex)) return;
    TVal text;
    if (text_) text_->Eval(ex, text);
    ex.hooks->RecordFailedCheck(Line(), text_ ? ValText(Coerce(std::move(text), g_StringType)) : QString());
}

}  // namespace dv::host
