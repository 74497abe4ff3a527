// The case command's reading and writing of head and branch lines.
#include "commands/script/gui_case.h"
#include "tests/commands/params.h"

#include <gtest/gtest.h>

namespace dv {
namespace {

TEST(CaseLinesTest, ParseCaseReadsHeadOrBranchAndKeepsTheOtherText)
{
    const struct {
        const char* line;
        TCaseMode mode;
        const char* selector;
        const char* value;
    } rows[] = {
        {"case Modus of", TCaseMode::Head, "Modus", "alt"},
        {"CASE  a + 1  OF", TCaseMode::Head, "a + 1", "alt"},
        {"select 3:", TCaseMode::Branch, "Vorher", "3"},
        {"SELECT \"ab\" :  // Kommentar", TCaseMode::Branch, "Vorher", "\"ab\""},
        {"631:case X of", TCaseMode::Head, "X", "alt"},
    };
    for (const auto& r : rows) {
        TDVCmdCase command;
        command.SetFields({"Vorher", "alt", TCaseMode::Head});
        command.ParseCase(r.line);
        EXPECT_EQ(command.Fields(), (TDVCmdCaseFields{r.mode == TCaseMode::Head ? r.selector : "Vorher",
                                                      r.mode == TCaseMode::Branch ? r.value : "alt", r.mode}))
            << r.line;
    }
}

TEST(CaseLinesTest, RecodeWritesOlderHeadsAndBranchesInTheCurrentForm)
{
    const std::pair<const char*, const char*> rows[] = {
        {"case Modus of", "case Modus of"},
        {"  case  Modus  of  ", "case Modus of"},
        {"3:", "select 3:"},
        {"  \"ab\":", "select \"ab\":"},
        {"3, 4:", "select 3, 4:"},
        {"of", "case  of"},  // shorter than its two words: nothing is left of the selector
    };
    TDVCmdCase command;
    for (const auto& [older, current] : rows) EXPECT_EQ(command.RecodeScript(older, nullptr), current) << older;
}

}  // namespace
}  // namespace dv
