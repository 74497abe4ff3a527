#include "host/variables.h"

namespace dv::host {

TVariable::TVariable(QString name, TDVType type) : name_(std::move(name)), type_(type) { SetDefault(); }

TValue& TVariable::GetValue()
{
    if (value.kind == TValueKind::Array) return *value.array;
    snapshot_ = ToValue(value);
    return *snapshot_;
}

void TVariable::Assign(TVal v)
{
    TVal converted = Coerce(std::move(v), type_);
    if (converted.kind == TValueKind::Array && converted.array.use_count() > 1) {
        converted.array.reset(static_cast<TArrayValue*>(converted.array->Clone().release()));
    }
    value = std::move(converted);
}

void TVariable::SetDefault()
{
    switch (type_.kind) {
    case TValueKind::String: value = TVal::String({}); break;
    case TValueKind::Boolean: value = TVal::Boolean(false); break;
    case TValueKind::Array: value = TVal::Array(std::make_shared<TArrayValue>(type_.elementKind)); break;
    case TValueKind::Number:
        // Nothing but the number to reset (see the invariant): procedure calls reset their locals.
        value.kind = TValueKind::Number;
        value.number = 0;
        break;
    case TValueKind::Misc: value = TVal::Number(0); break;
    }
}

void TVariable::Release() noexcept
{
    value.text = QString();
    value.array.reset();
    snapshot_.reset();
}

int TScope::Declare(const TSymbol& symbol)
{
    const QString key = symbol.name.toLower();
    if (index_.contains(key)) return -1;
    symbols_.push_back(symbol);
    const int slot = Size() - 1;
    index_.insert(key, slot);
    return slot;
}

int TScope::Find(const QString& name) const { return index_.value(name.toLower(), -1); }

TFrame::TFrame(const TScope& scope) : scope_(scope)
{
    own_.reserve(static_cast<std::size_t>(scope.Size()));
    for (int i = 0; i < scope.Size(); ++i) {
        const TSymbol& symbol = scope.Symbol(i);
        owned_.emplace_back(symbol.name, symbol.type);
        own_.push_back(&owned_.back());
        const TValueKind kind = symbol.type.kind;
        if (symbol.isVarParam || (kind != TValueKind::Number && kind != TValueKind::Boolean)) toRelease_.push_back(i);
    }
    slots_ = own_;
}

void TFrame::Release() noexcept
{
    for (int slot : toRelease_) {
        const auto i = static_cast<std::size_t>(slot);
        slots_[i] = own_[i];
        own_[i]->Release();
    }
}

TVariable* TFrame::Find(const QString& name) const
{
    const int slot = scope_.Find(name);
    return slot < 0 ? nullptr : slots_[static_cast<std::size_t>(slot)];
}

}  // namespace dv::host
