// Values, arrays and parameter lists. Arrays keep numbers unboxed until an element of another kind
// arrives; what a reader sees must not depend on that.
#include "framework/exceptions.h"
#include "framework/paramlist.h"
#include "framework/values.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace dv {
namespace {

TEST(ValuesTest, TextForms)
{
    EXPECT_EQ(TNumberValue(3).AsText(), "3");
    EXPECT_EQ(TNumberValue(-1.5L).AsText(), "-1.5");
    EXPECT_EQ(TBooleanValue(true).AsText(), "True");
    EXPECT_EQ(TBooleanValue(false).AsText(), "False");
    TArrayValue a(TValueKind::Number);
    a.Append(std::make_unique<TNumberValue>(72));
    a.Append(std::make_unique<TNumberValue>(65));
    EXPECT_EQ(a.AsText(), "{72}{65}");
}

TEST(ValuesTest, GetAsIntRoundsHalfToEven)
{
    EXPECT_EQ(TNumberValue(2.5L).GetAsInt(), 2);
    EXPECT_EQ(TNumberValue(3.5L).GetAsInt(), 4);
    EXPECT_EQ(TNumberValue(-2.5L).GetAsInt(), -2);
    EXPECT_EQ(TNumberValue(1e30L).GetAsInt(), std::numeric_limits<long long>::max());
}

TEST(ValuesTest, ArraysAreIndexedFromOneAndGrow)
{
    TArrayValue a(TValueKind::String);
    a.SetVal(3, std::make_unique<TStringValue>("c"));
    ASSERT_EQ(a.GetSize(), 3);
    EXPECT_EQ(a.GetIndices(), std::vector<int>({1, 2, 3}));
    EXPECT_EQ(a.GetVal(1).AsText(), "");
    EXPECT_EQ(a.GetVal(3).AsText(), "c");
    EXPECT_THROW(a.GetVal(0), TDVRuntimeException);
    EXPECT_THROW(a.GetVal(4), TDVRuntimeException);
    EXPECT_THROW(a.SetVal(0, std::make_unique<TStringValue>("x")), TDVRuntimeException);
    const auto copy = a.Clone();
    a.Reset();
    EXPECT_EQ(a.GetSize(), 0);
    EXPECT_EQ(copy->AsText(), "{}{}{c}");
}

TEST(ValuesTest, PrintedArrayFormReadsBack)
{
    const struct { const char *text, *printed; int size; } rows[] = {  // printed nullptr: not an array text{"{72}{65}{76}", "{72}{65}{76}", 3},
                        {"{H}{A}", "{H}{A}", 2},
                        {"", "", 0},
                        {"{1.5}{x}", "{1.5}{x}", 2},
                        {"{72", nullptr, 0},
                        {"72}", nullptr, 0},
                        {"{1} {2}", nullptr, 0}};
    for (const auto& r : rows) {
        const auto array = ParseArrayText(r.text);
        if (!r.printed) {
            EXPECT_EQ(array, nullptr) << r.text;
            continue;
        }
        ASSERT_NE(array, nullptr) << r.text;
        EXPECT_EQ(array->AsText(), r.printed);
        EXPECT_EQ(array->GetSize(), r.size);
    }
    EXPECT_EQ(ParseArrayText("{72}")->GetVal(1).GetType().kind, TValueKind::Number);
    EXPECT_EQ(ParseArrayText("{H}")->GetVal(1).GetType().kind, TValueKind::String);
}

TEST(ParamListTest, EntriesAreCaseExactAndReplaceable)
{
    TParamList list;
    list.AddString("Str", "A");
    list.AddString("str", "B");
    list.AddString("Str", "C");
    EXPECT_EQ(list.GetString("Str"), "C");
    EXPECT_EQ(list.GetString("str"), "B");
    EXPECT_EQ(list.GetString("STR"), "");
    EXPECT_FALSE(list.Contains("STR"));
    EXPECT_EQ(list.Names(), QStringList({"Str", "str"}));
    list.Clear();
    EXPECT_EQ(list.Count(), 0);
}

TEST(ParamListTest, GetValuePrefersTheAttachedValueThenTheParser)
{
    test::TTestHost host;
    TParamList list;
    list.AddValue("A", "{1}{2}", std::make_unique<TNumberValue>(7));
    list.AddString("B", "{1}{2}{3}");
    list.AddString("C", "kein Ausdruck (");
    EXPECT_EQ(list.GetValue("A")->AsText(), "7");
    const auto b = list.GetValue("B");
    EXPECT_EQ(b->GetType().kind, TValueKind::Array);
    EXPECT_EQ(static_cast<const TArrayValue&>(*b).GetSize(), 3);
    EXPECT_EQ(list.GetValue("C")->AsText(), "kein Ausdruck (");
    const TParamList copy = list;
    EXPECT_EQ(copy.GetValue("A")->AsText(), "7");
    EXPECT_TRUE(copy == list);
}

// The ten bytes of an x87 extended number that carry its value.
bool SameBits(long double a, long double b) { return std::memcmp(&a, &b, 10) == 0; }

TEST(ArrayValueTest, NumbersKeepEveryBitOfTheExtendedFormat)
{
    using L = std::numeric_limits<long double>;
    const long double values[] = {1.0L / 3,
                                  -0.0L,
                                  9223372036854775809.0L,  // 2^63 + 1: 64 significant bits, no double
                                  L::max(),
                                  L::denorm_min(),
                                  -L::infinity(),
                                  L::quiet_NaN()};
    TArrayValue a(TValueKind::Number);
    int index = 0;
    for (long double x : values) a.SetNumber(++index, x);
    const TValuePtr copy = a.Clone();
    const auto& b = static_cast<const TArrayValue&>(*copy);
    for (int i = 1; i <= index; ++i) {
        const long double x = values[i - 1];
        SCOPED_TRACE(i);
        ASSERT_EQ(a.GetKindAt(i), TValueKind::Number);
        EXPECT_TRUE(SameBits(a.GetNumber(i), x));
        EXPECT_TRUE(SameBits(b.GetNumber(i), x));
        EXPECT_TRUE(SameBits(static_cast<const TNumberValue&>(a.GetVal(i)).GetVal(), x));
        EXPECT_EQ(a.GetText(i), TNumberValue(x).AsText());
    }
    EXPECT_TRUE(std::signbit(a.GetNumber(2)));
}

TEST(ArrayValueTest, AnElementOfAnotherKindKeepsTheNumbersAndTheHandedOutValues)
{
    TArrayValue a(TValueKind::Number);
    a.Append(std::make_unique<TNumberValue>(1.0L / 3));
    a.SetNumber(2, 2);
    a.SetNumber(3, 3);
    const TValue& first = a.GetVal(1);  // made for the caller while the numbers are unboxed
    a.SetVal(2, std::make_unique<TStringValue>("x"));
    EXPECT_EQ(a.GetKindAt(1), TValueKind::Number);
    EXPECT_EQ(a.GetKindAt(2), TValueKind::String);
    EXPECT_EQ(a.GetText(2), "x");
    EXPECT_THROW(a.GetNumber(2), TDVRuntimeException);
    EXPECT_TRUE(SameBits(a.GetNumber(1), 1.0L / 3));
    EXPECT_EQ(&a.GetVal(1), &first);
    EXPECT_EQ(first.AsText(), TNumberValue(1.0L / 3).AsText());
    a.SetNumber(5, 5);  // the gap is a default number, as the array holds objects now
    EXPECT_EQ(a.AsText(), "{0.333333333333333}{x}{3}{0}{5}");
    EXPECT_EQ(a.GetKindAt(4), TValueKind::Number);
}

TEST(ArrayValueTest, AHandedOutValueStaysUntilItsElementIsWritten)
{
    TArrayValue a(TValueKind::Number);
    a.SetNumber(1, 7);
    a.SetNumber(2, 8);
    const TValue& second = a.GetVal(2);
    a.SetNumber(1, 70);
    a.SetNumber(3, 9);
    EXPECT_EQ(second.AsText(), "8");
    EXPECT_EQ(&a.GetVal(2), &second);
    a.SetNumber(2, 80);
    EXPECT_EQ(a.GetVal(2).AsText(), "80");
    EXPECT_EQ(a.AsText(), "{70}{80}{9}");
}

TEST(ArrayValueTest, GrowingFillsWithTheDefaultOfTheElementKindAndCuttingKeepsTheFront)
{
    const struct { TValueKind kind; const char* grown; TValueKind gapKind; } rows[] = {  // grown: after element 1 = 5 and Resize(3){TValueKind::Number, "{5}{0}{0}", TValueKind::Number},
                        {TValueKind::String, "{5}{}{}", TValueKind::String},
                        {TValueKind::Boolean, "{5}{False}{False}", TValueKind::Boolean},
                        {TValueKind::Misc, "{5}{}{}", TValueKind::String}};
    for (const auto& r : rows) {
        SCOPED_TRACE(static_cast<int>(r.kind));
        TArrayValue a(r.kind);
        a.SetNumber(1, 5);
        a.Resize(3);
        EXPECT_EQ(a.AsText(), r.grown);
        EXPECT_EQ(a.GetKindAt(3), r.gapKind);
        EXPECT_EQ(a.GetKindAt(1), TValueKind::Number);
        a.Resize(1);
        EXPECT_EQ(a.AsText(), "{5}");
        EXPECT_THROW(a.GetVal(2), TDVRuntimeException);
    }
}

TEST(ArrayValueTest, ASetPastTheEndOfAMiscArrayFillsTheGapWithEmptyTexts)
{
    TArrayValue a;  // an array literal's kind
    a.SetNumber(3, 5);
    EXPECT_EQ(a.AsText(), "{}{}{5}");
    EXPECT_EQ(a.GetKindAt(1), TValueKind::String);
    EXPECT_EQ(a.GetNumber(3), 5);
}

TEST(ArrayValueTest, IndicesBelowOneAreRefused)
{
    TArrayValue a(TValueKind::Number);
    EXPECT_EQ(test::RaisedMessage([&] { a.SetNumber(0, 1); }), "Arrayindex 0 ist kleiner als 1");
    EXPECT_THROW(a.SetVal(-1, std::make_unique<TNumberValue>(1)), TDVRuntimeException);
    EXPECT_THROW(a.GetKindAt(1), TDVRuntimeException);
    EXPECT_THROW(a.GetText(0), TDVRuntimeException);
    EXPECT_EQ(a.GetSize(), 0);
}

// A value that counts how often its text is made.
class TCountingValue final : public TValue {
public:
    explicit TCountingValue(int* texts) : texts_(texts) {}
    TDVType GetType() const override { return g_StringType; }
    QString AsText() const override
    {
        ++*texts_;
        return QStringLiteral("{1}{2}");
    }
    TValuePtr Clone() const override { return std::make_unique<TCountingValue>(texts_); }

private:
    int* texts_;
};

TEST(ParamListTest, AnAttachedValuesTextIsMadeOnlyWhenAskedForAndOnce)
{
    int texts = 0;
    TParamList list;
    list.AddValue("Arr", std::make_unique<TCountingValue>(&texts));
    EXPECT_TRUE(list.Contains("Arr"));
    EXPECT_NE(list.GetValue("Arr"), nullptr);
    const TParamList copy = list;
    EXPECT_EQ(texts, 0);
    EXPECT_EQ(list.GetString("Arr"), "{1}{2}");
    EXPECT_EQ(list.GetString("Arr"), "{1}{2}");
    EXPECT_EQ(texts, 1);
    EXPECT_EQ(copy.GetString("Arr"), "{1}{2}");
    EXPECT_EQ(texts, 2);
    TParamList written;
    written.AddString("Arr", "{1}{2}");
    EXPECT_TRUE(written == list);
    list.AddValue("Arr", nullptr);  // replaced by an entry without a value: an empty text
    EXPECT_EQ(list.GetString("Arr"), "");
}

}  // namespace
}  // namespace dv
