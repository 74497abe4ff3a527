#include "framework/dvtools.h"
#include "framework/exceptions.h"

#include <gtest/gtest.h>

#include <QTemporaryFile>

namespace dv {
namespace {

TEST(DvtoolsTest, GetStrPartTakesTextBetweenFirstStartAndFollowingStop)
{
    struct Row {
        const char* start;
        const char* stop;
        const char* source;
        const char* expected;
    };
    const Row rows[] = {
        {"(", ")", "ArrayToStr(A, B);", "A, B"},
        {"(", ")", "f(a(b)c)", "a(b"},           // the first ")" after "(" ends it
        {"(", ");", "StatusBar(x (y));", "x (y)"},  // ");" keeps an inner ")"
        {"(", ")", "no parenthesis", ""},
        {"(", ")", "open ( only", ""},
        {"IN:", ",OUT", "BinToInt(IN:101,OUT:X):0;", "101"},
        {"", ")", "abc)", "abc"},
    };
    for (const Row& r : rows) {
        EXPECT_EQ(GetStrPart(r.start, r.stop, r.source, 0), QString::fromUtf8(r.expected)) << r.source;
    }
}

TEST(DvtoolsTest, SegmentCountsFromOne)
{
    EXPECT_EQ(Segment("a,b,c", ",", 1), "a");
    EXPECT_EQ(Segment("a,b,c", ",", 3), "c");
    EXPECT_EQ(Segment("a,b,c", ",", 4), "");
    EXPECT_EQ(Segment("a,b,c", ",", 0), "");
    EXPECT_EQ(Segment(" A , B ", ",", 2), " B ");  // pieces are not trimmed
    EXPECT_EQ(Segment("", ",", 1), "");
}

TEST(DvtoolsTest, SmallTextHelpers)
{
    EXPECT_EQ(RPos("do", "while do x do"), 12);
    EXPECT_EQ(RPos("zz", "abc"), 0);
    EXPECT_EQ(RPos("", "abc"), 0);
    EXPECT_EQ(StripQuotes("\"Arial\""), "Arial");
    EXPECT_EQ(StripQuotes("'x'"), "x");
    EXPECT_EQ(StripQuotes("\"open"), "\"open");
    EXPECT_EQ(StripQuotes("\""), "\"");
    EXPECT_EQ(StripChar(QString("a") + QChar(0) + "b" + QChar(0), QChar(0)), "ab");
    EXPECT_EQ(CountOfChar("a", "banana"), 3);
    EXPECT_EQ(CountOfChar("an", "banana"), 2);
    EXPECT_EQ(CountOfChar("aa", "aaaa"), 2);  // occurrences do not overlap
    EXPECT_EQ(CountOfChar("", "abc"), 0);
    EXPECT_EQ(GetDefStr("", "10"), "10");
    EXPECT_EQ(GetDefStr("  ", "10"), "10");
    EXPECT_EQ(GetDefStr("12", "10"), "12");
    EXPECT_EQ(KzP("3,14"), "3.14");
    EXPECT_EQ(InInterval(1, 13, 0), 1);
    EXPECT_EQ(InInterval(1, 13, 14), 13);
    EXPECT_EQ(InInterval(1, 13, 7), 7);
}

TEST(DvtoolsTest, StrToBoolExSpellings)
{
    struct Row {
        const char* text;
        bool def;
        bool expected;
    };
    const Row rows[] = {{"True", false, true},  {"TRUE", false, true}, {"false", true, false}, {"-1", false, true},
                        {"0", true, false},     {"1", false, true},    {" true ", false, true}, {"Ja", false, true},
                        {"nein", true, false},  {"", true, true},      {"", false, false},     {"xyz", true, true}};
    for (const Row& r : rows) EXPECT_EQ(StrToBoolEx(r.text, r.def), r.expected) << r.text;
}

TEST(DvtoolsTest, FloatTextIsLocaleFree)
{
    EXPECT_EQ(DVFloatToStr(2.5L), "2.5");
    EXPECT_EQ(DVFloatToStr(-1), "-1");
    EXPECT_EQ(DVFloatToStr(0.1L), "0.1");
    EXPECT_EQ(DVFloatToStr(1e20L), "1E20");
    EXPECT_EQ(DVFloatToStr(1.5e-7L), "1.5E-7");
    EXPECT_EQ(DVStrToFloat("2.5"), 2.5L);
    EXPECT_EQ(DVStrToFloat(" -1e-5 "), -1e-5L);
    for (const char* bad : {"", "2,5", "abc", "1.2.3", "0x10"}) {
        try {
            DVStrToFloat(bad);
            ADD_FAILURE() << "no error for " << bad;
        } catch (const TDVRuntimeException& e) {
            EXPECT_TRUE(e.Message().contains(QString::fromUtf8(bad))) << e.what();
        }
    }
}

TEST(DvtoolsTest, BinaryDigitsBothWays)
{
    EXPECT_EQ(IntToBin(5, 0), "101");
    EXPECT_EQ(IntToBin(5, 8), "00000101");
    EXPECT_EQ(IntToBin(0, 0), "0");
    EXPECT_EQ(IntToBin(255, 4), "11111111");  // digits is a minimum width
    EXPECT_EQ(BinToInt("101"), 5);
    EXPECT_EQ(BinToInt("00000101"), 5);
    EXPECT_THROW(BinToInt("102"), TDVRuntimeException);
    EXPECT_THROW(BinToInt(""), TDVRuntimeException);
}

TEST(DvtoolsTest, FileGetSize)
{
    QTemporaryFile file;
    ASSERT_TRUE(file.open());
    file.write("12345");
    file.flush();
    EXPECT_EQ(FileGetSize(file.fileName()), 5);
    EXPECT_EQ(FileGetSize(file.fileName() + ".missing"), -1);
}

}  // namespace
}  // namespace dv
