// The if-then-else command's reading of a script line.
#include "commands/script/gui_ifthenelse.h"
#include "tests/commands/params.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

TEST(IfConditionTest, CutsBetweenIfAndTwoCharactersBeforeThen)
{
    const std::pair<const char*, const char*> rows[] = {
        {"if a > 5 then", "a > 5"},
        {"if (x = 1) AND y then", "(x = 1) AND y"},
        {"  IF  b  Then  ", "b"},
        {"if (a)then", "(a"},  // the character before THEN is taken for the blank and left out
        {"", ""},
        {"x := 1", ""},
        {"if a > 5", ""},
        {"while x then", "hile x"},  // no IF: the cut starts at the second character
    };
    for (const auto& [line, condition] : rows) EXPECT_EQ(IfCondition(line), condition) << line;
    EXPECT_EQ(TDVCmdIfThenElse().RecodeScript("  if a > 1,5 then ", nullptr), "if a > 1.5 then");
}

}  // namespace
}  // namespace dv
