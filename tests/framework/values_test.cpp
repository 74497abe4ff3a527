#include "framework/exceptions.h"
#include "framework/paramlist.h"
#include "framework/values.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

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
    struct Row {
        const char* text;
        const char* printed;  // nullptr: not an array text
        int size;
    };
    const Row rows[] = {{"{72}{65}{76}", "{72}{65}{76}", 3},
                        {"{H}{A}", "{H}{A}", 2},
                        {"", "", 0},
                        {"{1.5}{x}", "{1.5}{x}", 2},
                        {"{72", nullptr, 0},
                        {"72}", nullptr, 0},
                        {"{1} {2}", nullptr, 0}};
    for (const Row& r : rows) {
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

}  // namespace
}  // namespace dv
