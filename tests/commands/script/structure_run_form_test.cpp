// Blocks inserted through the structure commands' dialogs, their bodies filled in, run by the
// interpreter: the lines the commands write are the script language's own blocks.
#include "commands/script/gui_bemerkung.h"
#include "commands/script/gui_case.h"
#include "commands/script/gui_ifthenelse.h"
#include "commands/script/gui_loop.h"
#include "host/hostservices.h"
#include "host/runner.h"
#include "tests/commands/formdriver.h"

#include <gtest/gtest.h>

#include <functional>

namespace dv {
namespace {

using namespace test;

using TFill = std::vector<std::pair<const char*, const char*>>;  // edit box, text

// Inserts a new block on an empty line through command's dialog, filled as given and confirmed.
QStringList Insert(TDVRunEdit& command, const char* form, const char* radio, const TFill& fill)
{
    command.SetDefaults();
    OnModal(form, [&](QWidget& d) {
        if (radio) Click(d, radio);
        for (const auto& [box, text] : fill) Type(d, box, text);
        Click(d, "BT_OK");
    });
    QString text;
    QString line;
    EXPECT_TRUE(command.EditCommand(1, 1, text, line)) << form;
    return line.split(QStringLiteral("\r\n"));
}

// Runs a script in a fresh host: the lines it logged, or its errors.
QStringList RunScript(const QString& script)
{
    QStringList logged;
    host::THost host;
    host.SetOutput([&](const QString& line) { logged << line; }, {});
    host::TScriptRun run(QStringLiteral("eingefuegt.dvs"), host);
    if (run.Load(script)) run.Run();
    return run.Report().errors.isEmpty() ? logged : run.Report().errors;
}

class StructureRunTest : public ::testing::Test {
protected:
    // Edits happen with the script's declarations known to the host parser, as in the editor.
    QStringList Edit(const QString& declarations, const std::function<QStringList()>& insert)
    {
        host::THost host;
        host::TScriptRun run(QStringLiteral("bearbeitet.dvs"), host);
        EXPECT_TRUE(run.Load(declarations));
        return insert();
    }
    TDVCmdLoop loop;
    TDVCmdCase cases;
    TDVCmdIfThenElse ifThenElse;
    TDVCmdComment comment;
};

TEST_F(StructureRunTest, InsertedLoopsRunTheirBodies)
{
    const QString declarations = "var I : Number\nvar N : Number\nvar Summe : Number";
    QStringList forBlock = Edit(declarations, [&] {
        return Insert(loop, "TDVGUILoop", "RadioFor", {{"Edit_LoopVarName", "I"}, {"Edit_StartValue", "1"}, {"Edit_EndValue", "10"}});
    });
    forBlock.insert(1, "  Summe := Summe + I");
    QStringList whileBlock = Edit(declarations, [&] {
        return Insert(loop, "TDVGUILoop", "RadioWhile", {{"Edit_WhileCondition", "N < 3"}});
    });
    whileBlock.insert(1, "  N := N + 1");
    QStringList repeatBlock = Edit(declarations, [&] {
        return Insert(loop, "TDVGUILoop", "RadioRepeat", {{"Edit_RepeatCondition", "N >= 7"}});
    });
    repeatBlock.insert(1, "  N := N + 2");
    const QStringList script = QStringList{declarations} + forBlock + QStringList{"Log(Summe)"} + whileBlock +
                               QStringList{"Log(N)"} + repeatBlock + QStringList{"Log(N)"};
    EXPECT_EQ(RunScript(script.join("\r\n")), (QStringList{"55", "3", "7"})) << script.join('\n').toStdString();
}

TEST_F(StructureRunTest, InsertedCaseRunsTheMatchingBranch)
{
    const QString declarations = "var Modus : Number\nvar Text : String";
    QStringList block = Edit(declarations, [&] { return Insert(cases, "T_Case", nullptr, {{"Edit_Selektor", "Modus"}}); });
    ASSERT_EQ(block.size(), 2);
    const QStringList one = Edit(declarations, [&] { return Insert(cases, "T_Case", nullptr, {{"Edit_Fall", "1"}}); });
    const QStringList three = Edit(declarations, [&] { return Insert(cases, "T_Case", nullptr, {{"Edit_Fall", "2 + 1"}}); });
    block.insert(1, one.front());
    block.insert(2, "  Text := \"eins\"");
    block.insert(3, three.front());
    block.insert(4, "  Text := \"drei\"");
    for (const char* modus : {"1", "3", "2"}) {
        const QString script = declarations + "\r\nModus := " + modus + "\r\n" + block.join("\r\n") + "\r\nLog(\"[\" + Text + \"]\")";
        const QString expected = QString(modus) == "1" ? "[eins]" : QString(modus) == "3" ? "[drei]" : "[]";
        EXPECT_EQ(RunScript(script), QStringList{expected}) << script.toStdString();
    }
}

TEST_F(StructureRunTest, InsertedIfRunsOneOfItsBranchesAndAnInsertedCommentNothing)
{
    const QString declarations = "var A : Number";
    QStringList block = Edit(declarations, [&] { return Insert(ifThenElse, "TIfThenElse", nullptr, {{"Edit_Vergleich1", "A > 5"}}); });
    ASSERT_EQ(block.size(), 3);
    block.insert(2, "  Log(\"klein\")");
    block.insert(1, "  Log(\"gross\")");
    const QStringList remark = Insert(comment, "TBemerkung", nullptr, {{"Edit_Bemerkung", "Log(\"nie\")"}});
    for (const char* a : {"9", "5"}) {
        const QString script = declarations + "\r\nA := " + a + "\r\n" + remark.join("") + "\r\n" + block.join("\r\n");
        EXPECT_EQ(RunScript(script), QStringList{QString(a) == "9" ? "gross" : "klein"}) << script.toStdString();
    }
}

}  // namespace
}  // namespace dv
