// The if-then-else dialog driven through EditCommand, its condition checked by the host parser.
#include "commands/script/gui_ifthenelse.h"
#include "host/hostservices.h"
#include "host/runner.h"
#include "tests/commands/script/structuredriver.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

// A host whose parser knows the variables the edited script declares.
class EditedScript {
public:
    explicit EditedScript(const QString& declarations) : run_(QStringLiteral("edit.dvs"), host_)
    {
        EXPECT_TRUE(run_.Load(declarations)) << run_.Report().errors.join('\n').toStdString();
    }

private:
    host::THost host_;
    host::TScriptRun run_;
};

TEST(IfThenElseFormTest, WritesTheHeadAndForANewStatementItsElseAndEndLines)
{
    EditedScript script("var a : Number\nvar x : Number\nvar y : Boolean");
    const struct {
        const char* line;
        const char* typed;
        const char* button;
        const char* shown;
        TEdited out;
    } rows[] = {
        {"", "a > 5", "BT_OK", "", {true, "if a > 5 then\r\n911:else\r\n912:end if;"}},
        {"if (x = 1) AND y then", nullptr, "BT_OK", "(x = 1) AND y", {true, "if (x = 1) AND y then"}},
        {"if a > 5 then", "a < 2", "BT_Cancel", "a > 5", {false, "if a > 5 then"}},
        // Only an empty line is a new statement: on a line of blanks the head comes alone.
        {"   ", "a > 5", "BT_OK", "", {true, "if a > 5 then"}},
    };
    TDVCmdIfThenElse command;
    for (const auto& r : rows) {
        QString shown;
        const TEdited out = EditLine(command, r.line, "TIfThenElse", TypeAndClose("Edit_Vergleich1", r.typed, r.button, &shown));
        EXPECT_EQ(shown, r.shown) << r.line;
        EXPECT_EQ(out.confirmed, r.out.confirmed) << r.line;
        EXPECT_EQ(out.line, r.out.line) << r.line;
    }
}

TEST(IfThenElseFormTest, ARejectedConditionKeepsTheDialogOpen)
{
    EditedScript script("var a : Number");
    TDVCmdIfThenElse command;
    for (const char* rejected : {"a >", "b > 1", "a > 5 5", ""}) {
        bool stayedOpen = false;
        const TEdited out = EditLine(command, "if a > 5 then", "TIfThenElse", [&](QWidget& d) {
            EXPECT_EQ(d.windowTitle(), "Bedingte Ausführung");
            Type(d, "Edit_Vergleich1", rejected);
            Click(d, "BT_OK");
            stayedOpen = d.isVisible();
            Type(d, "Edit_Vergleich1", "a = 1");
            Click(d, "BT_OK");
        });
        EXPECT_TRUE(stayedOpen) << rejected;
        EXPECT_EQ(out.line, "if a = 1 then") << rejected;
        EXPECT_TRUE(out.confirmed);
    }
}

}  // namespace
}  // namespace dv
