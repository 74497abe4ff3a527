// ArrayToStr and its reverse, StrToArray.
#include "commands/text/gui_arraytostr.h"
#include "commands/text/gui_strtoarray.h"
#include "tests/commands/params.h"
#include "tests/host/scriptrun.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <tuple>

namespace dv {
namespace {

using test::MakeParams;

class ArrayStringTest : public ::testing::Test {
protected:
    // Each runs its command: the text of the variable it fills, or "!" and the message of the error raised.
    QString ToStr(const char* arr)
    {
        TParamList params = MakeParams({{"Str", "S"}, {"Arr", arr}});
        const auto error = test::RaisedMessage([&] { toStr.Run(params); });
        return error ? "!" + *error : host.ValueText("S");
    }
    QString ToArray(const char* str, const char* arr = "A")
    {
        TParamList params = MakeParams({{"str", str}, {"arr", arr}});
        const auto error = test::RaisedMessage([&] { toArray.Run(params); });
        return error ? "!" + *error : host.ValueText(arr);
    }

    test::TTestHost host;
    TDVCmdArrayToString toStr{&host};
    TDVCmdStringToArray toArray{&host};
};

TEST_F(ArrayStringTest, ArrayToStrJoinsCharactersAndCodesOrRaisesAndWritesNothing)
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
    for (const auto& [arr, expected] : rows) EXPECT_EQ(ToStr(arr), QString::fromUtf8(expected)) << arr;
    host.setVariableCalls.clear();
    for (const char* arr : {"\"HALLO\"", "65"}) EXPECT_TRUE(ToStr(arr).startsWith("!Ungültige Typumwandlung")) << arr;
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(ArrayStringTest, StrToArrayFillsTheEmptiedArrayInPlaceOrRaisesForWrongTargetsAndChangesNothing)
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
        EXPECT_EQ(ToArray(str), QString::fromUtf8(expected)) << str;
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
    host.Declare("Zahl", g_NumberType);
    host.Declare("Gemischt", g_MiscArrayType);
    EXPECT_EQ(ToArray("HALLO", "Fehlt"), "!Der Bezeichner \"Fehlt\" wurde nicht als Variable deklariert!");
    EXPECT_EQ(ToArray("HALLO", "Zahl"), "!Die Variable \"Zahl\" ist kein Array.");
    EXPECT_EQ(ToArray("HALLO", "Gemischt"), "!Es wurde ein Array erwartet");
    EXPECT_EQ(host.ValueText("Zahl"), "0");
    EXPECT_EQ(host.ValueText("Gemischt"), "");
    EXPECT_EQ(host.FindVariable("Fehlt"), nullptr);
}

// Through the real host, which hands Arr as its printed text with the evaluated array attached.
TEST(ArrayToStrInAScript, JoinsTheArrayTheHostHandsOver)
{
    const struct { const char *lines, *expected; } rows[] = {  // the lines leave the result in S
        {"var A : Array of String\nStrToArray(\"123\", A)\nArrayToStr(S, A)", "123"},
        {"var A : Array of Number\nStrToArray(\"123\", A)\nArrayToStr(S, A)", "123"},
        {"var A : Array of String\nStrToArray(\"{a}}{\", A)\nArrayToStr(S, A)", "{a}}{"},
        {"ArrayToStr(S, [])", ""},
        {"ArrayToStr(S, [True, 65, \"}{\"])", "A}{"},
        {"var A : Array of Misc = [\"x\", 121.5]\nArrayToStr(S, A)", "xz"},
        // A text in the printed form converts into an array, as on passing it to any array parameter.
        {"ArrayToStr(S, \"{72}{65}\")", "HA"},
        {"var M : Misc = \"{72}{A}\"\nArrayToStr(S, M)", "HA"},
        {"ArrayToStr(S, \"\")", ""},
    };
    for (const auto& r : rows) {
        const QString script = QString("var S : String = \"vorher\"\n") + r.lines + "\nLog(\"<\" + S + \">\")";
        const host::test::TScriptOutcome run = host::test::RunScriptText(script);
        EXPECT_EQ(run.exitCode, 0) << r.lines << "\n" << run.errors.join('\n').toStdString();
        EXPECT_EQ(run.output, QStringList{QString("<%1>").arg(QString::fromUtf8(r.expected))}) << r.lines;
    }
}

TEST(ArrayToStrInAScript, LineBreaksInElementsSurviveTheRoundTrip)
{
    const QString script = "var S, T : String\nvar A : Array of String\nvar N : Array of Number\n"
                           "ArrayToStr(S, [65, 10, 123, 13, 10, 125])\nStrToArray(S, A)\nArrayToStr(T, A)\n"
                           "Check(T = S, \"T = S\")\nStrToArray(T, N)\nLog(N)";
    const host::test::TScriptOutcome run = host::test::RunScriptText(script);
    EXPECT_EQ(run.exitCode, 0) << run.errors.join('\n').toStdString() << run.failedChecks.join('\n').toStdString();
    EXPECT_EQ(run.output, QStringList{"{65}{10}{123}{13}{10}{125}"});
}

TEST(ArrayToStrInAScript, AValueThatIsNoArrayIsAnInvalidCast)
{
    for (const char* value : {"\"Hallo Welt\"", "65", "\"{72}{65\""}) {
        const QString script = QString("var S : String = \"vorher\"\nvar M : Misc = %1\nArrayToStr(S, M)\nLog(S)").arg(value);
        const host::test::TScriptOutcome run = host::test::RunScriptText(script);
        EXPECT_EQ(run.exitCode, 1) << value;
        EXPECT_TRUE(run.errors.join('\n').contains("Ungültige Typumwandlung")) << run.errors.join('\n').toStdString();
        EXPECT_TRUE(run.output.isEmpty()) << value;
    }
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
