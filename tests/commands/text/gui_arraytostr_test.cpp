#include "commands/text/gui_arraytostr.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

using test::MakeParams;

class ArrayToStrTest : public ::testing::Test {
protected:
    ArrayToStrTest() { host.Declare("S", g_StringType); }

    void Run(const char* arr)
    {
        TParamList params = MakeParams({{"Str", "S"}, {"Arr", arr}});
        command.Run(params);
    }

    test::TTestHost host;
    TDVCmdArrayToString command{&host};
};

TEST_F(ArrayToStrTest, JoinsCharactersAndCodes)
{
    const std::pair<const char*, const char*> rows[] = {
        // The parser's element list has an unused entry 0: the join starts at entry 1, the first element.
        {"{72}{65}{76}{76}{79}", "HALLO"},
        {"{H}{A}{L}{L}{O}", "HALLO"},
        {"[65.5, 66.5]", "BB"},  // codes round halves to even
        {"{128}{159}", "€Ÿ"},    // Windows-1252 codes
        {"[True, 65]", "A"},     // values of other kinds add nothing
        {"{300}", "?"},
        {"[]", ""},
        {"[\"ab\", 67]", "abC"},
    };
    for (const auto& [arr, expected] : rows) {
        Run(arr);
        EXPECT_EQ(host.ValueText("S"), QString::fromUtf8(expected)) << arr;
    }
}

TEST_F(ArrayToStrTest, TextThatIsNoArrayRaisesAndWritesNothing)
{
    const std::pair<const char*, const char*> rows[] = {{"\"HALLO\"", "Typumwandlung"}, {"65", "Typumwandlung"}, {"{x", "{x"}};
    for (const auto& [arr, messagePart] : rows) {
        EXPECT_TRUE(test::RaisedMessage([&] { Run(arr); }).value_or("").contains(messagePart)) << arr;
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(ArrayToStrTest, OlderLineNamesTheArrayFirst)
{
    TParamList params;
    ASSERT_TRUE(command.DecodeScript("ArrayToStr(A, B);", params, nullptr));
    EXPECT_EQ(params, MakeParams({{"Str", " B"}, {"Arr", "A"}}));  // pieces are not trimmed
    ASSERT_TRUE(command.DecodeScript("ArrayToStr;", params, nullptr));
    EXPECT_EQ(params, MakeParams({{"Str", ""}, {"Arr", ""}}));
    EXPECT_EQ(command.GetDescription("ArrayToStr", MakeParams({{"Str", "S"}, {"Arr", "A"}})),
              "Konvertiere das Array >>A<< in einen String und speichere ihn in S");
}

}  // namespace
}  // namespace dv
