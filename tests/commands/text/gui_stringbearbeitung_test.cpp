#include "commands/text/gui_stringbearbeitung.h"
#include "framework/exceptions.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <optional>

namespace dv {
namespace {

using test::MakeParams;
using test::TParamRows;

struct Outcome {
    TValueKind kind;
    QString text;  // the variable's value as text
};

class StringBearbeitungTest : public ::testing::Test {
protected:
    // Runs the command with Input and Output "Out" plus the given switches; nullopt when it raised.
    std::optional<Outcome> RunWith(const char* input, TParamRows switches)
    {
        TParamList params = MakeParams(switches);
        params.AddString("Input", QString::fromUtf8(input));
        params.AddString("Output", "Out");
        host.Declare("Out", g_StringType);
        try {
            command.Run(params);
        } catch (const TDVRuntimeException& e) {
            lastError = e.Message();
            return std::nullopt;
        }
        const TValue* value = host.Value("Out");
        return Outcome{value->GetType().kind, value->AsText()};
    }

    test::TTestHost host;
    TDVCmdStringConversion command{&host};
    QString lastError;
};

constexpr auto S = TValueKind::String;
constexpr auto N = TValueKind::Number;

TEST_F(StringBearbeitungTest, StepsGiveTheirResultAndKind)
{
    struct Row {
        const char* input;
        TParamRows switches;
        TValueKind kind;
        const char* expected;
    };
    const Row rows[] = {
        {"Hallo Welt", {{"UpperCase", "True"}}, S, "HALLO WELT"},
        {"Hallo Welt", {{"Search", "Welt"}}, N, "7"},
        {"Hallo Welt", {{"Search", "xyz"}}, N, "0"},
        {"Hallo Welt", {{"StrLen", "True"}}, N, "10"},
        // Search runs on the upper-cased text.
        {"Hallo Welt", {{"UpperCase", "True"}, {"Search", "WELT"}}, N, "7"},
        {"Hallo Welt", {{"UpperCase", "True"}, {"Search", "Welt"}}, N, "0"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "-1"}, {"Length", "3"}}, S, "abc"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "0"}, {"Length", "3"}}, S, "def"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "-1"}, {"FragPos", "\"Right\""}, {"Length", "2"}}, S, "ef"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "0"}, {"FragPos", "\"Right\""}, {"Length", "2"}}, S, "abcd"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "-1"}, {"FragPos", "\"Center\""}, {"Pos", "2"}, {"Length", "3"}}, S, "bcd"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "0"}, {"FragPos", "\"Center\""}, {"Pos", "2"}, {"Length", "3"}}, S, "aef"},
        // A right fragment longer than the text: the copy starts at 1, the delete removes nothing.
        {"abcdef", {{"Fragment", "True"}, {"Cut", "-1"}, {"FragPos", "Right"}, {"Length", "10"}}, S, "abcdef"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "0"}, {"FragPos", "Right"}, {"Length", "10"}}, S, "abcdef"},
        // With the search flag the centre fragment starts where Search was found.
        {"abcdef", {{"Search", "cd"}, {"Fragment", "True"}, {"Cut", "-1"}, {"FragPos", "Center"}, {"Length", "2"}}, S, "cd"},
        {"a;b;c", {{"Segment", "True"}, {"Separator", ";"}, {"Part", "2"}}, S, "b"},
        {"a;b;c", {{"Segment", "True"}, {"Separator", ";"}, {"Part", "4"}}, S, ""},
        // With StrLen the segment is taken from the text, not from the length.
        {"a;b", {{"StrLen", "True"}, {"Segment", "True"}, {"Separator", ";"}, {"Part", "1"}}, S, "a"},
        // A deleted fragment stays deleted for the segment step.
        {"abc;def;g", {{"Fragment", "True"}, {"Cut", "0"}, {"Length", "4"}, {"StrLen", "True"},
                       {"Segment", "True"}, {"Separator", ";"}, {"Part", "1"}}, S, "def"},
        {"42", {{"Convert", "True"}}, N, "42"},
        {"12.5", {{"Round", "True"}}, N, "12"},
        {"13.5", {{"Round", "True"}}, N, "14"},
        {"-2.5", {{"Round", "True"}}, N, "-2"},
        {"  ab  ", {{"Trim", "True"}, {"TrimMode", "1"}}, S, "ab"},
        {"  ab  ", {{"Trim", "True"}, {"TrimMode", "2"}}, S, "ab  "},
        {"  ab  ", {{"Trim", "True"}, {"TrimMode", "3"}}, S, "  ab"},
        // A mode that trims nothing still makes the result a string.
        {" 42 ", {{"Trim", "True"}, {"TrimMode", "0"}}, S, " 42 "},
        {"\t\nab\r", {{"Trim", "True"}, {"TrimMode", "1"}}, S, "ab"},
        {"abcdef", {{"Replace", "True"}, {"ReplacePos", "2"}, {"ReplaceWith", "XY"}}, S, "aXYdef"},
        {"abcdef", {{"Replace", "True"}, {"ReplacePos", "5"}, {"ReplaceWith", "XYZ"}}, S, "abcdXYZ"},
        {"banana", {{"Count", "a"}}, N, "3"},
        {"banana", {{"Count", "an"}}, N, "2"},
        {"Hallo Welt", {{"UpperCase", "True"}, {"Count", "L"}}, N, "3"},
        // No step chose a kind: the text is written as a number.
        {"42", {}, N, "42"},
    };
    for (const Row& r : rows) {
        const auto out = RunWith(r.input, r.switches);
        ASSERT_TRUE(out) << r.input << ": " << lastError.toStdString();
        EXPECT_EQ(out->kind, r.kind) << r.input << " -> " << r.expected;
        EXPECT_EQ(out->text, QString::fromUtf8(r.expected)) << r.input;
    }
}

