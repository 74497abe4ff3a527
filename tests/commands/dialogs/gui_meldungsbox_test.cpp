#include "commands/dialogs/gui_meldungsbox.h"
#include "framework/headless.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

TEST(MeldungsBoxTest, TypeKeywordsLastRowOfTheTableWins)
{
    struct Row {
        QString text;
        int previous;
        TMsgDlgType expected;
    };
    const Row rows[] = {
        {"mtWarning", 3, TMsgDlgType::Warning},
        {"mtWarning + mtError", 3, TMsgDlgType::Error},
        {"mtError mtWarning", 3, TMsgDlgType::Error},  // the table's order counts, not the text's
        {"mtInformation", 0, TMsgDlgType::Information},
        {"Fehler", 2, TMsgDlgType::Information},       // no keyword: the previous type stays
        {"", 1, TMsgDlgType::Error},
        {"mtconfirmation", 0, TMsgDlgType::Warning},   // keywords are case-sensitive
    };
    for (const Row& r : rows) {
        EXPECT_EQ(ReadMessageType(r.text, r.previous), static_cast<int>(r.expected)) << r.text.toStdString();
    }
}

TEST(MeldungsBoxTest, ButtonsByKeywordOrBySingleCharacter)
{
    struct Row {
        QString text;
        int expected;
    };
    const Row rows[] = {
        {"mbYes + mbNo", 1 | 2},
        {"mbOK", 4},
        {"mbAbort + mbRetry + mbIgnore", 16 | 32 | 64},
        {QString(QChar(0)), 1},
        {QString(QChar(3)) + QChar(6), 8 | 64},
        {"[mbCancel]" + QString(QChar(1)), 8 | 2},
        {"", 0},
        {"mbyes", 0},
    };
    for (const Row& r : rows) EXPECT_EQ(ReadMessageButtons(r.text), r.expected) << r.text.toStdString();
}

TEST(MeldungsBoxTest, ReadParamsWritesInOrderJoinsButtonsAndNeverWritesAbort)
{
    TTestHost host;
    TDVCmdMeldungsBox command(&host);
    const TParamList read = ReadBack(command, MakeParams({{"Position", "False"}, {"Text", "\"Weiter?\""},
                                                          {"Type", "mtWarning mtError"},
                                                          {"Buttons", "mbIgnore + mbAbort + mbYes"},
                                                          {"XPos", "10"}, {"YPos", "x"}}));
    EXPECT_EQ(read.Names(), (QStringList{"Text", "Type", "Buttons", "Position", "XPos", "YPos"}));
    EXPECT_EQ(read, MakeParams({{"Text", "\"Weiter?\""}, {"Type", "\"mtError\""}, {"Buttons", "\"mbYes + mbIgnore\""},
                                {"Position", "False"}, {"XPos", "10"}, {"YPos", "0"}}));
}

TEST(MeldungsBoxTest, DefaultsAndAnEmptyPositionMeanTheStandardPlace)
{
    TTestHost host;
    TDVCmdMeldungsBox command(&host);
    command.SetDefaults();
    TParamList defaults;
    command.ReadParams(defaults);
    EXPECT_EQ(defaults, MakeParams({{"Text", "\"Hallo Benutzer!\""}, {"Type", "\"mtConfirmation\""}, {"Buttons", "\"mbOK\""},
                                    {"Position", "True"}, {"XPos", "0"}, {"YPos", "0"}}));
    command.SetParams(MakeParams({{"Position", ""}}));
    EXPECT_TRUE(command.Fields().standardPosition);
}

TEST(MeldungsBoxTest, PositionIsPercentOfTheScreenRounded)
{
    // Pixel = screen size / 100 * percent, worked out by hand.
    EXPECT_EQ(MessagePosition({1920, 1080}, 50, 25), QPoint(960, 270));
    EXPECT_EQ(MessagePosition({1366, 768}, 33, 33), QPoint(451, 253));  // 450.78 and 253.44
    EXPECT_EQ(MessagePosition({1280, 1024}, 0, 99), QPoint(0, 1014));   // 1013.76
    // Exact halves round to the even neighbour: 102.5 and 52.5 down, 31.5 up.
    EXPECT_EQ(MessagePosition({1025, 1050}, 10, 5), QPoint(102, 52));
    EXPECT_EQ(MessagePosition({1050, 1050}, 3, 3), QPoint(32, 32));
}

TEST(MeldungsBoxTest, OlderLineWithBracketedButtonsAndPosition)
{
    TTestHost host;
    TDVCmdMeldungsBox command(&host);
    struct Row {
        const char* line;
        TParamRows expected;
    };
    const Row rows[] = {
        {"MeldungsBox(\"Achtung, heiß\",mtError,[mbYes][mbNo][mbAbort],@x:10,@y:20);",
         {{"Text", "\"Achtung"}, {"Type", "\"mtError\""}, {"Buttons", "\"mbYes + mbNo\""}, {"Position", "False"},
          {"XPos", "10"}, {"YPos", "20"}}},
        {"MeldungsBox(Hallo,mtInformation,[mbOK][mbCancel][mbRetry][mbIgnore]);",
         {{"Text", "Hallo"}, {"Type", "\"mtInformation\""}, {"Buttons", "\"mbOK + mbCancel + mbRetry + mbIgnore\""},
          {"Position", "True"}, {"XPos", "0"}, {"YPos", "0"}}},
    };
    for (const Row& r : rows) {
        TParamList params;
        EXPECT_TRUE(command.DecodeScript(QString::fromUtf8(r.line), params, nullptr));
        EXPECT_EQ(params, MakeParams(r.expected)) << r.line;
    }
}

