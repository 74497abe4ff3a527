#include "commands/text/gui_strtoarray.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <tuple>

namespace dv {
namespace {

using test::MakeParams;

class StrToArrayTest : public ::testing::Test {
protected:
    void Run(const char* str, const char* arr = "A")
    {
        TParamList params = MakeParams({{"str", str}, {"arr", arr}});
        command.Run(params);
    }

    test::TTestHost host;
    TDVCmdStringToArray command{&host};
};

TEST_F(StrToArrayTest, EmptiesTheArrayAndFillsElementsOneToNInPlace)
{
    const std::tuple<TDVType, const char*, const char*> rows[] = {
        {g_StringArrayType, "HALLO", "{H}{A}{L}{L}{O}"},
        {g_NumberArrayType, "HALLO", "{72}{65}{76}{76}{79}"},
        {g_NumberArrayType, "€ä", "{128}{228}"},  // Windows-1252 codes
        {g_NumberArrayType, "Я", "{63}"},         // what Ord1252 gives a letter outside the code page
        {g_StringArrayType, "", ""},
    };
    for (const auto& [type, str, expected] : rows) {
        auto& array = dynamic_cast<TArrayValue&>(host.Declare("A", type).GetValue());
        for (int i = 1; i <= 7; ++i) array.SetVal(i, std::make_unique<TStringValue>("x"));
        Run(str);
        EXPECT_EQ(host.ValueText("A"), QString::fromUtf8(expected)) << str;
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(StrToArrayTest, WrongTargetsRaiseTheirMessagesAndChangeNothing)
{
    host.Declare("Zahl", g_NumberType);
    host.Declare("Gemischt", g_MiscArrayType);
    const std::pair<const char*, const char*> rows[] = {
        {"Fehlt", "Der Bezeichner \"Fehlt\" wurde nicht als Variable deklariert!"},
        {"Zahl", "Die Variable \"Zahl\" ist kein Array."},
        {"Gemischt", "Es wurde ein Array erwartet"},
    };
    for (const auto& [name, message] : rows) EXPECT_EQ(test::RaisedMessage([&] { Run("HALLO", name); }), QString::fromUtf8(message));
    EXPECT_EQ(host.ValueText("Zahl"), "0");
    EXPECT_EQ(host.ValueText("Gemischt"), "");
    EXPECT_EQ(host.FindVariable("Fehlt"), nullptr);
}

TEST_F(StrToArrayTest, OlderLineInSignatureOrder)
{
    TParamList params;
    ASSERT_TRUE(command.DecodeScript("StrToArray(A, B);", params, nullptr));
    EXPECT_EQ(params, MakeParams({{"str", "A"}, {"arr", " B"}}));
}

}  // namespace
}  // namespace dv
