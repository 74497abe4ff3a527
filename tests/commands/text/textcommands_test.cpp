// The text commands run on a test host and through the real one: ArrayToStr and StrToArray,
// NumberConvert and StringBearbeitung, and their older lines.
#include "commands/text/gui_arraytostr.h"
#include "commands/text/gui_numberconvert.h"
#include "commands/text/gui_stringbearbeitung.h"
#include "commands/text/gui_strtoarray.h"
#include "tests/commands/params.h"
#include "tests/host/scriptrun.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

namespace dv {
namespace {

using namespace test;

// A run's outcome against the expected one: an expected "!" and text is an error naming the text,
// after which the run wrote nothing.
void ExpectOutcome(const QString& got, const char* expected, const TTestHost& host, const std::string& what)
{
    const QString want = QString::fromUtf8(expected);
    if (!want.startsWith('!')) {
        EXPECT_EQ(got, want) << what;
        return;
    }
    EXPECT_TRUE(got.startsWith('!') && got.contains(want.mid(1))) << what << ": " << got.toStdString();
    EXPECT_TRUE(host.setVariableCalls.isEmpty()) << what;
}

class ArrayStringTest : public ::testing::Test {
protected:
    // Each runs its command: the text of the variable it fills, or "!" and the message of the error raised.
    QString ToStr(const char* arr)
    {
        TParamList params = MakeParams({{"Str", "S"}, {"Arr", arr}});
        const auto error = RaisedMessage([&] { toStr.Run(params); });
        return error ? "!" + *error : host.ValueText("S");
    }
    QString ToArray(const char* str, const char* arr = "A")
    {
        TParamList params = MakeParams({{"str", str}, {"arr", arr}});
        const auto error = RaisedMessage([&] { toArray.Run(params); });
        return error ? "!" + *error : host.ValueText(arr);
    }

