#include "commands/text/gui_numberconvert.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>
#include <tuple>

namespace dv {
namespace {

using test::MakeParams;

class NumberConvertTest : public ::testing::Test {
protected:
    NumberConvertTest() { host.Declare("Out", g_NumberType); }

    // Runs one conversion into "Out": true when it ran; the message of a raised error goes to error.
    bool Convert(const char* operation, const char* input, const char* stellen = "0")
    {
        TParamList params = MakeParams({{"Operation", operation}, {"Input", input}, {"Output", "Out"}, {"Stellen", stellen}});
        host.setVariableCalls.clear();
        return !(error = test::RaisedMessage([&] { command.Run(params); }));
    }
    long double Number() const { return static_cast<const TNumberValue*>(host.Value("Out"))->GetVal(); }

    test::TTestHost host;
    TDVCmdNumberConversion command{&host};
    std::optional<QString> error;
};

TEST_F(NumberConvertTest, OperationsGiveTheirResults)
{
    // A row with a text expects a string, one without it a number.
    struct Row { const char* operation; const char* input; const char* stellen; long double number; const char* text = nullptr; };
    const Row rows[] = {
        {"ccBinToInt", "1010", "0", 10},
        {"ccFoo", "101", "0", 5}, {"ccinttohex", "101", "0", 5},  // an unknown or miscased keyword runs as ccBinToInt
        {"ccIntToBin", "5", "8", 0, "00000101"}, {"ccIntToBin", "kein", "4", 0, "0000"},  // Stellen digits; no number is 0
        {"ccIntToHex", "255", "4", 0, "00FF"}, {"ccIntToHex", "-1", "2", 0, "FFFFFFFF"},
        {"ccHexToInt", "FF", "0", 255}, {"ccHexToInt", "$FF", "0", 255},
        {"ccHexToInt", "FFFFFFFF", "0", -1},  // read as a 32-bit integer
        {"ccHexToInt", "XYZ", "0", 1.7976931348623157e308}, {"ccHexToInt", "100000000", "0", 1.7976931348623157e308},
        {"ccOrd", "€uro", "0", 128}, {"ccOrd", "Я", "0", 63},  // Windows-1252 codes, not UTF-16
        {"ccASCII", "128", "0", 0, "€"},
        {"ccHigh", "4660", "0", 18}, {"ccLow", "4660", "0", 52}, {"ccHigh", "-1", "0", 255},
        {"ccRound", "2.5", "0", 2}, {"ccRound", "3.5", "0", 4}, {"ccRound", "1.23456", "2", 1.23L},
        // The factor is a single: numpy.float32(1e11) is 99999997952, so 1e-11 comes back as 1 / 99999997952.
        {"ccRound", "1e-11", "11", 1.0L / 99999997952.0L},
        {"cc4ByteHexToFloat", "3F800000", "0", 1}, {"cc4ByteHexToFloat", "C0000000", "0", -2},
        {"cc4ByteHexToFloat", "3F8", "0", 1}, {"cc4ByteHexToFloat", "40490FDB", "0", 3.1415927410125732L},  // numpy.float32(pi)
        {"ccSumOfArray", "{1}{2}{3.5}", "0", 6.5L},
        {"ccMaxArrayEntry", "{72}{65}{76}", "0", 3}, {"ccMaxArrayEntry", "5", "0", 0},  // no array: a number without a value
    };
    for (const Row& r : rows) {
        ASSERT_TRUE(Convert(r.operation, r.input, r.stellen)) << r.operation << " " << r.input << ": " << error->toStdString();
        if (r.text) {
            EXPECT_EQ(host.Value("Out")->GetType().kind, TValueKind::String) << r.operation;
            EXPECT_EQ(host.ValueText("Out"), QString::fromUtf8(r.text)) << r.operation << " " << r.input;
            continue;
        }
        ASSERT_EQ(host.Value("Out")->GetType().kind, TValueKind::Number) << r.operation;
        const double expected = static_cast<double>(r.number);
        EXPECT_NEAR(static_cast<double>(Number()), expected, 1e-15 * std::fabs(expected)) << r.operation << " " << r.input;
    }
}

TEST_F(NumberConvertTest, RandomDrawsOneToN)
{
    std::set<long double> seen;
    for (int i = 0; i < 600 && Convert("ccRandom", "6"); ++i) seen.insert(Number());
    EXPECT_EQ(seen, (std::set<long double>{1, 2, 3, 4, 5, 6}));
    ASSERT_TRUE(Convert("ccRandom", "0.4"));  // rounds to 0: nothing to draw from, so 0 + 1
    EXPECT_EQ(Number(), 1);
}

TEST_F(NumberConvertTest, BadInputRaisesAndWritesNothing)
{
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"ccIntToHex", "", "Es wurde eine leere Eingabe übergeben."},
        {"ccBinToInt", "102", "102"}, {"ccASCII", "A", "\"A\""}, {"ccHigh", "1.5", "1.5"},
        {"cc4ByteHexToFloat", "3G800000", "$3G"}, {"ccRound", "abc", "abc"}, {"ccRandom", "sechs", "sechs"},
        {"ccSumOfArray", "5", "Typumwandlung"}, {"ccSumOfArray", "{1}{x}", "Typumwandlung"},
    };
    for (const auto& [operation, input, messagePart] : rows) {
        EXPECT_FALSE(Convert(operation, input)) << operation << " " << input;
        EXPECT_TRUE(error->contains(QString::fromUtf8(messagePart))) << error->toStdString();
        EXPECT_TRUE(host.setVariableCalls.isEmpty()) << operation;
    }
}

TEST_F(NumberConvertTest, OlderLinesDecode)
{
    struct Row { const char* line; int operation; const char* list[4]; };  // the list: Operation, Input, Output, Stellen
    const Row rows[] = {
        {"IntToHex(IN:255,OUT:H):4;", 3, {"ccIntToHex", "255", "H", "4"}},
        {"  RND(IN:6,OUT:W):;  ", 5, {"ccRandom", "6", "W", "0"}},
        {"4BYTEHEX_TO_FLOAT(IN:3F800000,OUT:F):0;", 12, {"cc4ByteHexToFloat", "3F800000", "F", "0"}},
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
    }
}

}  // namespace
}  // namespace dv