TEST_F(StringBearbeitungTest, BadInputRaisesAndWritesNothing)
{
    struct Row {
        const char* input;
        TParamRows switches;
        const char* messagePart;
    };
    const Row rows[] = {
        {"Hallo", {}, "Hallo"},  // no switch: a number made from "Hallo"
        {"abc", {{"Round", "True"}}, "abc"},
        {"x", {{"Convert", "True"}}, "x"},
        {"a;b", {{"Segment", "True"}, {"Separator", ";"}, {"Part", "zwei"}}, "zwei"},
        {"abc", {{"Replace", "True"}, {"ReplacePos", "p"}, {"ReplaceWith", "X"}}, "\"p\""},
        {"1e30", {{"Round", "True"}}, "Gleitkommaoperation"},
    };
    for (const Row& r : rows) {
        host.setVariableCalls.clear();
        EXPECT_FALSE(RunWith(r.input, r.switches)) << r.input;
        EXPECT_TRUE(lastError.contains(QString::fromUtf8(r.messagePart))) << lastError.toStdString();
        EXPECT_TRUE(host.setVariableCalls.isEmpty()) << r.input;
    }
}

TEST_F(StringBearbeitungTest, EmptyInputOrOutputDoesNothing)
{
    host.Declare("Out", g_StringType);
    TParamList noInput = MakeParams({{"Input", ""}, {"Output", "Out"}, {"UpperCase", "True"}});
    TParamList noOutput = MakeParams({{"Input", "abc"}, {"Output", ""}, {"UpperCase", "True"}});
    command.Run(noInput);
    command.Run(noOutput);
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST_F(StringBearbeitungTest, CutIsWrittenNumericallyAndEveryOtherBooleanAsWord)
{
    TDVCmdStringConversion::TFields f;
    f.cut = true;
    f.upperCase = true;
    command.SetFields(f);
    TParamList params;
    command.ReadParams(params);
    EXPECT_EQ(params.GetString("Cut"), "-1");
    EXPECT_EQ(params.GetString("UpperCase"), "True");
    EXPECT_EQ(params.GetString("Round"), "False");
    f.cut = false;
    command.SetFields(f);
    command.ReadParams(params);
    EXPECT_EQ(params.GetString("Cut"), "0");
}

TEST_F(StringBearbeitungTest, ReadParamsFollowsTheSignatureAndReadsBack)
{
    TDVCmdStringConversion::TFields f;
    f.input = "abc";
    f.output = "Out";
    f.search = "b";
    f.searchFlag = true;
    f.fragment = true;
    f.cut = false;
    f.fragPos = TFragPosition::fpCenter;
    f.trim = true;
    f.trimMode = 3;
    f.count = "x";
    f.countFlag = true;
    f.replacePos = "2";
    f.replaceWith = "Q";
    command.SetFields(f);
    TParamList params;
    command.ReadParams(params);
    EXPECT_EQ(params.Names(), command.Signature().ParamNames());
    EXPECT_EQ(params.GetString("FragPos"), "\"Center\"");

    command.SetDefaults();
    command.SetParams(params);
    EXPECT_EQ(command.Fields(), f);
}

TEST_F(StringBearbeitungTest, SearchIsWrittenOnlyWithItsFlag)
{
    TDVCmdStringConversion::TFields f;
    f.search = "Welt";
    f.searchFlag = false;
    command.SetFields(f);
    TParamList params;
    command.ReadParams(params);
    EXPECT_EQ(params.GetString("Search"), "");
}

TEST(FragPositionTest, ParamToPositionAndBack)
{
    const std::pair<const char*, TFragPosition> rows[] = {
        {"CENTER", TFragPosition::fpCenter}, {"center", TFragPosition::fpCenter}, {"Right", TFragPosition::fpRight},
        {"Left", TFragPosition::fpLeft},     {"", TFragPosition::fpLeft},         {"Mid", TFragPosition::fpLeft},
        {"\"Right\"", TFragPosition::fpLeft},  // quotes are stripped before, by SetParams
    };
    for (const auto& [text, position] : rows) EXPECT_EQ(ParamToPosition(text), position) << text;
    EXPECT_EQ(GetPositionParam(TFragPosition::fpLeft), "\"Left\"");
    EXPECT_EQ(GetPositionParam(TFragPosition::fpRight), "\"Right\"");
}

TEST_F(StringBearbeitungTest, FormatStrLinesDecode)
{
    struct Row {
        const char* line;
        TParamRows expected;  // entries of the resulting list that matter here
    };
    const Row rows[] = {
        {"FormatStr(IN:abcdef,CUT:RIGHT:P1:0:L:2,OUT:Res);",
         {{"Input", "abcdef"}, {"Output", "Res"}, {"Fragment", "True"}, {"Cut", "-1"},
          {"FragPos", "\"Right\""}, {"Pos", "0"}, {"Length", "2"}}},
        {"FormatStr(IN:abcdef,DEL:MID:P1:2:L:3,OUT:Res);",
         {{"Fragment", "True"}, {"Cut", "0"}, {"FragPos", "\"Center\""}, {"Pos", "2"}, {"Length", "3"}}},
        {"FormatStr(IN:x,OUT:R);", {{"Fragment", "False"}, {"Cut", "0"}, {"Part", "0"}, {"Search", ""}}},
        {"FormatStr(IN:x,POS:(a,b),OUT:R);", {{"Search", "a,b"}}},
        {"FormatStr(IN:x,POS:Welt,OUT:R);", {{"Search", "Welt"}}},
        {"FormatStr(IN:x,SEG:SEP:;:PART:2,OUT:R);", {{"Segment", "True"}, {"Separator", ";"}, {"Part", "2"}}},
        {"FormatStr(IN:x,SEG:SEP:;:,OUT:R);", {{"Segment", "True"}, {"Part", "0"}}},
        {"FormatStr(IN:x,CHARCOUNT:a,OUT:R);", {{"Count", "a"}}},
        {"FormatStr(IN:x,MATH,UPPERCASE,ROUND,OUT:R);", {{"Convert", "True"}, {"UpperCase", "True"}, {"Round", "True"}}},
        {"FormatStr(IN:x,TRIM:2,OUT:R);", {{"Trim", "True"}, {"TrimMode", "2"}}},
        {"FormatStr(IN:x,TRIM:zz,OUT:R);", {{"Trim", "True"}, {"TrimMode", "0"}}},
        {"FormatStr(IN:x,REPLACE:3@XY,OUT:R);", {{"Replace", "True"}, {"ReplacePos", "3"}, {"ReplaceWith", "XY"}}},
    };
    for (const Row& r : rows) {
        TParamList params;
        ASSERT_TRUE(command.DecodeScript(r.line, params, nullptr)) << r.line;
        EXPECT_EQ(params.Names(), command.Signature().ParamNames());
        for (const auto& [name, text] : r.expected) EXPECT_EQ(params.GetString(name), QString::fromUtf8(text)) << r.line << " " << name;
    }
}

TEST_F(StringBearbeitungTest, FormatStrKeepsTheMisspeltLengthKeyword)
{
    TParamList params;
    ASSERT_TRUE(command.DecodeScript("FormatStr(IN:abc,LENGHT,OUT:R);", params, nullptr));
    EXPECT_EQ(params.GetString("StrLen"), "True");
    ASSERT_TRUE(command.DecodeScript("FormatStr(IN:abc,LENGTH,OUT:R);", params, nullptr));
    EXPECT_EQ(params.GetString("StrLen"), "False");
}

TEST_F(StringBearbeitungTest, OtherLinesAreLeftToTheHostWithFieldsCleared)
{
    TDVCmdStringConversion::TFields old;
    old.input = "alt";
    old.upperCase = true;
    command.SetFields(old);
    TParamList params = MakeParams({{"Input", "unverändert"}});
    EXPECT_FALSE(command.DecodeScript("StringBearbeitung(Input := \"x\");", params, nullptr));
    EXPECT_EQ(params.GetString("Input"), "unverändert");
    EXPECT_TRUE(command.Fields().input.isEmpty());
    EXPECT_FALSE(command.Fields().upperCase);
}

TEST_F(StringBearbeitungTest, DecodedLineRuns)
{
    TParamList params;
    ASSERT_TRUE(command.DecodeScript("FormatStr(IN:abcdef,CUT:RIGHT:P1:0:L:2,OUT:Out);", params, nullptr));
    host.Declare("Out", g_StringType);
    command.Run(params);
    EXPECT_EQ(host.ValueText("Out"), "ef");
}

}  // namespace
}  // namespace dv
