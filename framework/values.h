#pragma once
// Script values. A value handed to VarAccess().SetVariable belongs to the host from then on; a value
// obtained by evaluation belongs to whoever received the unique_ptr.
#include <QString>

#include <limits>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace dv {

// Kinds 0..2 are the ones commands test for; Boolean and Misc complete the script's types.
enum class TValueKind { Number = 0, String = 1, Array = 2, Boolean = 3, Misc = 4 };

// The type record of a value or variable: its kind and, for arrays, the kind of the elements.
struct TDVType {
    TValueKind kind = TValueKind::Misc;
    TValueKind elementKind = TValueKind::Misc;
    bool operator==(const TDVType&) const = default;
};

inline constexpr TDVType g_NumberType{TValueKind::Number, TValueKind::Misc};
inline constexpr TDVType g_StringType{TValueKind::String, TValueKind::Misc};
inline constexpr TDVType g_BooleanType{TValueKind::Boolean, TValueKind::Misc};
inline constexpr TDVType g_MiscType{TValueKind::Misc, TValueKind::Misc};
inline constexpr TDVType g_NumberArrayType{TValueKind::Array, TValueKind::Number};
inline constexpr TDVType g_StringArrayType{TValueKind::Array, TValueKind::String};
inline constexpr TDVType g_MiscArrayType{TValueKind::Array, TValueKind::Misc};

class TValue {
public:
    virtual ~TValue() = default;
    virtual TDVType GetType() const = 0;
    // The value as a parameter text: numbers with a decimal point, booleans "True"/"False",
    // arrays in their printed form "{72}{65}".
    virtual QString AsText() const = 0;
    virtual std::unique_ptr<TValue> Clone() const = 0;
};

using TValuePtr = std::unique_ptr<TValue>;

class TNumberValue : public TValue {
public:
    TNumberValue() = default;  // a number created without a value: 0
    explicit TNumberValue(long double value) : value_(value) {}
    // Reads a locale-free number text; raises TDVRuntimeException when it is none.
    explicit TNumberValue(const QString& text);
    long double GetVal() const { return value_; }
    // Rounded half to even, saturated to the 64-bit range.
    long long GetAsInt() const;
    TDVType GetType() const override { return g_NumberType; }
    QString AsText() const override;
    TValuePtr Clone() const override { return std::make_unique<TNumberValue>(value_); }

private:
    long double value_ = 0;
};

class TStringValue : public TValue {
public:
    explicit TStringValue(QString value) : value_(std::move(value)) {}
    const QString& GetVal() const { return value_; }
    TDVType GetType() const override { return g_StringType; }
    QString AsText() const override { return value_; }
    TValuePtr Clone() const override { return std::make_unique<TStringValue>(value_); }

private:
    QString value_;
};

class TBooleanValue : public TValue {
public:
    explicit TBooleanValue(bool value) : value_(value) {}
    bool GetVal() const { return value_; }
    TDVType GetType() const override { return g_BooleanType; }
    QString AsText() const override { return value_ ? QStringLiteral("True") : QStringLiteral("False"); }
    TValuePtr Clone() const override { return std::make_unique<TBooleanValue>(value_); }

private:
    bool value_;
};

// A script array, indexed as the script indexes it: elements 1..GetSize(). Index 0 is no element.
// Writing past the end grows the array; the gap is filled with default elements.
// While every element is a number the array keeps them unboxed, ten bytes each (a million numbers
// in 10 MB rather than a value object each); the first element of another kind turns it into a list
// of value objects for good. Loops over many elements read them with GetKindAt/GetNumber/GetText,
// which make no value object.
class TArrayValue : public TValue {
public:
    explicit TArrayValue(TValueKind elementKind = TValueKind::Misc) : elementKind_(elementKind) {}
    TArrayValue(const TArrayValue& other);
    TArrayValue& operator=(const TArrayValue&) = delete;
    TDVType GetType() const override { return {TValueKind::Array, elementKind_}; }
    TValueKind GetElementKind() const { return elementKind_; }
    int GetSize() const { return static_cast<int>(boxed_ ? objects_.size() : numbers_.size()); }
    // The valid indices, 1..GetSize().
    std::vector<int> GetIndices() const;
    // The element at a script index; raises TDVRuntimeException outside 1..GetSize(). An unboxed
    // number gets its value object on the first request; the reference stays valid until that
    // element is written or the array is emptied or cut.
    const TValue& GetVal(int index) const;
    // The kind of the element at a script index (Number, String, Boolean or Array); raises as GetVal.
    TValueKind GetKindAt(int index) const;
    // The number at a script index; raises as GetVal, and for an element that is no number.
    long double GetNumber(int index) const;
    // The element's text as its AsText gives it (a string element: its characters); raises as GetVal.
    QString GetText(int index) const;
    // Stores the element at a script index (>= 1), growing the array as needed.
    void SetVal(int index, TValuePtr value);
    void SetNumber(int index, long double value);
    void Append(TValuePtr value) { SetVal(GetSize() + 1, std::move(value)); }
    // Fills the array up to `size` elements with default elements, taking no more memory than
    // they need; a smaller size cuts it.
    void Resize(int size);
    // Makes room for `size` elements without adding any.
    void Reserve(int size);
    // Empties the array.
    void Reset();
    QString AsText() const override;
    TValuePtr Clone() const override;

private:
    // Ten of the 16 bytes of an x87 long double carry its value; other formats keep all of them.
    static constexpr bool kX87 = sizeof(long double) == 16 && std::numeric_limits<long double>::digits == 64;
    static constexpr std::size_t kNumberBytes = kX87 ? 10 : sizeof(long double);
    struct TPacked {
        unsigned char bytes[kNumberBytes];
    };
    static long double Unpack(const TPacked& p);
    static TPacked Pack(long double x);
    void CheckIndex(int index) const;
    // Turns the unboxed numbers into value objects, keeping the ones GetVal handed out.
    void Box();
    TValuePtr DefaultElement() const;
    // Drops the value object GetVal made for an element that changes.
    void Forget(int index);

    TValueKind elementKind_;
    bool boxed_ = false;
    std::vector<TPacked> numbers_;     // while !boxed_
    std::vector<TValuePtr> objects_;   // once boxed_
    // The value objects GetVal made for unboxed numbers, by script index.
    mutable std::unordered_map<int, std::unique_ptr<TNumberValue>> handedOut_;
};

// A fresh default value of a type: 0, "", False or an empty array.
TValuePtr DefaultValue(const TDVType& type);
// Reads the printed array form "{72}{65}{H}" element by element (a number text becomes a number,
// anything else a string); returns nullptr when the text is not in that form.
std::unique_ptr<TArrayValue> ParseArrayText(const QString& text, TValueKind elementKind = TValueKind::Misc);

}  // namespace dv
