#include "commands/text/gui_stringbearbeitung.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

class StringBearbeitungTest : public ::testing::Test {
protected:
    // Runs with Input and Output "Out" plus the switches: "S:" or "N:" and what it wrote, "-" when it wrote
    // nothing, or "!" and the error.
    QString RunWith(const char* input, TParamRows switches)
    {
        TParamList params = MakeParams({{"Input", input}, {"Output", "Out"}});
        for (const auto& [name, text] : switches) params.AddString(name, QString::fromUtf8(text));
        host.Declare("Out", g_StringType);
        host.setVariableCalls.clear();
        if (const auto error = RaisedMessage([&] { command.Run(params); })) return "!" + *error;
        if (host.setVariableCalls.isEmpty()) return "-";
        const TValueKind kind = host.Value("Out")->GetType().kind;
        return (kind == TValueKind::String ? "S:" : kind == TValueKind::Number ? "N:" : "?:") + host.ValueText("Out");
    }

    TTestHost host;
    TDVCmdStringConversion command{&host};
};

TEST_F(StringBearbeitungTest, StepsGiveTheirResultAndKindOrRaiseAndWriteNothing)
{
    const struct { const char* input; TParamRows switches; const char* expected; } rows[] = {
        {"Hallo Welt", {{"UpperCase", "True"}}, "S:HALLO WELT"}, {"Hallo Welt", {{"Search", "Welt"}}, "N:7"},
        {"Hallo Welt", {{"StrLen", "True"}}, "N:10"}, {"42", {{"Convert", "True"}}, "N:42"},
        // Each step sees the result of the ones before: search runs on the upper-cased text.
        {"Hallo Welt", {{"UpperCase", "True"}, {"Search", "Welt"}}, "N:0"},
        // An unknown anchor is Left; quotes are stripped and case is ignored.
        {"abcdef", {{"Fragment", "True"}, {"Cut", "-1"}, {"FragPos", "Mid"}, {"Length", "3"}}, "S:abc"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "0"}, {"Length", "3"}}, "S:def"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "-1"}, {"FragPos", "\"Right\""}, {"Length", "2"}}, "S:ef"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "-1"}, {"FragPos", "\"center\""}, {"Pos", "2"}, {"Length", "3"}}, "S:bcd"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "0"}, {"FragPos", "CENTER"}, {"Pos", "2"}, {"Length", "3"}}, "S:aef"},
        {"abcdef", {{"Fragment", "True"}, {"Cut", "0"}, {"FragPos", "Right"}, {"Length", "10"}}, "S:abcdef"},  // nothing deleted
        // With the search flag the centre fragment starts where Search was found.
        {"abcdef", {{"Search", "cd"}, {"Fragment", "True"}, {"Cut", "-1"}, {"FragPos", "Center"}, {"Length", "2"}}, "S:cd"},
        {"a;b;c", {{"Segment", "True"}, {"Separator", ";"}, {"Part", "2"}}, "S:b"},
        // With StrLen the segment is taken from the text; a deleted fragment stays deleted for it.
        {"abc;def;g", {{"Fragment", "True"}, {"Cut", "0"}, {"Length", "4"}, {"StrLen", "True"},
                       {"Segment", "True"}, {"Separator", ";"}, {"Part", "1"}}, "S:def"},
        {"12.5", {{"Round", "True"}}, "N:12"}, {"13.5", {{"Round", "True"}}, "N:14"},
        {"\t ab \r", {{"Trim", "True"}, {"TrimMode", "1"}}, "S:ab"},
        {"  ab  ", {{"Trim", "True"}, {"TrimMode", "2"}}, "S:ab  "}, {"  ab  ", {{"Trim", "True"}, {"TrimMode", "3"}}, "S:  ab"},
        {" 42 ", {{"Trim", "True"}, {"TrimMode", "0"}}, "S: 42 "},  // trims nothing, still a string
        {"abcdef", {{"Replace", "True"}, {"ReplacePos", "2"}, {"ReplaceWith", "XY"}}, "S:aXYdef"}, {"Hallo", {{"Count", "l"}}, "N:2"},
        {"42", {}, "N:42"}, {"Hallo", {}, "!Hallo"},  // no step chose a kind: a number made from the text
        {"", {{"UpperCase", "True"}}, "-"}, {"abc", {{"Output", ""}, {"UpperCase", "True"}}, "-"},  // no Input or Output: nothing
        {"abc", {{"Round", "True"}}, "!abc"}, {"1e30", {{"Round", "True"}}, "!Gleitkommaoperation"},  // past 64 bits
        {"a;b", {{"Segment", "True"}, {"Separator", ";"}, {"Part", "zwei"}}, "!zwei"},
        {"abc", {{"Replace", "True"}, {"ReplacePos", "p"}, {"ReplaceWith", "X"}}, "!\"p\""},
    };
    for (const auto& r : rows) {
        const QString got = RunWith(r.input, r.switches), expected = QString::fromUtf8(r.expected);
        if (!expected.startsWith('!')) {
            EXPECT_EQ(got, expected) << r.input;
            continue;
        }
        EXPECT_TRUE(got.startsWith('!') && got.contains(expected.mid(1))) << r.input << ": " << got.toStdString();
        EXPECT_TRUE(host.setVariableCalls.isEmpty()) << r.input;
    }
}

