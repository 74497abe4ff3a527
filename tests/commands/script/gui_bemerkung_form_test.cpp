// The comment dialog driven through EditCommand.
#include "commands/script/gui_bemerkung.h"
#include "tests/commands/script/structuredriver.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

TEST(CommentFormTest, ShowsTheCommentTextAndWritesALineComment)
{
    const struct {
        const char* line;
        const char* typed;
        const char* button;
        const char* shown;
        TEdited out;
    } rows[] = {
        {"//   Hallo", nullptr, "BT_OK", "Hallo", {true, "// Hallo"}},
        {"(* zwei Worte *)", nullptr, "BT_OK", "zwei Worte", {true, "// zwei Worte"}},
        {"", nullptr, "BT_OK", "", {true, "// "}},
        {"abc", nullptr, "BT_OK", "bc", {true, "// bc"}},
        {"// alt", "neu", "BT_OK", "alt", {true, "// neu"}},
        {"// alt", "neu", "BT_Cancel", "alt", {false, "// alt"}},
        {"(* alt *)", "neu", "Escape", "alt", {false, "(* alt *)"}},
    };
    TDVCmdComment command;
    for (const auto& r : rows) {
        command.SetDefaults();
        QString shown;
        const TEdited out = EditLine(command, r.line, "TBemerkung", TypeAndClose("Edit_Bemerkung", r.typed, r.button, &shown));
        EXPECT_EQ(shown, r.shown) << r.line;
        EXPECT_EQ(out.confirmed, r.out.confirmed) << r.line;
        EXPECT_EQ(out.line, r.out.line) << r.line;
    }
}

}  // namespace
}  // namespace dv
