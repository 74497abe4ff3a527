// Scope lines in the workbench: written from the palette through the scope editor and run, and
// re-edited with F2, where an unchanged editor gives back the same line.
#include "tests/commands/formdriver.h"
#include "tests/workbench/workbenchdriver.h"

#include <QComboBox>
#include <QCompleter>

#include <gtest/gtest.h>

namespace dv::workbench {
namespace {

using dv::test::Click;
using dv::test::Find;
using dv::test::OnModal;
using dv::test::Type;

using test::WorkbenchTest;

// F2 on the line; act works the scope editor and closes it.
bool EditScopeLine(TMainWindow& window, int line, std::function<void(QWidget&)> act)
{
    window.Editor().GoToLine(line);
    OnModal("TFormScope", std::move(act));
    return window.EditCurrentLine();
}

TEST_F(WorkbenchTest, PaletteWritesAScopeCallThatRuns)
{
    SetScript("var A : Array of Number\nvar M : Number\nA[1] := 2\nA[2] := 4\nA[3] := 6\n");
    window.Editor().GoToLine(6);
    bool offersVariables = false;
    InsertFromPalette("Scope", "TFormScope", [&offersVariables](QWidget& w) {
        EXPECT_FALSE(Find<QCheckBox>(w, "CB_EN_Curve1").isChecked()) << "a new call opens on an empty editor";
        EXPECT_EQ(Find<QComboBox>(w, "FuncSelect").currentIndex(), 0);
        offersVariables = Find<QLineEdit>(w, "Edit_Result").completer() != nullptr;
        OnModal("TScopeSource", [](QWidget& d) {
            Click(d, "RB_Array");
            Type(d, "Edit_Array", "A");
            Type(d, "Edit_Array_Y", "1");
            Click(d, "BT_OK");
        });
        Click(w, "BT_Source1");
        Find<QComboBox>(w, "FuncSelect").setCurrentIndex(9);  // "x/y-Abfrage"
        Find<QComboBox>(w, "CB_FxChoice1").setCurrentIndex(1);  // search by "Y"
        Type(w, "Edit_FxParam1", "1");
        Type(w, "Edit_Result", "M");
        Click(w, "RB_HideScope");
        Click(w, "BT_OK");
    });
    EXPECT_EQ(window.Editor().LineText(6), "Scope(Command := \"[HIDE],1:[ARRAY:A,FREQ:1],[FX:QUERY:1:2:1],[OUT:M]\", Special := \"\");");
    EXPECT_TRUE(offersVariables);

    RunToEnd();
    // The curve's Y at X = 1 is the second element.
    EXPECT_EQ(VariableValue("M"), "Number 4");
}

TEST_F(WorkbenchTest, F2OnAScopeLineGivesBackTheSameLineAndWritesWhatWasChanged)
{
    // A string literal whose source holds a quoted file name, with scaling in Special.
    const QString literal = "Scope(Command := \"[SETSCALE],[HIDE],1:[FILE:\"\"/tmp/a b.txt\"\",SEP:59],[FX:MID:1],[OUT:M]\", "
                            "Special := \"[SETSCALE:18:9:0:0:0:270]\");";
    // An expression: the pieces between the tags stay as they were written.
    const QString expression = "  Scope(Command := \"[CLR],1:[\" + Quelle + \"],[FX:MID:1],[OUT:M]\", Special := \"\");";
    SetScript("var Quelle : String\nvar M : Number\n" + literal + '\n' + expression);

    EXPECT_TRUE(EditScopeLine(window, 3, [](QWidget& w) {
        EXPECT_EQ(Find<QLineEdit>(w, "Edit_Curve1").text(), "FILE:\"/tmp/a b.txt\",SEP:59");
        Click(w, "BT_OK");
    }));
    EXPECT_EQ(window.Editor().LineText(3), literal);

    EXPECT_FALSE(EditScopeLine(window, 4, [](QWidget& w) {
        Type(w, "Edit_Result", "N");
        Click(w, "BT_Cancel");
    }));
    EXPECT_EQ(window.Editor().LineText(4), expression);

    EXPECT_TRUE(EditScopeLine(window, 4, [](QWidget& w) {
        EXPECT_EQ(Find<QLineEdit>(w, "Edit_Curve1").text(), "\" + Quelle + \"");
        Type(w, "Edit_Result", "N");
        Click(w, "BT_OK");
    }));
    EXPECT_EQ(window.Editor().LineText(4), "  Scope(Command := \"[CLR],1:[\" + Quelle + \"],[FX:MID:1],[OUT:N]\", Special := \"\");");
    window.Editor().CheckNow();
    EXPECT_TRUE(window.Editor().LastCheck().errors.empty()) << "the written lines read back as calls";
}

}  // namespace
}  // namespace dv::workbench
