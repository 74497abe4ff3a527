#include "commands/text/gui_arraytostr.h"
#include "framework/exceptions.h"
#include "framework/parser.h"
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

TEST_F(ArrayToStrTest, EntryZeroOfTheElementListIsNeverConverted)
{
    // The parser's element list carries an unused entry 0; the first element is entry 1 and is joined.
    const TDVAbsyPtr tree = host.ParseExpression("{72}{73}");
    const auto& elements = dynamic_cast<const TDVAbsyArray&>(*tree).Elements();
    ASSERT_EQ(elements.size(), 3u);
    EXPECT_EQ(elements[0], nullptr);
    Run("{72}{73}");
    EXPECT_EQ(host.ValueText("S"), "HI");
}

TEST_F(ArrayToStrTest, TextThatIsNoArrayRaisesAndWritesNothing)
{
    for (const char* arr : {"\"HALLO\"", "65", "{unclosed"}) {
        host.setVariableCalls.clear();
        EXPECT_THROW(Run(arr), TDVRuntimeException) << arr;
        EXPECT_TRUE(host.setVariableCalls.isEmpty()) << arr;
    }
}

TEST_F(ArrayToStrTest, OlderLineNamesTheArrayFirst)
{
    TParamList params;
    ASSERT_TRUE(command.DecodeScript("ArrayToStr(A, B);", params, nullptr));
    EXPECT_EQ(params.Names(), (QStringList{"Str", "Arr"}));
    EXPECT_EQ(params.GetString("Str"), " B");  // pieces are not trimmed
    EXPECT_EQ(params.GetString("Arr"), "A");
    ASSERT_TRUE(command.DecodeScript("ArrayToStr;", params, nullptr));
    EXPECT_EQ(params.GetString("Str"), "");
    EXPECT_EQ(params.GetString("Arr"), "");
}

TEST_F(ArrayToStrTest, Description)
{
    EXPECT_EQ(command.GetDescription("ArrayToStr", MakeParams({{"Str", "S"}, {"Arr", "A"}})),
              "Konvertiere das Array >>A<< in einen String und speichere ihn in S");
}

}  // namespace
}  // namespace dv