TEST(MeldungsBoxTest, OlderLineQuirksAreKept)
{
    TTestHost host;
    TDVCmdMeldungsBox command(&host);
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
TEST(MeldungsBoxTest, OlderFormByBracketedButtonOrPositionOutsideTexts)
{
    TTestHost host;
    const TDVCmdMeldungsBox command(&host);
    struct Row {
        const char* line;
        bool older;
    };
    const Row rows[] = {
        {"MeldungsBox(\"Hallo\",mtInformation,[mbOK]);", true},
        {"MeldungsBox(Hallo,mtInformation,[mbOK][mbCancel]);", true},
        {"MeldungsBox(\"Hallo\",mtWarning,@x:10,@y:20);", true},
        {"MeldungsBox(\"Hallo\",mtWarning,[mbIgnore]);", true},
        {"MeldungsBox(\"Hallo\",mtWarning,[mbAbort]);", false},  // no older bracketed form
        {"MeldungsBox(True, \"Drücke [mbOK] bei @x:\", \"mtError\", \"mbOK\", 0, 0);", false},
        {"MeldungsBox(Position := True, Text := \"[mbYes]\", Type := \"mtError\", Buttons := \"mbYes\", XPos := 0, YPos := 0);", false},
        {"MeldungsBox(True, \"Zitat \"\"\"\" [mbOK]\", \"mtError\", \"mbOK\", 0, 0);", false},
    };
    for (const Row& r : rows) EXPECT_EQ(command.IsOlderForm(QString::fromUtf8(r.line)), r.older) << r.line;
}

// Without a GUI the answer stands for the pressed button; Abbrechen on Cancel or Abort stops the test.
TEST(MeldungsBoxTest, HeadlessAnswersGiveTheResultTextAndStopOnAbbrechen)
{
    struct Row {
        const char* answer;
        const char* buttons;
        const char* expected;
        int stops;
    };
    const Row rows[] = {
        {"JA", "mbYes + mbNo", "JA", 0},       {"nein", "mbYes + mbNo", "NEIN", 0},
        {"OK", "mbOK", "OK", 0},               {"OK", "", "OK", 0},
        {"ABBRECHEN", "mbCancel", "ABBRECHEN", 1}, {"Abbrechen", "mbAbort", "ABBRECHEN", 1},
        {"WIEDERHOLEN", "mbRetry", "WIEDERHOLEN", 0}, {"IGNORIEREN", "mbIgnore", "IGNORIEREN", 0},
    };
    for (const Row& r : rows) {
        TTestHost host;
        host.Declare("ButtonResult", g_StringType);
        TDVCmdMeldungsBox command(&host);
        SetHeadlessAnswers({QStringLiteral("MeldungsBox=") + r.answer});
        TParamList params = MakeParams({{"Text", "Frage"}, {"Buttons", r.buttons}});
        command.Run(params);
        EXPECT_EQ(host.ValueText("ButtonResult"), r.expected) << r.answer << " " << r.buttons;
        EXPECT_EQ(host.stopCalls, r.stops) << r.answer << " " << r.buttons;
    }
    SetHeadlessAnswers({});
}

TEST(MeldungsBoxTest, HeadlessWithoutAFittingAnswerFailsNamingTheOption)
{
    TTestHost host;
    host.Declare("ButtonResult", g_StringType);
    TDVCmdMeldungsBox command(&host);
    struct Row {
        QStringList answers;
        const char* expectedPart;
    };
    const Row rows[] = {
        {{}, "dvrun --answer MeldungsBox="},
        {{"MeldungsBox=JA"}, "\"JA\" passt zu keinem Knopf"},
        {{"MeldungsBox=VIELLEICHT"}, "\"VIELLEICHT\" passt zu keinem Knopf"},
    };
    for (const Row& r : rows) {
        SetHeadlessAnswers(r.answers);
        TParamList params = MakeParams({{"Text", "Frage"}, {"Buttons", "mbOK + mbCancel"}});
        try {
            command.Run(params);
            ADD_FAILURE() << "ran without an answer";
        } catch (const TDravikException& e) {
            EXPECT_TRUE(e.Message().contains(QString::fromUtf8(r.expectedPart))) << e.Message().toStdString();
        }
        EXPECT_TRUE(host.setVariableCalls.isEmpty());
        EXPECT_EQ(host.stopCalls, 0);
    }
    SetHeadlessAnswers({});
}

}  // namespace
}  // namespace dv
