// The structure commands' reading and writing of script lines, without their dialogs: comments,
// if heads, case heads and branches, loop heads.
#include "commands/script/gui_bemerkung.h"
#include "commands/script/gui_case.h"
#include "commands/script/gui_ifthenelse.h"
#include "commands/script/gui_loop.h"
#include "framework/scanner.h"
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

TEST(CaseLinesTest, ParseCaseReadsHeadOrBranchAndKeepsTheOtherText)
{
    const struct { const char* line; TCaseMode mode; const char *selector, *value; } rows[] = {
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

class LoopLinesTest : public ::testing::Test {
protected:
    TDVCmdLoopFields ForLoop(const QString& line)
    {
        TScanner scanner;
        scanner.SetScript(line, 0);
        loop.ParseForLoop(scanner);
        return loop.Fields();
    }
    TDVCmdLoop loop;
};

TEST_F(LoopLinesTest, ForHeadJoinsTheTokensOfEachBoundWithoutBlanks)
{
    const struct { const char *line, *name, *start, *end; } rows[] = {
        {"for I := 1 to 10 do", "I", "1", "10"},
        {"for I := 1 to N - 1 do", "I", "1", "N-1"},
        {"FOR Zaehler := A [ 2 ] TO B * ( C + 1 ) DO", "Zaehler", "A[2]", "B*(C+1)"},
        {"for I := Laenge + \"a b\" to 3 do", "I", "Laenge+\"a b\"", "3"},
    };
    for (const auto& r : rows) {
        const TDVCmdLoopFields f = ForLoop(r.line);
        EXPECT_EQ(f.type, TLoopType::For) << r.line;
        EXPECT_EQ(f.loopVarName, r.name) << r.line;
        EXPECT_EQ(f.startValue, r.start) << r.line;
        EXPECT_EQ(f.endValue, r.end) << r.line;
    }
    for (const char* bad : {"for I = 1 to 3 do", "for 3 := 1 to 3 do", "for I := 1 to 3", "for I := 1 downto 0 do"}) {
        EXPECT_TRUE(test::RaisedMessage<TDravikException>([&] { ForLoop(bad); })) << bad;
    }
}

TEST_F(LoopLinesTest, WhileKeepsTheBlanksAndUntilLosesItsKeywordAndSemicolon)
{
    const std::pair<const char*, const char*> whileRows[] = {
        {"while (a > 0) do", " (a > 0) "},
        {"WHILE x DO", " x "},
        {"while done do", " done "},  // the last "do" ends the condition
    };
    for (const auto& [line, condition] : whileRows) {
        loop.ParseWhileLoop(line);
        EXPECT_EQ(loop.Fields().type, TLoopType::While);
        EXPECT_EQ(loop.Fields().whileCondition, condition) << line;
    }
    EXPECT_EQ(test::RaisedMessage<TDravikException>([&] { loop.ParseWhileLoop("while x"); }), "\"do\" erwartet aber nicht gefunden.");

    const std::pair<const char*, const char*> untilRows[] = {
        {"until  x = 5 ;", "x = 5"},
        {"UNTIL Fertig", "Fertig"},
        {"until a = \";\"; ", "a = \";\""},  // only the last ";" goes
    };
    for (const auto& [line, condition] : untilRows) {
        loop.ParseRepeatLoop(line);
        EXPECT_EQ(loop.Fields().type, TLoopType::Repeat);
        EXPECT_EQ(loop.Fields().repeatCondition, condition) << line;
    }
}

TEST_F(LoopLinesTest, ALineThatIsNoLoopHeadIsReportedAndLeftAlone)
{
    const std::pair<const char*, const char*> rows[] = {
        {"x := 1", "Die Kommandozeile konnte nicht geparst werden: Fehler beim Parsen der Kommandozeile: for, while oder repeat erwartet"},
        {"while x", "Die Kommandozeile konnte nicht geparst werden: \"do\" erwartet aber nicht gefunden."},
        {"for I 1 to 3 do", "Die Kommandozeile konnte nicht geparst werden: \":=\" erwartet bei '1'"},
        {"\"offen", "Die Kommandozeile konnte nicht geparst werden: Zeichenkette wird nicht geschlossen"},
        // Only an empty line asks for a new loop; blanks are a line without a loop word.
        {"   ", "Die Kommandozeile konnte nicht geparst werden: Fehler beim Parsen der Kommandozeile: for, while oder repeat erwartet"},
    };
    for (const auto& [line, message] : rows) {
        QString text;
        QString script = line;
        EXPECT_EQ(test::RaisedMessage<TDravikException>([&] { loop.EditCommand(1, 1, text, script); }), message) << line;
        EXPECT_EQ(script, line);
    }
    EXPECT_EQ(loop.RecodeScript("  while a do  ", nullptr), "while a do");
}

}  // namespace
}  // namespace dv