    TTestHost host;
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
    const struct { const char *lines, *expected; } rows[] = {  // the lines leave the result in S; nullptr: no result
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
        // A value that is no array is an invalid cast.
        {"var M : Misc = \"Hallo Welt\"\nArrayToStr(S, M)", nullptr},
        {"var M : Misc = 65\nArrayToStr(S, M)", nullptr},
        {"var M : Misc = \"{72}{65\"\nArrayToStr(S, M)", nullptr},
    };
    for (const auto& r : rows) {
        const QString script = QString("var S : String = \"vorher\"\n") + r.lines + "\nLog(\"<\" + S + \">\")";
        const host::test::TScriptOutcome run = host::test::RunScriptText(script);
        EXPECT_EQ(run.exitCode, r.expected ? 0 : 1) << r.lines << "\n" << run.errors.join('\n').toStdString();
        EXPECT_EQ(run.output, r.expected ? QStringList{QString("<%1>").arg(QString::fromUtf8(r.expected))} : QStringList()) << r.lines;
        EXPECT_TRUE(r.expected || run.errors.join('\n').contains("Ungültige Typumwandlung")) << run.errors.join('\n').toStdString();
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

class NumberConvertTest : public ::testing::Test {
protected:
    NumberConvertTest() { host.Declare("Out", g_NumberType); }

    // Runs one conversion into "Out": "N:" and the number to 15 digits, "S:" and the string, or "!" and the error.
    QString Convert(const char* operation, const char* input, const char* stellen = "0")
    {
        TParamList params = MakeParams({{"Operation", operation}, {"Input", input}, {"Output", "Out"}, {"Stellen", stellen}});
        host.setVariableCalls.clear();
        if (const auto error = RaisedMessage([&] { command.Run(params); })) return "!" + *error;
        const TValue* out = host.Value("Out");
        if (const auto* number = dynamic_cast<const TNumberValue*>(out)) return "N:" + QString::number(double(number->GetVal()), 'g', 15);
        return (out->GetType().kind == TValueKind::String ? "S:" : "?:") + out->AsText();
    }

    TTestHost host;
    TDVCmdNumberConversion command{&host};
};

TEST_F(NumberConvertTest, OperationsGiveTheirResultsOrRaiseAndWriteNothing)
{
    const std::tuple<const char*, const char*, const char*, const char*> rows[] = {
        {"ccBinToInt", "1010", "0", "N:10"}, {"ccFoo", "101", "0", "N:5"}, {"ccinttohex", "101", "0", "N:5"},  // unknown: ccBinToInt
        {"ccIntToBin", "5", "8", "S:00000101"}, {"ccIntToBin", "kein", "4", "S:0000"},  // Stellen digits; no number is 0
        {"ccIntToHex", "255", "4", "S:00FF"}, {"ccIntToHex", "-1", "2", "S:FFFFFFFF"}, {"ccIntToBin", "1", "258", "S:01"},  // 8 bits
        {"ccHexToInt", "FF", "0", "N:255"}, {"ccHexToInt", "$FF", "0", "N:255"},
        {"ccHexToInt", "FFFFFFFF", "0", "N:-1"},  // read as a 32-bit integer
        // No hexadecimal 32-bit number: the largest double, 1.7976931348623157e308.
        {"ccHexToInt", "XYZ", "0", "N:1.79769313486232e+308"}, {"ccHexToInt", "100000000", "0", "N:1.79769313486232e+308"},
        {"ccOrd", "€uro", "0", "N:128"}, {"ccOrd", "Я", "0", "N:63"}, {"ccASCII", "128", "0", "S:€"},  // Windows-1252 codes
        {"ccHigh", "4660", "0", "N:18"}, {"ccLow", "4660", "0", "N:52"}, {"ccHigh", "-1", "0", "N:255"},
        {"ccRound", "2.5", "0", "N:2"}, {"ccRound", "3.5", "0", "N:4"}, {"ccRound", "1.23456", "2", "N:1.23"},
        // The factor is a single: numpy.float32(1e11) is 99999997952, so 1e-11 comes back as 1 / 99999997952.
        {"ccRound", "1e-11", "11", "N:1.00000002048e-11"},
        {"cc4ByteHexToFloat", "3F800000", "0", "N:1"}, {"cc4ByteHexToFloat", "C0000000", "0", "N:-2"},
        {"cc4ByteHexToFloat", "3F8", "0", "N:1"}, {"cc4ByteHexToFloat", "40490FDB", "0", "N:3.14159274101257"},  // numpy.float32(pi)
        {"ccSumOfArray", "{1}{2}{3.5}", "0", "N:6.5"},
        {"ccMaxArrayEntry", "{72}{65}{76}", "0", "N:3"}, {"ccMaxArrayEntry", "5", "0", "N:0"},  // no array: a number without a value
        {"ccIntToHex", "", "0", "!Es wurde eine leere Eingabe übergeben."},
        {"ccBinToInt", "102", "0", "!102"}, {"ccASCII", "A", "0", "!\"A\""}, {"ccHigh", "1.5", "0", "!1.5"},
        {"cc4ByteHexToFloat", "3G800000", "0", "!$3G"}, {"ccRound", "abc", "0", "!abc"}, {"ccRandom", "sechs", "0", "!sechs"},
        {"ccSumOfArray", "5", "0", "!Typumwandlung"}, {"ccSumOfArray", "{1}{x}", "0", "!Typumwandlung"},
    };
    for (const auto& [operation, input, stellen, expected] : rows) {
        ExpectOutcome(Convert(operation, input, stellen), expected, host, std::string(operation) + " " + input);
    }
    std::set<QString> seen;  // ccRandom with 6 draws 1 to 6
    for (int i = 0; i < 600; ++i) seen.insert(Convert("ccRandom", "6"));
    EXPECT_EQ(seen, (std::set<QString>{"N:1", "N:2", "N:3", "N:4", "N:5", "N:6"}));
    EXPECT_EQ(Convert("ccRandom", "0.4"), "N:1");  // rounds to 0: nothing to draw from, so 0 + 1
}

TEST_F(NumberConvertTest, OlderLinesDecode)
{
    struct Row { const char* line; int operation; const char* list[4]; };  // the list: Operation, Input, Output, Stellen
    const Row rows[] = {
        {"IntToHex(IN:255,OUT:H):4;", 3, {"ccIntToHex", "255", "H", "4"}},
        {"  RND(IN:6,OUT:W):;  ", 5, {"ccRandom", "6", "W", "0"}},
        {"ROUND(IN:1.5,OUT:R):300;", 11, {"ccRound", "1.5", "R", "44"}},  // Stellen is kept in 8 bits
        // An unknown older keyword is operation 14, which the list can only write as the last keyword.
        {"round(IN:1,OUT:X):0;", 14, {"ccSumOfArray", "1", "X", "0"}},
        {"no parenthesis", 1, {"ccBinToInt", "", "", "0"}},
    };
    for (const Row& r : rows) {
        TParamList params;
        ASSERT_TRUE(command.DecodeScript(r.line, params, nullptr)) << r.line;
        EXPECT_EQ(command.Fields().operation, r.operation) << r.line;
        EXPECT_EQ(params, MakeParams({{"Operation", r.list[0]}, {"Input", r.list[1]}, {"Output", r.list[2]}, {"Stellen", r.list[3]}}));
        EXPECT_EQ(ReadBack(command, params), params) << r.line;
    }
}

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
