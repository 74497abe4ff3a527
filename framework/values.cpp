#include "framework/values.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/translate.h"

#include <cmath>
#include <limits>

namespace dv {

TNumberValue::TNumberValue(const QString& text) : value_(DVStrToFloat(text)) {}

long long TNumberValue::GetAsInt() const
{
    if (std::isnan(value_)) return 0;
    constexpr long double lo = static_cast<long double>(std::numeric_limits<long long>::min());
    constexpr long double hi = static_cast<long double>(std::numeric_limits<long long>::max());
    if (value_ <= lo) return std::numeric_limits<long long>::min();
    if (value_ >= hi) return std::numeric_limits<long long>::max();
    return std::llrint(value_);  // default rounding mode: half to even
}

QString TNumberValue::AsText() const { return DVFloatToStr(value_); }

std::vector<int> TArrayValue::GetIndices() const
{
    std::vector<int> indices(elements_.size());
    for (std::size_t i = 0; i < indices.size(); ++i) indices[i] = static_cast<int>(i) + 1;
    return indices;
}

const TValue& TArrayValue::GetVal(int index) const
{
    if (index < 1 || index > GetSize()) {
        throw TDVRuntimeException(Format(_("Arrayindex %d außerhalb des Bereichs 1..%d"),
                                         {QString::number(index), QString::number(GetSize())}));
    }
    return *elements_[static_cast<std::size_t>(index - 1)];
}

void TArrayValue::SetVal(int index, TValuePtr value)
{
    if (index < 1) throw TDVRuntimeException(Format(_("Arrayindex %d ist kleiner als 1"), {QString::number(index)}));
    while (GetSize() < index - 1) elements_.push_back(DefaultElement());
    if (index == GetSize() + 1) {
        elements_.push_back(std::move(value));
    } else {
        elements_[static_cast<std::size_t>(index - 1)] = std::move(value);
    }
}

QString TArrayValue::AsText() const
{
    QString out;
    for (const auto& e : elements_) out += '{' + e->AsText() + '}';
    return out;
}

TValuePtr TArrayValue::Clone() const
{
    auto copy = std::make_unique<TArrayValue>(elementKind_);
    copy->elements_.reserve(elements_.size());
    for (const auto& e : elements_) copy->elements_.push_back(e->Clone());
    return copy;
}

TValuePtr TArrayValue::DefaultElement() const { return DefaultValue({elementKind_, TValueKind::Misc}); }

TValuePtr DefaultValue(const TDVType& type)
{
    switch (type.kind) {
    case TValueKind::Number: return std::make_unique<TNumberValue>();
    case TValueKind::Boolean: return std::make_unique<TBooleanValue>(false);
    case TValueKind::Array: return std::make_unique<TArrayValue>(type.elementKind);
    case TValueKind::String:
    case TValueKind::Misc: break;
    }
    return std::make_unique<TStringValue>(QString());
}

std::unique_ptr<TArrayValue> ParseArrayText(const QString& text, TValueKind elementKind)
{
    auto array = std::make_unique<TArrayValue>(elementKind);
    qsizetype at = 0;
    while (at < text.size()) {
        if (text[at] != '{') return nullptr;
        const qsizetype close = text.indexOf('}', at + 1);
        if (close < 0) return nullptr;
        const QString element = text.mid(at + 1, close - at - 1);
        bool isNumber = false;
        if (elementKind != TValueKind::String && !element.trimmed().isEmpty()) {
            try {
                array->Append(std::make_unique<TNumberValue>(element));
                isNumber = true;
            } catch (const TDVRuntimeException&) {
            }
        }
        if (!isNumber) {
            if (elementKind == TValueKind::Number) return nullptr;
            array->Append(std::make_unique<TStringValue>(element));
        }
        at = close + 1;
    }
    return array;
}

}  // namespace dv
