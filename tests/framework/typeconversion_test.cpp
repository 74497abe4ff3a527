#include "framework/typeconversion.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

TEST(TypeConversionTest, EveryCodeSurvivesTheRoundTrip)
{
    for (int code = 0; code <= 255; ++code) EXPECT_EQ(Ord1252(Chr1252(code)), code) << code;
}

TEST(TypeConversionTest, HighCodesAreTheCodePagesCharacters)
{
    struct Row {
        int code;
        char16_t unicode;
    };
    const Row rows[] = {{0x80, 0x20AC}, {0x8A, 0x0160}, {0x93, 0x201C}, {0x99, 0x2122}, {0x9F, 0x0178},
                        {0xA0, 0x00A0}, {0xE4, 0x00E4}, {0x41, 'A'},    {0x0A, '\n'}};
    for (const Row& r : rows) {
        EXPECT_EQ(Chr1252(r.code).unicode(), r.unicode) << r.code;
        EXPECT_EQ(Ord1252(QChar(r.unicode)), r.code) << r.code;
    }
}

TEST(TypeConversionTest, CharactersOutsideTheCodePageBecomeQuestionMark)
{
    EXPECT_EQ(Ord1252(QChar(0x0416)), 63);  // Cyrillic Zhe
    EXPECT_EQ(Ord1252(QChar(0x4E2D)), 63);
    EXPECT_EQ(Chr1252(256), QChar('?'));
    EXPECT_EQ(Chr1252(-1), QChar('?'));
}

}  // namespace
}  // namespace dv
