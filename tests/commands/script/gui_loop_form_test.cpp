// The loop dialog driven through EditCommand: the kinds, the refused lines, the dialog's size.
#include "commands/script/gui_loop.h"
#include "tests/commands/script/structuredriver.h"

#include <QGroupBox>
#include <QMessageBox>
#include <QPushButton>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

TEST(LoopFormTest, WritesTheEditedHeadOrANewLoopWithItsMarkedLine)
{
    const struct {
        const char* line;
        const char* radio;  // clicked, nullptr: the kind the line gave
        std::vector<std::pair<const char*, const char*>> typed;
        const char* button;
        std::vector<std::pair<const char*, const char*>> shown;
        TEdited out;
    } rows[] = {
        {"", "RadioFor", {{"Edit_LoopVarName", "I"}, {"Edit_StartValue", "1"}, {"Edit_EndValue", "10"}}, "BT_OK",
         {{"Edit_LoopVarName", ""}}, {true, "for I := 1 to 10 do\r\n93:end for"}},
        {"for I := 1 to N - 1 do", nullptr, {}, "BT_OK", {{"Edit_StartValue", "1"}, {"Edit_EndValue", "N-1"}},
         {true, "for I := 1 to N-1 do"}},
        {"while (a > 0) do", nullptr, {}, "BT_OK", {{"Edit_WhileCondition", " (a > 0) "}}, {true, "while  (a > 0)  do"}},
        {"until  x = 5 ;", nullptr, {}, "BT_OK", {{"Edit_RepeatCondition", "x = 5"}}, {true, "until x = 5;"}},
        {"", "RadioRepeat", {{"Edit_RepeatCondition", "Fertig"}}, "BT_OK", {}, {true, "repeat\r\n93:until Fertig;"}},
        {"", "RadioWhile", {{"Edit_WhileCondition", "a < 3"}}, "BT_OK", {}, {true, "while a < 3 do\r\n93:end while"}},
        {"while a do", "RadioFor", {{"Edit_LoopVarName", "J"}, {"Edit_StartValue", "0"}, {"Edit_EndValue", "2"}}, "BT_OK", {},
         {true, "for J := 0 to 2 do"}},
        {"for I := 1 to 3 do", nullptr, {{"Edit_EndValue", "9"}}, "BT_Cancel", {}, {false, "for I := 1 to 3 do"}},
    };
    TDVCmdLoop command;
    for (const auto& r : rows) {
        command.SetDefaults();
        std::vector<std::pair<const char*, QString>> shown;
        const TEdited out = EditLine(command, r.line, "TDVGUILoop", [&](QWidget& d) {
            for (const auto& [box, text] : r.shown) shown.emplace_back(box, Find<QLineEdit>(d, box).text());
            if (r.radio) Click(d, r.radio);
            for (const auto& [box, text] : r.typed) Type(d, box, text);
            Click(d, r.button);
        });
        for (std::size_t i = 0; i < r.shown.size(); ++i) EXPECT_EQ(shown[i].second, r.shown[i].second) << r.line;
        EXPECT_EQ(out.confirmed, r.out.confirmed) << r.line;
        EXPECT_EQ(out.line, r.out.line) << r.line;
    }
}

TEST(LoopFormTest, TheEndAndRepeatLinesAreRefusedWithAMessage)
{
    const std::pair<const char*, const char*> rows[] = {
        {"end for", "Sie können das Ende einer For- oder While-schleife nicht editieren, editieren Sie stattdessen den Schleifenkopf."},
        {"93:end while", "Sie können das Ende einer For- oder While-schleife nicht editieren, editieren Sie stattdessen den Schleifenkopf."},
        {"repeat", "Eine Repeat-Anweisung kann nicht editiert werden. Bitte editieren Sie die abschliessende Until-Anweisung."},
    };
    TDVCmdLoop command;
    for (const auto& [line, message] : rows) {
        QString shown;
        const TEdited out = EditLine(command, line, "MessageDlg", [&](QWidget& box) {
            shown = static_cast<QMessageBox&>(box).text();
            static_cast<QMessageBox&>(box).accept();
        });
        EXPECT_EQ(shown, message) << line;
        EXPECT_FALSE(out.confirmed);
        EXPECT_EQ(out.line, line);
    }
}

TEST(LoopFormTest, EachKindShowsOnlyItsGroupAndSizesTheDialog)
{
    const std::pair<const char*, const char*> kinds[] = {
        {"RadioFor", "GB_ForLoop"}, {"RadioWhile", "GB_WhileLoop"}, {"RadioRepeat", "GB_RepeatLoop"}, {"RadioFor", "GB_ForLoop"}};
    TDVCmdLoop command;
    command.SetDefaults();
    EditLine(command, "", "TDVGUILoop", [&](QWidget& d) {
        EXPECT_EQ(d.windowTitle(), "Schleifen");
        EXPECT_EQ(Find<QPushButton>(d, "BT_OK").text(), "&OK");
        EXPECT_EQ(Find<QPushButton>(d, "BT_Cancel").text(), "&Abbrechen");
        for (const auto& [radio, group] : kinds) {
            Click(d, radio);
            QApplication::processEvents();
            for (const char* g : {"GB_ForLoop", "GB_WhileLoop", "GB_RepeatLoop"}) {
                EXPECT_EQ(Find<QGroupBox>(d, g).isVisible(), QString(g) == group) << radio << " " << g;
            }
            EXPECT_EQ(d.height(), Find<QGroupBox>(d, "RG_Type").height() + Find<QGroupBox>(d, group).height() + 75) << radio;
        }
        Click(d, "BT_Cancel");
    });
}

}  // namespace
}  // namespace dv
