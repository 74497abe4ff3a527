// The operator dialog commands and the text output without a GUI: MeldungsBox, OpenSaveDlg and
// StatusText answered headless, TextOut's styles, and their older lines.
#include "commands/dialogs/gui_meldungsbox.h"
#include "commands/dialogs/gui_opensavedlg.h"
#include "commands/dialogs/gui_statustext.h"
#include "commands/dialogs/gui_textout.h"
#include "framework/headless.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <tuple>

namespace dv {
namespace {

using namespace test;

class MeldungsBoxTest : public ::testing::Test {
protected:
    TTestHost host;
    TDVCmdMeldungsBox command{&host};
};

TEST(MeldungsBoxKeywordTest, TypeKeywordsLastRowOfTheTableWins)
{
    const struct { QString text; int previous; TMsgDlgType expected; } rows[] = {
        {"mtWarning", 3, TMsgDlgType::Warning},
        {"mtWarning + mtError", 3, TMsgDlgType::Error},
        {"mtError mtWarning", 3, TMsgDlgType::Error},  // the table's order counts, not the text's
        {"mtInformation", 0, TMsgDlgType::Information},
        {"Fehler", 2, TMsgDlgType::Information},       // no keyword: the previous type stays
        {"", 1, TMsgDlgType::Error},
        {"mtconfirmation", 0, TMsgDlgType::Warning},   // keywords are case-sensitive
    };
    for (const auto& r : rows) EXPECT_EQ(ReadMessageType(r.text, r.previous), static_cast<int>(r.expected)) << r.text.toStdString();
}

TEST(MeldungsBoxKeywordTest, ButtonsByKeywordOrBySingleCharacter)
{
    const std::pair<QString, int> rows[] = {
        {"mbYes + mbNo", 1 | 2},
        {"mbOK", 4},
        {"mbAbort + mbRetry + mbIgnore", 16 | 32 | 64},
        {QString(QChar(0)), 1},
        {QString(QChar(3)) + QChar(6), 8 | 64},
        {"[mbCancel]" + QString(QChar(1)), 8 | 2},
        {"", 0},
        {"mbyes", 0},
    };
    for (const auto& [text, expected] : rows) EXPECT_EQ(ReadMessageButtons(text), expected) << text.toStdString();
}

TEST_F(MeldungsBoxTest, ReadParamsWritesInOrderJoinsButtonsAndNeverWritesAbort)
{
    const TParamList read = ReadBack(command, MakeParams({{"Position", "False"}, {"Text", "\"Weiter?\""},
                                                          {"Type", "mtWarning mtError"},
                                                          {"Buttons", "mbIgnore + mbAbort + mbYes"},
                                                          {"XPos", "10"}, {"YPos", "x"}}));
    EXPECT_EQ(read.Names(), (QStringList{"Text", "Type", "Buttons", "Position", "XPos", "YPos"}));
    EXPECT_EQ(read, MakeParams({{"Text", "\"Weiter?\""}, {"Type", "\"mtError\""}, {"Buttons", "\"mbYes + mbIgnore\""},
                                {"Position", "False"}, {"XPos", "10"}, {"YPos", "0"}}));
}

TEST_F(MeldungsBoxTest, DefaultsAndAnEmptyPositionMeanTheStandardPlace)
{
    command.SetDefaults();
    TParamList defaults;
    command.ReadParams(defaults);
    EXPECT_EQ(defaults, MakeParams({{"Text", "\"Hallo Benutzer!\""}, {"Type", "\"mtConfirmation\""}, {"Buttons", "\"mbOK\""},
                                    {"Position", "True"}, {"XPos", "0"}, {"YPos", "0"}}));
    command.SetParams(MakeParams({{"Position", ""}}));
    EXPECT_TRUE(command.Fields().standardPosition);
}

TEST(MeldungsBoxKeywordTest, PositionIsPercentOfTheScreenRounded)
{
    // Pixel = screen size / 100 * percent, worked out by hand.
    EXPECT_EQ(MessagePosition({1920, 1080}, 50, 25), QPoint(960, 270));
    EXPECT_EQ(MessagePosition({1366, 768}, 33, 33), QPoint(451, 253));  // 450.78 and 253.44
    EXPECT_EQ(MessagePosition({1280, 1024}, 0, 99), QPoint(0, 1014));   // 1013.76
    // Exact halves round to the even neighbour: 102.5 and 52.5 down, 31.5 up.
    EXPECT_EQ(MessagePosition({1025, 1050}, 10, 5), QPoint(102, 52));
    EXPECT_EQ(MessagePosition({1050, 1050}, 3, 3), QPoint(32, 32));
}

TEST_F(MeldungsBoxTest, OlderLineWithBracketedButtonsAndPosition)
{
    const struct { const char* line; TParamRows expected; } rows[] = {
        {"MeldungsBox(\"Achtung, heiß\",mtError,[mbYes][mbNo][mbAbort],@x:10,@y:20);",
         {{"Text", "\"Achtung"}, {"Type", "\"mtError\""}, {"Buttons", "\"mbYes + mbNo\""}, {"Position", "False"},
          {"XPos", "10"}, {"YPos", "20"}}},
        {"MeldungsBox(Hallo,mtInformation,[mbOK][mbCancel][mbRetry][mbIgnore]);",
         {{"Text", "Hallo"}, {"Type", "\"mtInformation\""}, {"Buttons", "\"mbOK + mbCancel + mbRetry + mbIgnore\""},
          {"Position", "True"}, {"XPos", "0"}, {"YPos", "0"}}},
    };
    for (const auto& r : rows) {
        TParamList params;
        EXPECT_TRUE(command.DecodeScript(QString::fromUtf8(r.line), params, nullptr));
        EXPECT_EQ(params, MakeParams(r.expected)) << r.line;
    }
}

TEST_F(MeldungsBoxTest, OlderLineQuirksAreKept)
{
    TParamList params;
    // "@x:" without ",@y:" reads no X digits: the message is placed, at 0.
    command.DecodeScript("MeldungsBox(Hallo,mtWarning,[mbOK],@x:30);", params, nullptr);
    EXPECT_EQ(params.GetString("Position"), "False");
    EXPECT_EQ(params.GetString("XPos"), "0");
    EXPECT_EQ(params.GetString("YPos"), "0");
    // A line without a type keyword keeps the type of the line decoded before it.
    params.Clear();
    command.DecodeScript("MeldungsBox(Kein Typ,[mbYes]);", params, nullptr);
    EXPECT_EQ(params.GetString("Type"), "\"mtWarning\"");
    EXPECT_EQ(params.GetString("Buttons"), "\"mbYes\"");
}

// What marks a line as older even where the current grammar could read it: a bracketed button or
// a position mark outside string literals.
TEST_F(MeldungsBoxTest, OlderFormByBracketedButtonOrPositionOutsideTexts)
{
    const std::pair<const char*, bool> rows[] = {
        {"MeldungsBox(\"Hallo\",mtInformation,[mbOK]);", true},
        {"MeldungsBox(Hallo,mtInformation,[mbOK][mbCancel]);", true},
        {"MeldungsBox(\"Hallo\",mtWarning,@x:10,@y:20);", true},
        {"MeldungsBox(\"Hallo\",mtWarning,[mbIgnore]);", true},
        {"MeldungsBox(\"Hallo\",mtWarning,[mbAbort]);", false},  // no older bracketed form
        {"MeldungsBox(True, \"Drücke [mbOK] bei @x:\", \"mtError\", \"mbOK\", 0, 0);", false},
        {"MeldungsBox(Position := True, Text := \"[mbYes]\", Type := \"mtError\", Buttons := \"mbYes\", XPos := 0, YPos := 0);", false},
        {"MeldungsBox(True, \"Zitat \"\"\"\" [mbOK]\", \"mtError\", \"mbOK\", 0, 0);", false},
    };
    for (const auto& [line, older] : rows) EXPECT_EQ(command.IsOlderForm(QString::fromUtf8(line)), older) << line;
}

// Without a GUI the answer stands for the pressed button; Abbrechen on Cancel or Abort stops the
// test. Without a fitting answer the call fails naming the option, and writes nothing.
TEST_F(MeldungsBoxTest, HeadlessAnswersGiveTheResultTextAndStopOnAbbrechen)
{
    host.Declare("ButtonResult", g_StringType);
    const struct { QStringList answers; const char* buttons; const char* expected; int stops; } rows[] = {
        {{"MeldungsBox=JA"}, "mbYes + mbNo", "JA", 0},         {{"MeldungsBox=nein"}, "mbYes + mbNo", "NEIN", 0},
        {{"MeldungsBox=OK"}, "mbOK", "OK", 0},                 {{"MeldungsBox=OK"}, "", "OK", 0},
        {{"MeldungsBox=ABBRECHEN"}, "mbCancel", "ABBRECHEN", 1}, {{"MeldungsBox=Abbrechen"}, "mbAbort", "ABBRECHEN", 1},
        {{"MeldungsBox=WIEDERHOLEN"}, "mbRetry", "WIEDERHOLEN", 0}, {{"MeldungsBox=IGNORIEREN"}, "mbIgnore", "IGNORIEREN", 0},
        {{}, "mbOK + mbCancel", "!dvrun --answer MeldungsBox=", 0},
        {{"MeldungsBox=JA"}, "mbOK + mbCancel", "!\"JA\" passt zu keinem Knopf", 0},
        {{"MeldungsBox=VIELLEICHT"}, "mbOK + mbCancel", "!\"VIELLEICHT\" passt zu keinem Knopf", 0},
    };
    for (const auto& r : rows) {
        host.stopCalls = 0;
        host.setVariableCalls.clear();
        host.Declare("ButtonResult", g_StringType);
        SetHeadlessAnswers(r.answers);
        TParamList params = MakeParams({{"Text", "Frage"}, {"Buttons", r.buttons}});
        const QString expected = QString::fromUtf8(r.expected);
        const QString failure = RaisedMessage<TDravikException>([&] { command.Run(params); }).value_or("");
        if (expected.startsWith('!')) {
            EXPECT_TRUE(failure.contains(expected.mid(1))) << failure.toStdString();
            EXPECT_TRUE(host.setVariableCalls.isEmpty()) << r.expected;
        } else {
            EXPECT_EQ(failure, "") << r.expected;
            EXPECT_EQ(host.ValueText("ButtonResult"), expected) << r.buttons;
        }
        EXPECT_EQ(host.stopCalls, r.stops) << r.expected << " " << r.buttons;
    }
    SetHeadlessAnswers({});
}

struct HeadlessAnswers {
    explicit HeadlessAnswers(const QStringList& answers) { SetHeadlessAnswers(answers); }
    ~HeadlessAnswers() { SetHeadlessAnswers({}); }
};

TEST(OpenSaveDlgTest, HeadlessAnswerWritesTheVariableAndAbbrechenWritesNothing)
{
    const struct { const char *answer, *extension, *expected; } rows[] = {
        {"/daten/messung.csv", "", "/daten/messung.csv"},
        {"/daten/messung", ".csv", "/daten/messung.csv"},  // the default extension, as the dialog appends it
        {"/daten/messung.txt", "csv", "/daten/messung.txt"},
        {"Abbrechen", "csv", "vorher.csv"},
        {"ABBRECHEN", "", "vorher.csv"},
    };
    for (const auto& r : rows) {
        TTestHost host;
        host.Declare("Datei", g_StringType);
        host.SetVariable("Datei", std::make_unique<TStringValue>("vorher.csv"));
        host.setVariableCalls.clear();
        TDVCmdOpenSave command(&host);
        HeadlessAnswers answers({QStringLiteral("OpenSaveDlg=") + r.answer});
        TParamList params = MakeParams({{"OpenDlg", "False"}, {"FileName", "Datei"}, {"Extension", r.extension}});
        command.Run(params);
        EXPECT_EQ(host.ValueText("Datei"), r.expected) << r.answer;
        EXPECT_EQ(host.setVariableCalls.size(), QString(r.expected) == "vorher.csv" ? 0 : 1) << r.answer;
    }
}

TEST(OpenSaveDlgTest, EmptyVariableWritesNothingAndBadCallsFailBeforeAnyDialog)
{
    TTestHost host;
    host.Declare("Zahl", g_NumberType);
    TDVCmdOpenSave command(&host);
    {
        HeadlessAnswers answers({"OpenSaveDlg=/daten/a.csv"});
        TParamList params = MakeParams({{"OpenDlg", "True"}, {"FileName", ""}});
        command.Run(params);
        EXPECT_TRUE(host.setVariableCalls.isEmpty());
    }
    const struct { const char* variable; QStringList answers; const char* expectedPart; } rows[] = {
        {"Unbekannt", {"OpenSaveDlg=/daten/a.csv"}, "\"Unbekannt\" wurde nicht als Variable deklariert"},
        {"Zahl", {"OpenSaveDlg=/daten/a.csv"}, "OpenSaveDlg: FileName: die Variable \"Zahl\" vom Typ Number"},
        {"", {}, "dvrun --answer OpenSaveDlg="},
    };
    for (const auto& r : rows) {
        HeadlessAnswers answers(r.answers);
        TParamList params = MakeParams({{"OpenDlg", "True"}, {"FileName", r.variable}});
        const QString failure = RaisedMessage<TDravikException>([&] { command.Run(params); }).value_or("ran");
        EXPECT_TRUE(failure.contains(QString::fromUtf8(r.expectedPart))) << failure.toStdString();
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST(OpenSaveDlgTest, OlderLineAndReadBack)
{
    TTestHost host;
    TDVCmdOpenSave command(&host);
    const struct { const char* line; TParamRows expected; } rows[] = {
        {"OpenSaveDlg(OPEN_DIALOG,[FILE:Datei][DIR:/daten][CAP:Messung laden][EXT:csv]);",
         {{"OpenDlg", "True"}, {"FileName", "Datei"}, {"InitDir", "\"/daten\""}, {"Caption", "\"Messung laden\""},
          {"Extension", "\"csv\""}}},
        {"OpenSaveDlg(SAVE_DIALOG,[FILE:Ziel]);",
         {{"OpenDlg", "False"}, {"FileName", "Ziel"}, {"InitDir", "\"\""}, {"Caption", "\"\""}, {"Extension", "\"\""}}},
    };
    for (const auto& r : rows) {
        TParamList params;
        EXPECT_TRUE(command.DecodeScript(QString::fromUtf8(r.line), params, nullptr));
        EXPECT_EQ(params, MakeParams(r.expected)) << r.line;
        EXPECT_EQ(ReadBack(command, params), params) << r.line;
    }
}

TEST(StatusTextTest, RunHandsTheTextToTheHostAndOlderLinesKeepParentheses)
{
    TTestHost host;
    TDVCmdStatusBar command(&host);
    TParamList params;
    EXPECT_TRUE(command.DecodeScript("StatusBar(Spannung (in V) messen);", params, nullptr));
    EXPECT_EQ(params, MakeParams({{"Text", "Spannung (in V) messen"}}));
    command.Run(params);
    EXPECT_EQ(command.OnEditorTest(), "Spannung (in V) messen");
    EXPECT_EQ(host.statusTexts, (QStringList{"Spannung (in V) messen", "Spannung (in V) messen"}));
    EXPECT_EQ(StatusBarLine("Bereit"), "StatusBar(Bereit);");
    EXPECT_EQ(StatusBarLine(""), "");
    command.SetDefaults();
    TParamList defaults;
    command.ReadParams(defaults);
    EXPECT_EQ(defaults, MakeParams({{"Text", ""}}));
}

TEST(TextOutStyleTest, StyleWordsInAnyCaseGiveBitsAndTheFontButtonsWordsReadBack)
{
    const std::pair<const char*, int> rows[] = {{"underline strikeout", 12}, {"Bold Italic", 3}, {"Arial", 0}, {"xboldx", 1}};
    for (const auto& [style, bits] : rows) EXPECT_EQ(StyleBits(style), bits) << style;
    for (int mask = 0; mask < 16; ++mask) EXPECT_EQ(StyleBits(BuildStyleText(mask & 1, mask & 2, mask & 4, mask & 8)), mask);
}

class TextOutTest : public ::testing::Test {
protected:
    // The output call's text, font, size, style bits and colour.
    static auto Call(const TOutputLine& l) { return std::tuple(l.text, l.font, l.size, l.style, l.color); }

    TTestHost host;
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
        const QString message = RaisedMessage([&] { command.Run(params); }).value_or("");
        EXPECT_TRUE(message.contains(QString::fromUtf8(messagePart))) << message.toStdString();
    }
    EXPECT_EQ(host.output.size(), 2u);
}

TEST_F(TextOutTest, OlderLinesDecodeIntoAListThatReadsBackAndRuns)
{
    const struct { const char* line; TParamRows expected; std::tuple<QString, QString, int, int, int> call; } rows[] = {
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
        EXPECT_EQ(ReadBack(command, params), params);
        command.Run(params);
        EXPECT_EQ(Call(host.output.back()), r.call) << r.line;
    }
    EXPECT_EQ(command.GetDescription("TextOut", MakeParams({{"Text", "Messung"}})), "Textausgabe: Messung");
}

}  // namespace
}  // namespace dv
