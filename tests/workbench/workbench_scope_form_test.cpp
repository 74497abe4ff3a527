// Scope lines in the workbench: written from the palette through the scope editor and run, and
// re-edited with F2, where an unchanged editor gives back the same line.
#include "tests/commands/formdriver.h"
#include "workbench/mainwindow.h"
#include "workbench/palette.h"
#include "workbench/scripteditor.h"

#include <QComboBox>
#include <QCompleter>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTreeWidget>

#include <gtest/gtest.h>

namespace dv::workbench {
namespace {

using dv::test::Click;
using dv::test::Find;
using dv::test::OnModal;
using dv::test::Type;

class WorkbenchScope : public ::testing::Test {
protected:
    WorkbenchScope() { window.show(); }
    void SetScript(const QString& text)
    {
        window.Editor().setPlainText(text);
        window.Editor().CheckNow();
    }
    // F2 on the line; act works the scope editor and closes it.
    bool EditLine(int line, std::function<void(QWidget&)> act)
    {
        window.Editor().GoToLine(line);
        OnModal("TFormScope", std::move(act));
        return window.EditCurrentLine();
    }
    QString VariableValue(const QString& name)
    {
        const auto found = window.Variables().findItems(name, Qt::MatchExactly, 0);
        return found.isEmpty() ? QStringLiteral("<fehlt>") : found.first()->text(1) + ' ' + found.first()->text(2);
    }

    TMainWindow window;
};

TEST_F(WorkbenchScope, PaletteWritesAScopeCallThatRuns)
{
    SetScript("var A : Array of Number\nvar M : Number\nA[1] := 2\nA[2] := 4\nA[3] := 6\n");
    window.Editor().GoToLine(6);
    bool offersVariables = false;
    OnModal("TFormScope", [&offersVariables](QWidget& w) {
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
    TCommandPalette& palette = window.Palette();
    palette.setCurrentItem(palette.ItemOf("Scope"));
    QTest::keyClick(&palette, Qt::Key_Return);
    EXPECT_EQ(window.Editor().LineText(6), "Scope(Command := \"[HIDE],1:[ARRAY:A,FREQ:1],[FX:QUERY:1:2:1],[OUT:M]\", Special := \"\");");
    EXPECT_TRUE(offersVariables);

    QSignalSpy finished(&window, &TMainWindow::RunFinished);
    window.Run();
    QElapsedTimer timer;
    timer.start();
    while (finished.isEmpty() && timer.elapsed() < 20000) QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    ASSERT_FALSE(finished.isEmpty()) << "the run did not end";
    // The curve's Y at X = 1 is the second element.
    EXPECT_EQ(VariableValue("M"), "Number 4");
}

TEST_F(WorkbenchScope, F2GivesBackTheSameLineAndWritesWhatWasChanged)
{
    // A string literal whose source holds a quoted file name, with scaling in Special.
    const QString literal = "Scope(Command := \"[SETSCALE],[HIDE],1:[FILE:\"\"/tmp/a b.txt\"\",SEP:59],[FX:MID:1],[OUT:M]\", "
                            "Special := \"[SETSCALE:18:9:0:0:0:270]\");";
    // An expression: the pieces between the tags stay as they were written.
    const QString expression = "  Scope(Command := \"[CLR],1:[\" + Quelle + \"],[FX:MID:1],[OUT:M]\", Special := \"\");";
    SetScript("var Quelle : String\nvar M : Number\n" + literal + '\n' + expression);

    EXPECT_TRUE(EditLine(3, [](QWidget& w) {
        EXPECT_EQ(Find<QLineEdit>(w, "Edit_Curve1").text(), "FILE:\"/tmp/a b.txt\",SEP:59");
        Click(w, "BT_OK");
    }));
    EXPECT_EQ(window.Editor().LineText(3), literal);

    EXPECT_FALSE(EditLine(4, [](QWidget& w) {
        Type(w, "Edit_Result", "N");
        Click(w, "BT_Cancel");
    }));
    EXPECT_EQ(window.Editor().LineText(4), expression);

    EXPECT_TRUE(EditLine(4, [](QWidget& w) {
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
