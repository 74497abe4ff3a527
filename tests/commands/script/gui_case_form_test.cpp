// The case dialog driven through EditCommand.
#include "commands/script/gui_case.h"
#include "tests/commands/script/structuredriver.h"

#include <QRadioButton>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

TEST(CaseFormTest, WritesAHeadWithItsClosingLineOnlyWhenNewAndABranchWithout)
{
    const struct {
        const char* line;
        const char* box;  // typed into
        const char* typed;
        const char* button;
        const char* checked;  // the radio button checked when shown
        TEdited out;
    } rows[] = {
        {"", "Edit_Selektor", "Modus", "BT_OK", "RB_Anweisung", {true, "case Modus of\r\n631:end case"}},
        {"case Modus of", "Edit_Selektor", "Betrieb", "BT_OK", "RB_Anweisung", {true, "case Betrieb of"}},
        {"select 3:", "Edit_Fall", nullptr, "BT_OK", "RB_Verzweigung", {true, "select 3:"}},
        {"", "Edit_Fall", "7", "BT_OK", "RB_Anweisung", {true, "select 7:"}},  // typing checks "Fall"
        {"case Modus of", "Edit_Fall", "4", "BT_OK", "RB_Anweisung", {true, "select 4:"}},
        {"select 3:", "Edit_Selektor", "Neu", "BT_OK", "RB_Verzweigung", {true, "case Neu of"}},
        {"case Modus of", "Edit_Fall", "4", "BT_Cancel", "RB_Anweisung", {false, "case Modus of"}},
        // A line of blanks is no new statement: it reads as a branch, and a head written on it
        // gets no closing line.
        {"  ", "Edit_Selektor", "Modus", "BT_OK", "RB_Verzweigung", {true, "case Modus of"}},
    };
    TDVCmdCase command;
    for (const auto& r : rows) {
        command.SetDefaults();
        QString checked;
        QString value;
        const TEdited out = EditLine(command, r.line, "T_Case", [&](QWidget& d) {
            EXPECT_EQ(d.windowTitle(), "Case");
            checked = Find<QRadioButton>(d, "RB_Anweisung").isChecked() ? "RB_Anweisung" : "";
            checked += Find<QRadioButton>(d, "RB_Verzweigung").isChecked() ? "RB_Verzweigung" : "";
            value = Find<QLineEdit>(d, "Edit_Fall").text();
            if (r.typed) Type(d, r.box, r.typed);
            Click(d, r.button);
        });
        EXPECT_EQ(checked, r.checked) << r.line;
        if (QString(r.line) == "select 3:") {
            EXPECT_EQ(value, "3");
        }
        EXPECT_EQ(out.confirmed, r.out.confirmed) << r.line;
        EXPECT_EQ(out.line, r.out.line) << r.line << " " << r.typed;
    }
}

}  // namespace
}  // namespace dv
