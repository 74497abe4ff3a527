#include "commands/dialogs/gui_opensavedlg.h"
#include "commands/dialogs/gui_statustext.h"
#include "framework/headless.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

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

}  // namespace
}  // namespace dv
