#include "commands/text/gui_numberconvert.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <set>
#include <tuple>

namespace dv {
namespace {

using test::MakeParams;

class NumberConvertTest : public ::testing::Test {
protected:
    NumberConvertTest() { host.Declare("Out", g_NumberType); }

    // Runs one conversion into "Out": "N:" and the number to 15 digits, "S:" and the string, or "!" and the error.
    QString Convert(const char* operation, const char* input, const char* stellen = "0")
    {
        TParamList params = MakeParams({{"Operation", operation}, {"Input", input}, {"Output", "Out"}, {"Stellen", stellen}});
        host.setVariableCalls.clear();
        if (const auto error = test::RaisedMessage([&] { command.Run(params); })) return "!" + *error;
        const TValue* out = host.Value("Out");
        if (const auto* number = dynamic_cast<const TNumberValue*>(out)) return "N:" + QString::number(double(number->GetVal()), 'g', 15);
        return (out->GetType().kind == TValueKind::String ? "S:" : "?:") + out->AsText();
    }

    test::TTestHost host;
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
        const QString got = Convert(operation, input, stellen), want = QString::fromUtf8(expected);
        if (!want.startsWith('!')) {
            EXPECT_EQ(got, want) << operation << " " << input;
            continue;
        }
        EXPECT_TRUE(got.startsWith('!') && got.contains(want.mid(1))) << operation << " " << input << ": " << got.toStdString();
        EXPECT_TRUE(host.setVariableCalls.isEmpty()) << operation;
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
        EXPECT_EQ(test::ReadBack(command, params), params) << r.line;
    }
}

}  // namespace
}  // namespace dv
