// The conversion of dvrun --convert passes the structure lines through their commands'
// RecodeScript: an older script's case branches become runnable, decimal commas become points, and
// structure lines already in the current form stay as they are.
#include "host/importer.h"
#include "tests/host/scriptrun.h"

#include <gtest/gtest.h>

namespace dv::host::test {
namespace {

TEST(StructureRecode, OlderCaseBranchesAndDecimalCommasAreConvertedAndTheScriptRuns)
{
    const QStringList older = {
        "var Modus : Number = 3",
        "var Wert : Number = 1",
        "var Text : String = \"a,b\"",
        "//  Auswahl   ",
        "case  Modus  of",
        "  1:",
        "    Text := \"eins\"",
        "  2 :",
        "    Text := \"zwei\"",
        "  3:",
        "    Text := \"drei\"",
        "  631:end case",
        "93:if Wert < 1,5 then  ",
        "  Log(Text)",
        "911:else",
        "  Log(\"nein\")",
        "912:end if;",
        "if Text = \"a,b\" then",
        "  Log(\"Komma\")",
        "end if",
        "  for I := 1 to 2 do  ",
    };
    // Only the older branches and the decimal comma change; comments, heads and their blanks stay.
    QStringList converted = older;
    converted[5] = "  select 1:";
    converted[7] = "  select 2 :";
    converted[9] = "  select 3:";
    converted[12] = "93:if Wert < 1.5 then  ";
    for (const QString& eol : {QString("\n"), QString("\r\n")}) {
        THost host;
        const QString out = ConvertScript(older.join(eol), host.Commands());
        EXPECT_EQ(out, converted.join(eol)) << out.toStdString();
    }
    // Lines inside a block comment are text: an older branch there stays.
    THost host;
    const QString commented = "var M : Number\ncase M of\n(*\n  3:\n*)\nend case\n";
    EXPECT_EQ(ConvertScript(commented, host.Commands()), commented);
    EXPECT_EQ(RunScriptText(commented).exitCode, 0);
    // The for line without its block is there for the conversion only.
    EXPECT_EQ(RunScriptText(older.mid(0, 20).join('\n')).exitCode, 2);
    const TScriptOutcome run = RunScriptText(converted.mid(0, 20).join('\n'));
    EXPECT_EQ(run.exitCode, 0) << run.errors.join('\n').toStdString();
    EXPECT_EQ(run.output, QStringList{"drei"});
}

}  // namespace
}  // namespace dv::host::test