TEST_F(StringBearbeitungTest, FormatStrLinesDecodeIntoAListThatReadsBack)
{
    const struct { const char* line; TParamRows expected; } rows[] = {
        // Cut is written as -1 or 0, unlike every other boolean.
        {"FormatStr(IN:ab,CUT:RIGHT:P1:0:L:2,OUT:R);", {{"Input", "ab"}, {"Output", "R"}, {"Cut", "-1"}, {"FragPos", "\"Right\""}}},
        {"FormatStr(DEL:MID:P1:2:L:3,);", {{"Fragment", "True"}, {"Cut", "0"}, {"FragPos", "\"Center\""}, {"Pos", "2"}, {"Length", "3"}}},
        {"FormatStr(IN:x,OUT:R);", {{"Fragment", "False"}, {"Cut", "0"}, {"Part", "0"}, {"Search", ""}}},
        {"FormatStr(IN:x,POS:(a,b),OUT:R);", {{"Search", "a,b"}}}, {"FormatStr(IN:x,POS:Welt,OUT:R);", {{"Search", "Welt"}}},
        {"FormatStr(IN:x,SEG:SEP:;:PART:2,OUT:R);", {{"Segment", "True"}, {"Separator", ";"}, {"Part", "2"}}},
        {"FormatStr(IN:x,SEG:SEP:;:,OUT:R);", {{"Segment", "True"}, {"Part", "0"}}},  // Part defaults to 0
        {"FormatStr(IN:x,CHARCOUNT:a,MATH,UPPERCASE,ROUND,OUT:R);",
         {{"Count", "a"}, {"Convert", "True"}, {"UpperCase", "True"}, {"Round", "True"}}},
        {"FormatStr(IN:x,TRIM:2,OUT:R);", {{"Trim", "True"}, {"TrimMode", "2"}}}, {"FormatStr(IN:x,TRIM:zz,OUT:R);", {{"TrimMode", "0"}}},
        {"FormatStr(IN:x,REPLACE:3@XY,OUT:R);", {{"Replace", "True"}, {"ReplacePos", "3"}, {"ReplaceWith", "XY"}}},
        // The older keyword for the length is spelt LENGHT; the correct spelling means nothing.
        {"FormatStr(IN:abc,LENGHT,OUT:R);", {{"StrLen", "True"}}}, {"FormatStr(IN:abc,LENGTH,OUT:R);", {{"StrLen", "False"}}},
    };
    for (const auto& r : rows) {
        TParamList params;
        ASSERT_TRUE(command.DecodeScript(r.line, params, nullptr)) << r.line;
        for (const auto& [name, text] : r.expected) EXPECT_EQ(params.GetString(name), QString::fromUtf8(text)) << r.line << " " << name;
        EXPECT_EQ(ReadBack(command, params), params) << r.line;
        EXPECT_EQ(params.Names(), command.Signature().ParamNames());
    }
    // Other lines are left to the host, with the fields (still holding the last line) cleared.
    TParamList params = MakeParams({{"Input", "unverändert"}});
    EXPECT_FALSE(command.DecodeScript("StringBearbeitung(Input := \"x\");", params, nullptr));
    EXPECT_EQ(params, MakeParams({{"Input", "unverändert"}}));
    EXPECT_EQ(command.Fields().input, "");
}

}  // namespace
}  // namespace dv
