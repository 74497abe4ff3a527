#include "framework/values.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/translate.h"

#include <algorithm>
#include <cmath>
#include <cstring>
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

namespace {

// Room for n elements: exactly n for a first size (SetLength), at least double for a growing
// array, so that growing element by element stays linear.
template <class Vector>
void ReserveFor(Vector& v, std::size_t n)
{
    if (n > v.capacity()) v.reserve(std::max(n, 2 * v.capacity()));
}

}  // namespace

TArrayValue::TArrayValue(const TArrayValue& other)
    : TValue(other), elementKind_(other.elementKind_), boxed_(other.boxed_), numbers_(other.numbers_)
{
    objects_.reserve(other.objects_.size());
    for (const auto& e : other.objects_) objects_.push_back(e->Clone());
}

long double TArrayValue::Unpack(const TPacked& p)
{
    long double x = 0;
    std::memcpy(&x, p.bytes, kNumberBytes);
    return x;
}

TArrayValue::TPacked TArrayValue::Pack(long double x)
{
    TPacked p;
    std::memcpy(p.bytes, &x, kNumberBytes);
    return p;
}

std::vector<int> TArrayValue::GetIndices() const
{
    std::vector<int> indices(static_cast<std::size_t>(GetSize()));
    for (std::size_t i = 0; i < indices.size(); ++i) indices[i] = static_cast<int>(i) + 1;
    return indices;
}

void TArrayValue::CheckIndex(int index) const
{
    if (index < 1 || index > GetSize()) {
        throw TDVRuntimeException(Format(_("Arrayindex %d außerhalb des Bereichs 1..%d"),
                                         {QString::number(index), QString::number(GetSize())}));
    }
}

const TValue& TArrayValue::GetVal(int index) const
{
    CheckIndex(index);
    if (boxed_) return *objects_[static_cast<std::size_t>(index - 1)];
    std::unique_ptr<TNumberValue>& box = handedOut_[index];
    if (!box) box = std::make_unique<TNumberValue>(Unpack(numbers_[static_cast<std::size_t>(index - 1)]));
    return *box;
}

TValueKind TArrayValue::GetKindAt(int index) const
{
    CheckIndex(index);
    return boxed_ ? objects_[static_cast<std::size_t>(index - 1)]->GetType().kind : TValueKind::Number;
}

long double TArrayValue::GetNumber(int index) const
{
    CheckIndex(index);
    if (!boxed_) return Unpack(numbers_[static_cast<std::size_t>(index - 1)]);
    const auto* number = dynamic_cast<const TNumberValue*>(objects_[static_cast<std::size_t>(index - 1)].get());
    if (!number) throw TDVRuntimeException(_("Ungültige Typumwandlung"));
    return number->GetVal();
}

QString TArrayValue::GetText(int index) const
{
    CheckIndex(index);
    if (!boxed_) return DVFloatToStr(Unpack(numbers_[static_cast<std::size_t>(index - 1)]));
    return objects_[static_cast<std::size_t>(index - 1)]->AsText();
}

void TArrayValue::Forget(int index)
{
    if (!handedOut_.empty()) handedOut_.erase(index);
}

void TArrayValue::Box()
{
    objects_.reserve(numbers_.size());
    for (std::size_t i = 0; i < numbers_.size(); ++i) {
        auto kept = handedOut_.find(static_cast<int>(i) + 1);
        if (kept != handedOut_.end()) {
            objects_.push_back(std::move(kept->second));
        } else {
            objects_.push_back(std::make_unique<TNumberValue>(Unpack(numbers_[i])));
        }
    }
    numbers_ = std::vector<TPacked>();
    handedOut_.clear();
    boxed_ = true;
}

void TArrayValue::SetVal(int index, TValuePtr value)
{
    if (index < 1) throw TDVRuntimeException(Format(_("Arrayindex %d ist kleiner als 1"), {QString::number(index)}));
    if (!boxed_) {
        if (const auto* number = dynamic_cast<const TNumberValue*>(value.get())) {
            SetNumber(index, number->GetVal());
            return;
        }
        Box();
    }
    if (index > GetSize()) Resize(index - 1);
    if (index == GetSize() + 1) {
        objects_.push_back(std::move(value));
    } else {
        objects_[static_cast<std::size_t>(index - 1)] = std::move(value);
    }
}

void TArrayValue::SetNumber(int index, long double value)
{
    if (index < 1) throw TDVRuntimeException(Format(_("Arrayindex %d ist kleiner als 1"), {QString::number(index)}));
    if (boxed_) {
        SetVal(index, std::make_unique<TNumberValue>(value));
        return;
    }
    if (index > GetSize()) Resize(index - 1);
    if (boxed_) {  // the gap's default elements are no numbers
        SetVal(index, std::make_unique<TNumberValue>(value));
        return;
    }
    if (index == GetSize() + 1) {
        numbers_.push_back(Pack(value));
    } else {
        numbers_[static_cast<std::size_t>(index - 1)] = Pack(value);
        Forget(index);
    }
}

void TArrayValue::Resize(int size)
{
    const auto n = static_cast<std::size_t>(std::max(size, 0));
    if (n < static_cast<std::size_t>(GetSize())) {
        for (std::size_t i = n; !handedOut_.empty() && i < numbers_.size(); ++i) Forget(static_cast<int>(i) + 1);
        numbers_.resize(boxed_ ? 0 : n);
        objects_.resize(boxed_ ? n : 0);
        numbers_.shrink_to_fit();
        objects_.shrink_to_fit();
        return;
    }
    if (n == static_cast<std::size_t>(GetSize())) return;
    if (!boxed_ && elementKind_ != TValueKind::Number) Box();
    Reserve(size);
    if (!boxed_) {
        numbers_.resize(n, Pack(0));
        return;
    }
    while (objects_.size() < n) objects_.push_back(DefaultElement());
}

void TArrayValue::Reserve(int size)
{
    const auto n = static_cast<std::size_t>(std::max(size, 0));
    if (n <= static_cast<std::size_t>(GetSize())) return;
    if (!boxed_ && elementKind_ != TValueKind::Number) Box();  // as Resize will, with default elements
    if (boxed_) {
        ReserveFor(objects_, n);
    } else {
        ReserveFor(numbers_, n);
    }
}

void TArrayValue::Reset()
{
    numbers_ = std::vector<TPacked>();
    objects_ = std::vector<TValuePtr>();
    handedOut_.clear();
    boxed_ = false;
}

QString TArrayValue::AsText() const
{
    QString out;
    for (int i = 1; i <= GetSize(); ++i) out += '{' + GetText(i) + '}';
    return out;
}

TValuePtr TArrayValue::Clone() const { return std::make_unique<TArrayValue>(*this); }

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
