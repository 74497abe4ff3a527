#include "framework/paramlist.h"

#include "framework/parser.h"
#include "framework/services.h"

namespace dv {

TParamList::TParamList(unsigned capacity) { entries_.reserve(capacity); }

TParamList::TParamList(const TParamList& other) { *this = other; }

TParamList& TParamList::operator=(const TParamList& other)
{
    if (this == &other) return *this;
    entries_.clear();
    entries_.reserve(other.entries_.size());
    for (const Entry& e : other.entries_) {
        entries_.push_back({e.name, e.text, e.value ? e.value->Clone() : nullptr, e.textPending});
    }
    return *this;
}

const QString& TParamList::Entry::Text() const
{
    if (textPending) {
        text = value->AsText();
        textPending = false;
    }
    return text;
}

void TParamList::AddString(const QString& name, const QString& text) { Put(name, text, nullptr, false); }

void TParamList::AddValue(const QString& name, const QString& text, TValuePtr value)
{
    Put(name, text, std::move(value), false);
}

void TParamList::AddValue(const QString& name, TValuePtr value)
{
    const bool pending = value != nullptr;
    Put(name, QString(), std::move(value), pending);
}

void TParamList::Put(const QString& name, QString text, TValuePtr value, bool textPending)
{
    for (Entry& e : entries_) {
        if (e.name == name) {
            e.text = std::move(text);
            e.value = std::move(value);
            e.textPending = textPending;
            return;
        }
    }
    entries_.push_back({name, std::move(text), std::move(value), textPending});
}

const TParamList::Entry* TParamList::Find(const QString& name) const
{
    for (const Entry& e : entries_) {
        if (e.name == name) return &e;
    }
    return nullptr;
}

QString TParamList::GetString(const QString& name) const
{
    const Entry* e = Find(name);
    return e ? e->Text() : QString();
}

TValuePtr TParamList::GetValue(const QString& name) const
{
    const Entry* e = Find(name);
    if (!e) return std::make_unique<TStringValue>(QString());
    if (e->value) return e->value->Clone();
    if (TDVParser* parser = CurrentParser()) {
        if (auto node = parser->ParseSingleExpression(e->Text())) return node->Evaluate();
    }
    return std::make_unique<TStringValue>(e->Text());
}

bool TParamList::Contains(const QString& name) const { return Find(name) != nullptr; }

QStringList TParamList::Names() const
{
    QStringList names;
    for (const Entry& e : entries_) names << e.name;
    return names;
}

bool TParamList::operator==(const TParamList& other) const
{
    if (entries_.size() != other.entries_.size()) return false;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (entries_[i].name != other.entries_[i].name || entries_[i].Text() != other.entries_[i].Text()) return false;
    }
    return true;
}

}  // namespace dv
