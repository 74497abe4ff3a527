// The loop command's reading and writing of loop lines, without its dialog.
#include "commands/script/gui_loop.h"
#include "framework/scanner.h"
#include "tests/commands/params.h"

#include <gtest/gtest.h>

#include <optional>

namespace dv {
namespace {

// The message of the TDravikException body raised, nullopt when it ran through.
template <class Body>
std::optional<QString> Raised(Body&& body)
{
    try {
        body();
    } catch (const TDravikException& e) {
        return e.Message();
    }
    return std::nullopt;
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
    const struct {
        const char* line;
        const char* name;
        const char* start;
        const char* end;
    } rows[] = {
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
        EXPECT_TRUE(Raised([&] { ForLoop(bad); })) << bad;
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
    EXPECT_EQ(Raised([&] { loop.ParseWhileLoop("while x"); }), "\"do\" erwartet aber nicht gefunden.");

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
        EXPECT_EQ(Raised([&] { loop.EditCommand(1, 1, text, script); }), message) << line;
        EXPECT_EQ(script, line);
    }
    EXPECT_EQ(loop.RecodeScript("  while a do  ", nullptr), "while a do");
}

}  // namespace
}  // namespace dv
