// The comment command's reading of a script line.
#include "commands/script/gui_bemerkung.h"
#include "tests/commands/params.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

TEST(CommentTextTest, TakesTheBlockOrLineCommentAndALineWithoutMarkerLosesItsFirstCharacter)
{
    const std::pair<const char*, const char*> rows[] = {
        {"//   Hallo", "Hallo"},
        {"(* zwei Worte *)", "zwei Worte"},
        {"", ""},
        {"abc", "bc"},  // no marker: read from the second character on
        {"x := 1 //  Rest  ", "Rest"},
        {"(* nicht geschlossen", ""},
        {"// a (* b *) c", "b"},  // a block marker anywhere wins
        {"(* a *) // b", "a"},
        {"a // b // c", "b // c"},
    };
    for (const auto& [line, text] : rows) EXPECT_EQ(CommentText(line), text) << line;
    EXPECT_EQ(TDVCmdComment().RecodeScript("  //  x  ", nullptr), "//  x");
}

}  // namespace
}  // namespace dv
