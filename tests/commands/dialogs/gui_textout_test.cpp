#include "commands/dialogs/gui_textout.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <tuple>

namespace dv {
namespace {

using test::MakeParams;

TEST(TextOutStyleTest, StyleWordsInAnyCaseGiveBitsAndTheFontButtonsWordsReadBack)
{
    const std::pair<const char*, int> rows[] = {{"underline strikeout", 12}, {"Bold Italic", 3}, {"Arial", 0}, {"xboldx", 1}};
    for (const auto& [style, bits] : rows) EXPECT_EQ(StyleBits(style), bits) << style;
    for (int mask = 0; mask < 16; ++mask) EXPECT_EQ(StyleBits(BuildStyleText(mask & 1, mask & 2, mask & 4, mask & 8)), mask);
}

class TextOutTest : public ::testing::Test {
protected:
    // The output call's text, font, size, style bits and colour.
    static auto Call(const test::TOutputLine& l) { return std::tuple(l.text, l.font, l.size, l.style, l.color); }

    test::TTestHost host;
    TDVCmdTextOut command{&host};
};

TEST_F(TextOutTest, RunDropsNulCharactersIgnoresFormFeedAndRejectsSizeOrColourThatIsNoInteger)
{
    for (const char* formFeed : {"False", "True"}) {
        TParamList params = MakeParams({{"FormFeed", formFeed}});
        params.AddString("Text", QString("a") + QChar(0) + "b" + QChar(0));
        command.Run(params);
    }
    EXPECT_TRUE(command.Fields().formFeed);
    ASSERT_EQ(host.output.size(), 2u);
    EXPECT_EQ(Call(host.output[0]), std::tuple(QString("ab"), QString(""), 10, 0, 0));  // no font: an empty name
    EXPECT_EQ(Call(host.output[1]), Call(host.output[0]));
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"zwölf", "0", "FontSize: \"zwölf\""}, {"12", "rot", "FontColor: \"rot\""}, {"12.5", "0", "FontSize: \"12.5\""}};
    for (const auto& [size, colour, messagePart] : rows) {
        TParamList params = MakeParams({{"Text", "x"}, {"FontSize", size}, {"FontColor", colour}});
        const QString message = test::RaisedMessage([&] { command.Run(params); }).value_or("");
        EXPECT_TRUE(message.contains(QString::fromUtf8(messagePart))) << message.toStdString();
    }
    EXPECT_EQ(host.output.size(), 2u);
}

TEST_F(TextOutTest, OlderLinesDecodeIntoAListThatReadsBackAndRuns)
{
    const struct { const char* line; test::TParamRows expected; std::tuple<QString, QString, int, int, int> call; } rows[] = {
        // The text keeps its case; the rest is read from the upper-cased line. The run strips the quotes.
        {"TextOut([OUT:Hi][FONT:Sans:12:bold][COL:255][formfeed]);",
         {{"Text", "Hi"}, {"Font", "\"SANS\""}, {"FontSize", "12"}, {"FontColor", "255"}, {"FontStyle", "\"BOLD\""}, {"FormFeed", "True"}},
         {"Hi", "SANS", 12, 1, 255}},
        // Without a font the default font name lands in the style, where it sets no style bit.
        {"TextOut([OUT:Hallo]);",
         {{"Text", "Hallo"}, {"Font", "\"\""}, {"FontSize", "10"}, {"FontColor", "0"}, {"FontStyle", "\"Arial\""}, {"FormFeed", "False"}},
         {"Hallo", "", 10, 0, 0}},
    };
    for (const auto& r : rows) {
        TParamList params;
        ASSERT_TRUE(command.DecodeScript(r.line, params, nullptr));
        EXPECT_EQ(params, MakeParams(r.expected));
        EXPECT_EQ(test::ReadBack(command, params), params);
        command.Run(params);
        EXPECT_EQ(Call(host.output.back()), r.call) << r.line;
    }
    EXPECT_EQ(command.GetDescription("TextOut", MakeParams({{"Text", "Messung"}})), "Textausgabe: Messung");
}

}  // namespace
}  // namespace dv
