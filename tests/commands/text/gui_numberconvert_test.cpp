#include "commands/text/gui_numberconvert.h"
#include "framework/exceptions.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

namespace dv {
namespace {

using test::MakeParams;

class NumberConvertTest : public ::testing::Test {
protected:
    NumberConvertTest() { host.Declare("Out", g_NumberType); }

    // Runs one conversion into "Out"; the message of a raised error goes to lastError.
    bool Convert(const char* operation, const char* input, const char* stellen = "0")
    {
        TParamList params = MakeParams({{"Operation", operation}, {"Input", input}, {"Output", "Out"}, {"Stellen", stellen}});
        try {
            command.Run(params);
            return true;
        } catch (const TDVRuntimeException& e) {
            lastError = e.Message();
            return false;
        }
    }
    long double Number() const { return static_cast<const TNumberValue*>(host.Value("Out"))->GetVal(); }

    test::TTestHost host;
    TDVCmdNumberConversion command{&host};
    QString lastError;
};

TEST_F(NumberConvertTest, OperationsGiveNumbers)
{
    struct Row {
        const char* operation;
        const char* input;
        const char* stellen;
        long double expected;
    };
    const Row rows[] = {
        {"ccBinToInt", "1010", "0", 10},
        {"ccHexToInt", "FF", "0", 255},
        {"ccHexToInt", "$FF", "0", 255},
        {"ccHexToInt", "7fffffff", "0", 2147483647},
        {"ccHexToInt", "FFFFFFFF", "0", -1},  // read as a 32-bit integer
        {"ccOrd", "A", "0", 65},
        {"ccOrd", "€uro", "0", 128},          // Windows-1252, not UTF-16
        {"ccOrd", "Я", "0", 63},              // outside the code page
        {"ccHigh", "4660", "0", 18},
        {"ccLow", "4660", "0", 52},
        {"ccHigh", "-1", "0", 255},
        {"ccRound", "2.5", "0", 2},
        {"ccRound", "3.5", "0", 4},
        {"ccRound", "1.23456", "2", 1.23L},
        {"ccRound", "-1.005", "1", -1.0L},
        {"cc4ByteHexToFloat", "3F800000", "0", 1.0L},
        {"cc4ByteHexToFloat", "C0000000", "0", -2.0L},
        {"cc4ByteHexToFloat", "3F8", "0", 1.0L},
        // Single-precision pi as numpy's float32 gives it.
        {"cc4ByteHexToFloat", "40490FDB", "0", 3.1415927410125732L},
        {"ccSumOfArray", "{1}{2}{3.5}", "0", 6.5L},
        {"ccSumOfArray", "[10]", "0", 10},
        {"ccMaxArrayEntry", "{72}{65}{76}", "0", 3},
        {"ccMaxArrayEntry", "5", "0", 0},  // no array: a number made without a value
    };
    for (const Row& r : rows) {
        ASSERT_TRUE(Convert(r.operation, r.input, r.stellen)) << r.operation << " " << r.input << ": " << lastError.toStdString();
        ASSERT_EQ(host.Value("Out")->GetType().kind, TValueKind::Number) << r.operation;
        EXPECT_NEAR(static_cast<double>(Number()), static_cast<double>(r.expected), 1e-15 * std::fabs(static_cast<double>(r.expected)))
            << r.operation << " " << r.input;
    }
}

TEST_F(NumberConvertTest, OperationsGiveStrings)
{
    struct Row {
        const char* operation;
        const char* input;
        const char* stellen;
        const char* expected;
    };
    const Row rows[] = {
        {"ccIntToBin", "5", "8", "00000101"},  // Stellen is the digit count
        {"ccIntToBin", "5", "0", "101"},
        {"ccIntToBin", "kein", "4", "0000"},  // no number reads as 0
        {"ccIntToHex", "255", "4", "00FF"},
        {"ccIntToHex", "255", "0", "FF"},
        {"ccIntToHex", "-1", "2", "FFFFFFFF"},
        {"ccASCII", "65", "0", "A"},
        {"ccASCII", "128", "0", "€"},
    };
    for (const Row& r : rows) {
        ASSERT_TRUE(Convert(r.operation, r.input, r.stellen)) << r.operation << ": " << lastError.toStdString();
        EXPECT_EQ(host.Value("Out")->GetType().kind, TValueKind::String) << r.operation;
        EXPECT_EQ(host.ValueText("Out"), QString::fromUtf8(r.expected)) << r.operation << " " << r.input;
    }
}

TEST_F(NumberConvertTest, HexToIntOfNoHexNumberGivesTheLargestDouble)
{
    ASSERT_TRUE(Convert("ccHexToInt", "XYZ"));
    EXPECT_EQ(Number(), static_cast<long double>(1.7976931348623157e308));  // the double literal, widened
    ASSERT_TRUE(Convert("ccHexToInt", "100000000"));  // past 32 bits
    EXPECT_EQ(Number(), static_cast<long double>(1.7976931348623157e308));  // the double literal, widened
}

TEST_F(NumberConvertTest, RoundUsesASinglePrecisionFactor)
{
    // 99999997952 is the single nearest to 1e11 (numpy.float32(1e11)); 1e-11 scaled by it rounds to
    // 1 and comes back as 1 / 99999997952, not as 1e-11.
    ASSERT_TRUE(Convert("ccRound", "1e-11", "11"));
    EXPECT_EQ(Number(), 1.0L / 99999997952.0L);
    EXPECT_NE(Number(), 1e-11L);
}

TEST_F(NumberConvertTest, StellenIsKeptInEightBits)
{
    TParamList params = MakeParams({{"Operation", "ccIntToHex"}, {"Stellen", "300"}});
    command.SetParams(params);
    EXPECT_EQ(command.Fields().digits, 44);
    command.ReadParams(params);
    EXPECT_EQ(params.GetString("Stellen"), "44");
    params.AddString("Stellen", "-1");
    command.SetParams(params);
    EXPECT_EQ(command.Fields().digits, 255);
}

TEST_F(NumberConvertTest, UnknownOperationRunsAsBinToInt)
{
    for (const char* keyword : {"ccFoo", "ccinttohex", ""}) {
        ASSERT_TRUE(Convert(keyword, "101")) << keyword;
        EXPECT_EQ(Number(), 5) << keyword;
    }
}

TEST_F(NumberConvertTest, RandomDrawsOneToN)
{
    std::set<long double> seen;
    for (int i = 0; i < 600; ++i) {
        ASSERT_TRUE(Convert("ccRandom", "6"));
        seen.insert(Number());
    }
    EXPECT_EQ(seen, (std::set<long double>{1, 2, 3, 4, 5, 6}));
    ASSERT_TRUE(Convert("ccRandom", "0.4"));  // rounds to 0: nothing to draw from
    EXPECT_EQ(Number(), 1);
}

TEST_F(NumberConvertTest, BadInputRaisesAndWritesNothing)
{
    struct Row {
        const char* operation;
        const char* input;
        const char* messagePart;
    };
    const Row rows[] = {
        {"ccIntToHex", "", "Es wurde eine leere Eingabe übergeben."},
        {"ccBinToInt", "102", "102"},
        {"ccASCII", "A", "\"A\""},
        {"ccHigh", "1.5", "1.5"},
        {"ccLow", "x", "\"x\""},
        {"cc4ByteHexToFloat", "3G800000", "$3G"},
        {"ccRound", "abc", "abc"},
        {"ccRandom", "sechs", "sechs"},
        {"ccSumOfArray", "5", "Typumwandlung"},
        {"ccSumOfArray", "{1}{x}", "Typumwandlung"},
    };
    for (const Row& r : rows) {
        host.setVariableCalls.clear();
        EXPECT_FALSE(Convert(r.operation, r.input)) << r.operation << " " << r.input;
        EXPECT_TRUE(lastError.contains(QString::fromUtf8(r.messagePart))) << lastError.toStdString();
        EXPECT_TRUE(host.setVariableCalls.isEmpty()) << r.operation;
    }
}

TEST(NumberOperationTableTest, KeywordsReadAndWriteBack)
{
    for (const TNumberOperationRow& row : NumberOperations()) {
        EXPECT_EQ(GetOperationString(SetOperation(row.keyword)), row.keyword);
    }
    EXPECT_EQ(GetOperationString(0), "ccBinToInt");     // limited to 1..13
    EXPECT_EQ(GetOperationString(14), "ccSumOfArray");
}

TEST_F(NumberConvertTest, OlderLinesDecode)
{
    struct Row {
        const char* line;
        int operation;
        const char* keyword;
        const char* input;
        const char* output;
        const char* stellen;
    };
    const Row rows[] = {
        {"IntToHex(IN:255,OUT:H):4;", 3, "ccIntToHex", "255", "H", "4"},
        {"  RND(IN:6,OUT:W):;  ", 5, "ccRandom", "6", "W", "0"},
        {"4BYTEHEX_TO_FLOAT(IN:3F800000,OUT:F):0;", 12, "cc4ByteHexToFloat", "3F800000", "F", "0"},
        {"ROUND(IN:1.5,OUT:R):300;", 11, "ccRound", "1.5", "R", "44"},
        // An unknown older keyword is operation 14, which the list can only write as the last keyword.
        {"round(IN:1,OUT:X):0;", 14, "ccSumOfArray", "1", "X", "0"},
        {"no parenthesis", 1, "ccBinToInt", "", "", "0"},
    };
    for (const Row& r : rows) {
        TParamList params;
        ASSERT_TRUE(command.DecodeScript(r.line, params, nullptr)) << r.line;
        EXPECT_EQ(command.Fields().operation, r.operation) << r.line;
        EXPECT_EQ(params.Names(), command.Signature().ParamNames());
        EXPECT_EQ(params.GetString("Operation"), r.keyword) << r.line;
        EXPECT_EQ(params.GetString("Input"), r.input) << r.line;
        EXPECT_EQ(params.GetString("Output"), r.output) << r.line;
        EXPECT_EQ(params.GetString("Stellen"), r.stellen) << r.line;
    }
    EXPECT_TRUE(command.OlderNames().contains("SUM_OF_ARRAY"));
}

TEST_F(NumberConvertTest, OperationFourteenComputesNothing)
{
    TDVCmdNumberConversion::TFields f;
    f.operation = 14;
    f.input = "1";
    f.output = "Out";
    EXPECT_EQ(TDVCmdNumberConversion::Convert(f, TParamList{}), nullptr);
}

}  // namespace
}  // namespace dv
