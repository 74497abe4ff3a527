#include "commands/text/gui_strtoarray.h"
#include "framework/exceptions.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

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
    const TArrayValue& Array() const { return dynamic_cast<const TArrayValue&>(*host.Value("A")); }

    test::TTestHost host;
    TDVCmdStringToArray command{&host};
};

TEST_F(StrToArrayTest, FillsElementsOneToNInPlace)
{
    struct Row {
        TDVType type;
        const char* str;
        const char* expected;
    };
    const Row rows[] = {
        {g_StringArrayType, "HALLO", "{H}{A}{L}{L}{O}"},
        {g_NumberArrayType, "HALLO", "{72}{65}{76}{76}{79}"},
        {g_NumberArrayType, "€ä", "{128}{228}"},  // Windows-1252 codes
        {g_NumberArrayType, "Я", "{63}"},         // what Ord1252 gives a letter outside the code page
        {g_NumberArrayType, "", ""},
    };
    for (const Row& r : rows) {
        host.Declare("A", r.type);
        Run(r.str);
        EXPECT_EQ(Array().AsText(), QString::fromUtf8(r.expected)) << r.str;
        EXPECT_EQ(Array().GetSize(), QString::fromUtf8(r.str).size());
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(StrToArrayTest, EmptiesTheArrayBeforeFilling)
{
    auto& variable = host.Declare("A", g_StringArrayType);
    auto& array = dynamic_cast<TArrayValue&>(variable.GetValue());
    for (int i = 1; i <= 7; ++i) array.SetVal(i, std::make_unique<TStringValue>("x"));
    Run("ab");
    EXPECT_EQ(Array().AsText(), "{a}{b}");
    Run("");
    EXPECT_EQ(Array().GetSize(), 0);
}

TEST_F(StrToArrayTest, WrongTargetsRaiseTheirMessages)
{
    host.Declare("Zahl", g_NumberType);
    host.Declare("Gemischt", g_MiscArrayType);
    const std::pair<const char*, const char*> rows[] = {
        {"Fehlt", "Der Bezeichner \"Fehlt\" wurde nicht als Variable deklariert!"},
        {"Zahl", "Die Variable \"Zahl\" ist kein Array."},
        {"Gemischt", "Es wurde ein Array erwartet"},
    };
    for (const auto& [name, message] : rows) {
        try {
            Run("HALLO", name);
            ADD_FAILURE() << name << " raised nothing";
        } catch (const TDVRuntimeException& e) {
            EXPECT_EQ(e.Message(), QString::fromUtf8(message));
        }
    }
    EXPECT_EQ(host.ValueText("Gemischt"), "");
    EXPECT_EQ(host.FindVariable("Fehlt"), nullptr);
}

TEST_F(StrToArrayTest, OlderLineInSignatureOrder)
{
    TParamList params;
    ASSERT_TRUE(command.DecodeScript("StrToArray(A, B);", params, nullptr));
    EXPECT_EQ(params.Names(), (QStringList{"str", "arr"}));
    EXPECT_EQ(params.GetString("str"), "A");
    EXPECT_EQ(params.GetString("arr"), " B");
}

}  // namespace
}  // namespace dv
