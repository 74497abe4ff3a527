// ArrayToStr and its reverse, StrToArray.
#include "commands/text/gui_arraytostr.h"
#include "commands/text/gui_strtoarray.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <tuple>

namespace dv {
namespace {

using test::MakeParams;

class ArrayStringTest : public ::testing::Test {
protected:
    void ToStr(const char* arr)
    {
        TParamList params = MakeParams({{"Str", "S"}, {"Arr", arr}});
        toStr.Run(params);
    }
    void ToArray(const char* str, const char* arr = "A")
    {
        TParamList params = MakeParams({{"str", str}, {"arr", arr}});
        toArray.Run(params);
    }

    test::TTestHost host;
    TDVCmdArrayToString toStr{&host};
    TDVCmdStringToArray toArray{&host};
};

TEST_F(ArrayStringTest, ArrayToStrJoinsCharactersAndCodes)
{
    host.Declare("S", g_StringType);
    const std::pair<const char*, const char*> rows[] = {
        // The parser's element list has an unused entry 0: the join starts at entry 1, the first element.
        {"{72}{65}{76}{76}{79}", "HALLO"}, {"{H}{A}{L}{L}{O}", "HALLO"},
        {"[65.5, 66.5]", "BB"},  // codes round halves to even
        {"{128}{159}", "€Ÿ"},    // Windows-1252 codes
        {"[True, 65]", "A"},     // values of other kinds add nothing
        {"{300}", "?"}, {"[]", ""}, {"[\"ab\", 67]", "abC"},
    };
    for (const auto& [arr, expected] : rows) {
        ToStr(arr);
        EXPECT_EQ(host.ValueText("S"), QString::fromUtf8(expected)) << arr;
    }
}

TEST_F(ArrayStringTest, ArrayToStrOfTextThatIsNoArrayRaisesAndWritesNothing)
{
    host.Declare("S", g_StringType);
    const std::pair<const char*, const char*> rows[] = {{"\"HALLO\"", "Typumwandlung"}, {"65", "Typumwandlung"}, {"{x", "{x"}};
    for (const auto& [arr, messagePart] : rows) {
        EXPECT_TRUE(test::RaisedMessage([&] { ToStr(arr); }).value_or("").contains(messagePart)) << arr;
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(ArrayStringTest, StrToArrayEmptiesTheArrayAndFillsElementsOneToNInPlace)
{
    const std::tuple<TDVType, const char*, const char*> rows[] = {
        {g_StringArrayType, "HALLO", "{H}{A}{L}{L}{O}"}, {g_NumberArrayType, "HALLO", "{72}{65}{76}{76}{79}"},
        {g_NumberArrayType, "€ä", "{128}{228}"},  // Windows-1252 codes
        {g_NumberArrayType, "Я", "{63}"},         // what Ord1252 gives a letter outside the code page
        {g_StringArrayType, "", ""},
    };
    for (const auto& [type, str, expected] : rows) {
        auto& array = dynamic_cast<TArrayValue&>(host.Declare("A", type).GetValue());
        for (int i = 1; i <= 7; ++i) array.SetVal(i, std::make_unique<TStringValue>("x"));
        ToArray(str);
        EXPECT_EQ(host.ValueText("A"), QString::fromUtf8(expected)) << str;
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(ArrayStringTest, StrToArrayIntoWrongTargetsRaisesTheirMessagesAndChangesNothing)
{
    host.Declare("Zahl", g_NumberType);
    host.Declare("Gemischt", g_MiscArrayType);
    const std::pair<const char*, const char*> rows[] = {
        {"Fehlt", "Der Bezeichner \"Fehlt\" wurde nicht als Variable deklariert!"},
        {"Zahl", "Die Variable \"Zahl\" ist kein Array."},
        {"Gemischt", "Es wurde ein Array erwartet"},
    };
    for (const auto& [name, message] : rows) EXPECT_EQ(test::RaisedMessage([&] { ToArray("HALLO", name); }), QString::fromUtf8(message));
    EXPECT_EQ(host.ValueText("Zahl"), "0");
    EXPECT_EQ(host.ValueText("Gemischt"), "");
    EXPECT_EQ(host.FindVariable("Fehlt"), nullptr);
}

TEST_F(ArrayStringTest, OlderLinesOfArrayToStrNameTheArrayFirst)
{
    TParamList params;
    ASSERT_TRUE(toStr.DecodeScript("ArrayToStr(A, B);", params, nullptr));
    EXPECT_EQ(params, MakeParams({{"Str", " B"}, {"Arr", "A"}}));  // pieces are not trimmed
    ASSERT_TRUE(toStr.DecodeScript("ArrayToStr;", params, nullptr));
    EXPECT_EQ(params, MakeParams({{"Str", ""}, {"Arr", ""}}));
    params.Clear();
    ASSERT_TRUE(toArray.DecodeScript("StrToArray(A, B);", params, nullptr));
    EXPECT_EQ(params, MakeParams({{"str", "A"}, {"arr", " B"}}));
    EXPECT_EQ(toStr.GetDescription("ArrayToStr", MakeParams({{"Str", "S"}, {"Arr", "A"}})),
              "Konvertiere das Array >>A<< in einen String und speichere ihn in S");
}

}  // namespace
}  // namespace dv
