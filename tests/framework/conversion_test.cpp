// The framework's conversions and text helpers: Windows-1252 codes, strict integers and booleans,
// and the helpers the commands share for cutting and formatting texts.
#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/intconvert.h"
#include "framework/typeconversion.h"
#include "tests/commands/params.h"

#include <gtest/gtest.h>

#include <QTemporaryFile>

#include <limits>

namespace dv {
namespace {

TEST(TypeConversionTest, EveryCodeSurvivesTheRoundTrip)
{
    for (int code = 0; code <= 255; ++code) EXPECT_EQ(Ord1252(Chr1252(code)), code) << code;
}

TEST(TypeConversionTest, HighCodesAreTheCodePagesCharacters)
{
    const std::pair<int, char16_t> rows[] = {{0x80, 0x20AC}, {0x8A, 0x0160}, {0x93, 0x201C}, {0x99, 0x2122}, {0x9F, 0x0178},
                        {0xA0, 0x00A0}, {0xE4, 0x00E4}, {0x41, 'A'},    {0x0A, '\n'}};
    for (const auto& [code, unicode] : rows) {
        EXPECT_EQ(Chr1252(code).unicode(), unicode) << code;
        EXPECT_EQ(Ord1252(QChar(unicode)), code) << code;
    }
}

TEST(TypeConversionTest, CharactersOutsideTheCodePageBecomeQuestionMark)
{
    EXPECT_EQ(Ord1252(QChar(0x0416)), 63);  // Cyrillic Zhe
    EXPECT_EQ(Ord1252(QChar(0x4E2D)), 63);
    EXPECT_EQ(Chr1252(256), QChar('?'));
    EXPECT_EQ(Chr1252(-1), QChar('?'));
}

// A file is UTF-8 only when all of it is: a Windows-1252 file whose last byte would start a UTF-8
// sequence (a closing "ß" with no line end) is Windows-1252, its last character kept.
TEST(TypeConversionTest, FilesAreReadInTheEncodingTheyWereWrittenIn)
{
    const struct { QByteArray bytes; TTextEncoding encoding; QString text; } rows[] = {
        {"Log(1)", TTextEncoding::Utf8, "Log(1)"},
        {"// Gr\xC3\xBC\xC3\x9F" "e", TTextEncoding::Utf8, "// Grüße"},
        {"// Ma\xC3\x9F", TTextEncoding::Utf8, "// Maß"},
        {"// Ma\xDF", TTextEncoding::Windows1252, "// Maß"},
        {"x=Caf\xE9", TTextEncoding::Windows1252, "x=Café"},
        {"\xEF\xBB\xBFx=\xEF\xBB\xBF", TTextEncoding::Utf8Bom, QString("x=") + QChar(0xFEFF)},
    };
    for (const auto& r : rows) {
        TTextEncoding encoding = TTextEncoding::Utf8;
        EXPECT_EQ(DecodeText(r.bytes, encoding), r.text) << r.bytes.constData();
        EXPECT_EQ(encoding, r.encoding) << r.bytes.constData();
        EXPECT_EQ(EncodeText(r.text, encoding), r.bytes) << r.bytes.constData();
    }
}

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

TEST(DvtoolsTest, GetStrPartTakesTextBetweenFirstStartAndFollowingStop)
{
    const struct { const char *start, *stop, *source, *expected; } rows[] = {
        {"(", ")", "ArrayToStr(A, B);", "A, B"},
        {"(", ")", "f(a(b)c)", "a(b"},           // the first ")" after "(" ends it
        {"(", ");", "StatusBar(x (y));", "x (y)"},  // ");" keeps an inner ")"
        {"(", ")", "no parenthesis", ""},
        {"(", ")", "open ( only", ""},
        {"IN:", ",OUT", "BinToInt(IN:101,OUT:X):0;", "101"},
        {"", ")", "abc)", "abc"},
    };
    for (const auto& r : rows) EXPECT_EQ(GetStrPart(r.start, r.stop, r.source, 0), QString::fromUtf8(r.expected)) << r.source;
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
    const struct { const char* text; bool def, expected; } rows[] = {{"True", false, true},  {"TRUE", false, true}, {"false", true, false}, {"-1", false, true},
                        {"0", true, false},     {"1", false, true},    {" true ", false, true}, {"Ja", false, true},
                        {"nein", true, false},  {"", true, true},      {"", false, false},     {"xyz", true, true}};
    for (const auto& r : rows) EXPECT_EQ(StrToBoolEx(r.text, r.def), r.expected) << r.text;
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
        const std::optional<QString> message = test::RaisedMessage([&] { DVStrToFloat(bad); });
        EXPECT_TRUE(message && message->contains(QString::fromUtf8(bad))) << "no error for " << bad;
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
