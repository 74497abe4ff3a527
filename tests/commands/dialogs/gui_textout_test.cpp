#include "commands/dialogs/gui_textout.h"
#include "framework/exceptions.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

using test::MakeParams;

TEST(TextOutStyleTest, StyleWordsInAnyCaseGiveBits)
{
    const std::pair<const char*, int> rows[] = {
        {"underline strikeout", 12}, {"Bold Italic", 3}, {"BOLD", 1},    {"", 0},
        {"Arial", 0},                {"fett", 0},        {"xboldx", 1}, {"Italic  + bold ", 3},
    };
    for (const auto& [style, bits] : rows) EXPECT_EQ(StyleBits(style), bits) << style;
}

TEST(TextOutStyleTest, FontButtonWritesWordsInReverseOrder)
{
    EXPECT_EQ(BuildStyleText(true, true, false, false), "Italic  + bold ");
    EXPECT_EQ(BuildStyleText(false, false, false, false), "");
    EXPECT_EQ(BuildStyleText(false, false, true, false), "Underline ");
    for (int mask = 0; mask < 16; ++mask) {
        EXPECT_EQ(StyleBits(BuildStyleText(mask & 1, mask & 2, mask & 4, mask & 8)), mask);
    }
}

class TextOutTest : public ::testing::Test {
protected:
    test::TTestHost host;
    TDVCmdTextOut command{&host};
};

TEST_F(TextOutTest, RunWritesOneOutputCall)
{
    TParamList params = MakeParams({{"Text", "Hallo"}, {"Font", "\"Courier\""}, {"FontSize", "12"},
                                    {"FontColor", "255"}, {"FontStyle", "\"bold underline\""}, {"FormFeed", "False"}});
    command.Run(params);
    ASSERT_EQ(host.output.size(), 1u);
    const test::TOutputLine& line = host.output[0];
    EXPECT_EQ(line.text, "Hallo");
    EXPECT_EQ(line.font, "Courier");
    EXPECT_EQ(line.size, 12);
    EXPECT_EQ(line.style, 5);
    EXPECT_EQ(line.color, 255);
}

TEST_F(TextOutTest, DefaultsNulCharactersAndEmptyFont)
{
    TParamList params = MakeParams({{"Text", "a"}});
    params.AddString("Text", QString("a") + QChar(0) + "b" + QChar(0));
    command.Run(params);
    ASSERT_EQ(host.output.size(), 1u);
    EXPECT_EQ(host.output[0].text, "ab");
    EXPECT_EQ(host.output[0].font, "");
    EXPECT_EQ(host.output[0].size, 10);
    EXPECT_EQ(host.output[0].color, 0);
}

TEST_F(TextOutTest, FormFeedIsKeptButChangesNothing)
{
    TParamList with = MakeParams({{"Text", "x"}, {"FormFeed", "True"}});
    TParamList without = MakeParams({{"Text", "x"}, {"FormFeed", "False"}});
    command.Run(with);
    EXPECT_TRUE(command.Fields().formFeed);
    command.Run(without);
    ASSERT_EQ(host.output.size(), 2u);
    EXPECT_EQ(host.output[0].text, host.output[1].text);
    EXPECT_EQ(host.output[0].style, host.output[1].style);
    EXPECT_EQ(host.output[0].size, host.output[1].size);
    TParamList back;
    command.SetParams(with);
    command.ReadParams(back);
    EXPECT_EQ(back.GetString("FormFeed"), "True");
}

TEST_F(TextOutTest, SizeOrColourThatIsNoIntegerRaisesAndWritesNothing)
{
    for (auto [size, colour] : {std::pair{"zwölf", "0"}, std::pair{"12", "rot"}, std::pair{"12.5", "0"}}) {
        TParamList params = MakeParams({{"Text", "x"}, {"FontSize", size}, {"FontColor", colour}});
        EXPECT_THROW(command.Run(params), TDVRuntimeException) << size << " " << colour;
    }
    EXPECT_TRUE(host.output.empty());
}

TEST_F(TextOutTest, ParameterListQuotesFontAndStyle)
{
    TDVCmdTextOut::TFields f;
    f.text = "Hallo";
    f.font = "Arial";
    f.style = "bold ";
    f.colour = "255";
    command.SetFields(f);
    TParamList params;
    command.ReadParams(params);
    EXPECT_EQ(params.Names(), command.Signature().ParamNames());
    EXPECT_EQ(params.GetString("Font"), "\"Arial\"");
    EXPECT_EQ(params.GetString("FontStyle"), "\"bold \"");
    EXPECT_EQ(params.GetString("FormFeed"), "False");
    command.SetDefaults();
    command.SetParams(params);
    EXPECT_EQ(command.Fields(), f);
}

TEST_F(TextOutTest, OlderLinesDecode)
{
    TParamList params;
    ASSERT_TRUE(command.DecodeScript("TextOut([OUT:Hallo Welt][FONT:Courier:12:bold][COL:255][formfeed]);", params, nullptr));
    EXPECT_EQ(params.GetString("Text"), "Hallo Welt");  // the text keeps its case
    EXPECT_EQ(params.GetString("Font"), "\"COURIER\"");
    EXPECT_EQ(params.GetString("FontSize"), "12");
    EXPECT_EQ(params.GetString("FontStyle"), "\"BOLD\"");
    EXPECT_EQ(params.GetString("FontColor"), "255");
    EXPECT_EQ(params.GetString("FormFeed"), "True");
}

TEST_F(TextOutTest, OlderLineWithoutFontPutsArialIntoTheStyle)
{
    TParamList params;
    ASSERT_TRUE(command.DecodeScript("TextOut([OUT:Hallo]);", params, nullptr));
    EXPECT_EQ(params.GetString("Font"), "\"\"");
    EXPECT_EQ(params.GetString("FontStyle"), "\"Arial\"");
    EXPECT_EQ(params.GetString("FontSize"), "10");
    EXPECT_EQ(params.GetString("FormFeed"), "False");
    command.Run(params);
    ASSERT_EQ(host.output.size(), 1u);
    EXPECT_EQ(host.output[0].font, "");
    EXPECT_EQ(host.output[0].style, 0);
}

TEST_F(TextOutTest, Description)
{
    EXPECT_EQ(command.GetDescription("TextOut", MakeParams({{"Text", "Messung fertig"}})), "Textausgabe: Messung fertig");
}

}  // namespace
}  // namespace dv
