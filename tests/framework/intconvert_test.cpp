#include "framework/exceptions.h"
#include "framework/intconvert.h"

#include <gtest/gtest.h>

#include <limits>

namespace dv {
namespace {

TEST(IntConvertTest, StrToIntReadsDecimalAndHexadecimal)
{
    const std::pair<const char*, std::int32_t> rows[] = {
        {"42", 42},          {"  -7", -7},        {"+3", 3},           {"$FF", 255},
        {"0x1f", 31},        {"x1F", 31},         {"$FFFFFFFF", -1},   {"-$10", -16},       {"2147483647", 2147483647},
        {"-2147483648", -2147483647 - 1},
    };
    for (const auto& [text, value] : rows) EXPECT_EQ(StrToInt(text), value) << text;
}

TEST(IntConvertTest, StrToIntRejectsEverythingElse)
{
    for (const char* text : {"", " ", "12 ", "1.5", "x", "$", "$G", "2147483648", "$100000000", "--1", "١٢"}) {
        EXPECT_THROW(StrToInt(text), TDVRuntimeException) << text;
        EXPECT_EQ(StrToIntDef(text, -99), -99) << text;
    }
}

TEST(IntConvertTest, StrictBooleansAreWordsOrIntegers)
{
    EXPECT_TRUE(StrToBoolStrict("TRUE"));
    EXPECT_FALSE(StrToBoolStrict("false"));
    EXPECT_TRUE(StrToBoolStrict("-1"));
    EXPECT_FALSE(StrToBoolStrict("0"));
    for (const char* text : {"", "ja", "1.0"}) EXPECT_THROW(StrToBoolStrict(text), TDVRuntimeException) << text;
}

TEST(IntConvertTest, RoundHalfEvenAndItsLimits)
{
    EXPECT_EQ(RoundHalfEven(2.5L), 2);
    EXPECT_EQ(RoundHalfEven(3.5L), 4);
    EXPECT_EQ(RoundHalfEven(-0.5L), 0);
    EXPECT_THROW(RoundHalfEven(9.3e18L), TDVRuntimeException);
    EXPECT_THROW(RoundHalfEven(std::numeric_limits<long double>::quiet_NaN()), TDVRuntimeException);
}

}  // namespace
}  // namespace dv
