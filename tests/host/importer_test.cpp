// Current-form lines written from a signature and a list and read back; the importer of older lines.
#include "framework/registry.h"
#include "host/importer.h"
#include "tests/host/scriptrun.h"

#include <gtest/gtest.h>

#include <map>

namespace dv::host::test {
namespace {

struct TConverted { QString text; QStringList warnings; };

TConverted Convert(const QString& script)
{
    THost host;
    TConverted c;
    c.text = ConvertScript(script, host.Commands(), &c.warnings);
    return c;
}

TEST(CommandLine, EveryAvailableCommandsLineReadsBackToTheSameList)
{
    THost host;
    const QStringList samples{"\"Text, mit Komma\"", "[10, 13]", "{72}{65}", "(1 + 2) * 3", "Variable", "True", "-1.5"};
    int commands = 0;
    for (const TCommandClass& c : CommandClasses()) {
        auto* command = dynamic_cast<TDVThreadRunEdit*>(host.Commands().ForClass(c.commandClass));
        if (!command) continue;  // structure commands write their own blocks
        ++commands;
        TParamList given;
        int i = 0;
        for (const TDVParamDecl& p : command->Signature().params) given.AddString(p.name, samples[i++ % samples.size()]);
        command->SetParams(given);
        TParamList list;
        command->ReadParams(list);
        const QString line = WriteCommandLine(command->Signature(), list);
        TParamList back;
        ASSERT_TRUE(ReadCommandLine(line, command->Signature(), back)) << line.toStdString();
        // A parameter the command leaves out of its list reads back as its default.
        command->AddDefaults(list);
        EXPECT_EQ(back.Count(), list.Count()) << c.commandClass << ": " << line.toStdString();
        for (const QString& name : list.Names()) {
            EXPECT_EQ(back.GetString(name), list.GetString(name)) << c.commandClass << "." << name.toStdString();
        }
    }
    EXPECT_GT(commands, 0);
}

TEST(CommandLine, TrailingDefaultsAreLeftOutAndRestoredWhenRead)
{
    const TDVSignature sig = ParseSignature("procedure TCP(Host: String; Port: Number; Sentinel: String = [10]; Mode : Number = 0);");
    TParamList list;
    list.AddString("Host", "\"localhost\"");
    list.AddString("Port", "5000");
    list.AddString("Sentinel", "[10]");
    list.AddString("Mode", "0");
    EXPECT_EQ(WriteCommandLine(sig, list), "TCP(Host := \"localhost\", Port := 5000);");
    list.AddString("Sentinel", "[13]");
    EXPECT_EQ(WriteCommandLine(sig, list), "TCP(Host := \"localhost\", Port := 5000, Sentinel := [13]);");
    TParamList back;
    ASSERT_TRUE(ReadCommandLine("  93:TCP(\"h\", 1)", sig, back));
    EXPECT_EQ(back.Names(), (QStringList{"Host", "Port", "Sentinel", "Mode"}));
    EXPECT_EQ(back.GetString("Sentinel"), "[10]");
    EXPECT_FALSE(ReadCommandLine("Scope(1, 2);", sig, back));
}

TEST(CommandLine, ArgumentsSplitOnlyAtTopLevelCommas)
{
    EXPECT_EQ(SplitArguments("a, \"b,c\", [1, 2], f(x, y), {1}{2}"),
              (QStringList{"a", " \"b,c\"", " [1, 2]", " f(x, y)", " {1}{2}"}));
    EXPECT_EQ(SplitArguments(""), QStringList{""});
}

// Working current scripts come out unchanged and still run: calls spread over several lines,
// structure lines with their blanks, assignments to names like older keywords, procedures of the
// script named like older procedures.
TEST(Importer, ScriptsInTheCurrentFormStayByteForByteAndRun)
{
    const QString scripts[] = {
        "var High, Low, round : Number\nHigh := 5\nround := Low * 2\n",
        "var High, Low : Number\r\nHigh := 5\r\nLow := High * 2\r\n",
        "var X : Misc\nTextOut(\"Hallo\")\nNumberConvert(\"ccIntToHex\", 255, X, 4)\n",
        "var S : String\nArrayToStr(S, [72, 105]);  // bleibt\n",
        "var S : String\nvar A : Array of String\nStrToArray(\"123\", A)\nArrayToStr(S, A)",
        "  93:TextOut(Text := \"a\",\n    FontSize := 12)\n",
        "var N : Number\nif N > 1 then\n  TextOut(N + 1)\nend if\n",
        "(* ältere Zeilen, abgeschaltet:\nHexToInt(IN:FF,OUT:N):0;\n*)\n",
        // Calls spread over lines, positional and named.
        "var S : String\nvar X : Misc\nvar A : Array of Number\nTextOut(\"Hallo\",\n        \"Arial\", 12);\n"
        "NumberConvert(\"ccIntToHex\",\n              255, X, 4);\nStrToArray(\"HI\",\n           A);\nArrayToStr(S,\n           A);\n"
        "StringBearbeitung(Input := \"abc\",\n                  Output := X, UpperCase := True);\nTextOut(\"Hallo\" +\n        S);\n",
        // Structure lines in the current form, blanks and spelling as written.
        "// Kommentar mit Blanks am Ende   \nvar I, N : Number\nfor I := 1 to 3 do   \n  N := N + I\t\nend for   \n"
        "while N > 100 do  \n  N := N - 1\nend while\nrepeat\n  N := N - 1\nuntil N < 3  \ncase  N  of    \nselect 2:\n"
        "  Log(\"zwei\")\nend case\nif N > 1.5 then   \n  Log(\"gross\")   \nend if\nFOR I:=1 TO 2 DO\nend for\n"
        "if N > 1 then Log(\"a,b\") end if\n//Kommentar\n   // eingerückt  \n",
        // The script's own procedure shadows the older procedure name.
        "procedure CreateDir(Name : String);\n  Log(Name)\nend procedure\nCreateDir(\"x\")\n",
    };
    for (const QString& script : scripts) {
        const TConverted c = Convert(script);
        EXPECT_EQ(c.text.toStdString(), script.toStdString());
        EXPECT_TRUE(c.warnings.isEmpty()) << script.toStdString() << c.warnings.join('\n').toStdString();
        const TScriptOutcome run = RunScriptText(script);
        EXPECT_EQ(run.exitCode, 0) << script.toStdString() << run.errors.join('\n').toStdString();
    }
}

// A line that cannot become a current line stays as it was, marked, is named in a warning with its
// reason, and still fails where it failed, and nothing else does: a command call that the current
// grammar cannot read and that is no older line of its command (a typo), one that reads only with
// words the script does not declare (older or misspelt: only its author knows), an older line whose
// decoded arguments make no current line.
TEST(Importer, LinesThatCannotBecomeCurrentLinesAreKeptWithTheirReason)
{
    const QString head = "var S : String\nvar X : Misc\nvar A : Array of String\n";
    const struct { const char *line, *reason; } rows[] = {  // reason: part of the reason given
        {"TextOut(\"Hallo\" + S;", "\")\" erwartet (für \"(\" in Zeile 4)"},
        {"TextOut(Text := \"Hallo\" + S;", "\")\" erwartet"},
        {"TextOut(\"[OUT:\" + S;", "\")\" erwartet"},  // the marker is text, not the older form
        {"NumberConvert(\"ccIntToHex\", 255, X, 4;", "\")\" erwartet"},
        {"ArrayToStr(S, [72, 105];", "\")\" erwartet"},
        {"HexToInt(FF);", ""},  // an older name without the older form's markers
        {"StrToArray(Hallo, A);", "\"Hallo\" wurde nicht als Variable deklariert"},
        {"ArrayToStr(A, B);", "\"B\" wurde nicht als Variable deklariert"},
        {"HexToInt(IN:FF,OUT:A[1]):0;", "Output erwartet eine Variable, nicht \"A[1]\""},
        {"formatstr(IN:x,OUT:A);", "keine ältere Zeile von StringBearbeitung"},  // decoded only as "FormatStr("
        {"HexToInt(IN:FF,OUT:end):0;", "bei 'end'"},  // a name, but a keyword: the new line does not parse
    };
    for (const auto& r : rows) {
        const TConverted c = Convert(head + r.line + "\nLog(\"danach\")");
        ASSERT_EQ(c.warnings.size(), 1) << r.line;
        EXPECT_TRUE(c.warnings[0].startsWith("Zeile 4: nicht umgesetzt: ") && c.warnings[0].contains(r.reason)) << c.warnings[0].toStdString();
        EXPECT_EQ(c.text.section('\n', 3, 3), r.line + QString(" // ") + c.warnings[0].section(": ", 1)) << c.text.toStdString();
        const TScriptOutcome run = RunScriptText(c.text);
        EXPECT_EQ(run.exitCode, 2) << c.text.toStdString();
        EXPECT_TRUE(run.errors.join('\n').startsWith("test.dvs:4:")) << run.errors.join('\n').toStdString();
    }
}

// Each older line converts to a current line that runs and gives what the older line meant.
TEST(Importer, ConvertedLinesRunWithTheOlderMeaning)
{
    const QString head = "var N, S : Misc\nvar Gruss : String = \"Servus\"\nvar A : Array of Number = [72, 105]\n";
    const struct {
        const char* older;
        const char* show;      // expression logged after the line; empty: the line prints itself
        const char* expected;  // the line printed or logged
    } probes[] = {
        {"HexToInt(IN:$FF,OUT:N):0;", "N", "255"},
        {"HexToInt(IN:1A,OUT:N):0;", "N", "26"},
        {"HexToInt(IN:3F800000,OUT:N):0;", "N", "1065353216"},
        {"ORD(IN:€,OUT:N):0;", "N", "128"},
        {"ROUND(IN:2.5,OUT:N):0;", "N", "2"},
        {"FormatStr(IN:  abc,LENGHT,OUT:N);", "N", "5"},
        {"FormatStr(IN:007,LENGHT,OUT:N);", "N", "3"},
        {"FormatStr(IN:a b c,SEG:SEP: :PART:2,OUT:S);", "S", "b"},
        {"FormatStr(IN:a-b-c,SEG:SEP:-:PART:3,OUT:S);", "S", "c"},
        {"FormatStr(IN:a;b;c,SEG:SEP:;:PART:1,OUT:S);", "S", "a"},
        {"TextOut([OUT:Grüße]);", "", "Grüße"},
        {"TextOut([OUT:Preis: 5 EUR]);", "", "Preis: 5 EUR"},
        {"TextOut([OUT:Er sagt \"Hallo\"]);", "", "Er sagt \"Hallo\""},
        {"TextOut([OUT:Gruss][FONT:Courier:12:bold]);", "", "Servus"},
        {"TextOut([OUT:PROJEKTPFAD]);", "", "/projekt"},
        {"   7:HexToInt(IN:FF,OUT:N):0; // Wert", "N", "255"},
        {"ArrayToStr(A, S);", "S", "Hi"},
        // The array operations evaluate their input; the others read its characters.
        {"MaxArrayEntry(IN:[1,2,3],OUT:N):0;", "N", "3"},
        {"SUM_OF_ARRAY(IN:[1,2,3.5],OUT:N):0;", "N", "6.5"},
        {"SUM_OF_ARRAY(IN:{1}{2},OUT:N):0;", "N", "3"},
        {"SUM_OF_ARRAY(IN:A,OUT:N):0;", "N", "177"},
        {"ORD(IN:[1],OUT:N):0;", "N", "91"},
        // A "(" or "//" of the older text itself.
        {"TextOut([OUT:Spannung (V]);", "", "Spannung (V"},
        {"TextOut([OUT:http://host/pfad]);", "", "http://host/pfad"},
    };
    for (const auto& p : probes) {
        const TConverted c = Convert(head + p.older);
        EXPECT_TRUE(c.warnings.isEmpty()) << p.older << ": " << c.warnings.join('\n').toStdString();
        const QString script = c.text + (*p.show ? QString("\nLog(%1)").arg(p.show) : QString());
        const TScriptOutcome run = RunScriptText(script);
        ASSERT_EQ(run.exitCode, 0) << script.toStdString() << "\n" << run.errors.join('\n').toStdString();
        EXPECT_TRUE(run.output.contains(p.expected)) << script.toStdString() << "\n" << run.output.join('\n').toStdString();
    }
}

TEST(Importer, TrailingCommentsAndMarkersStayWithTheConvertedLine)
{
    const struct { const char *older, *start, *end; } rows[] = {  // start and end of the converted line
        {"  7:HexToInt(IN:FF,OUT:N):0;  // Wert", "  7:NumberConvert(", ");  // Wert"},
        {"HexToInt(IN:FF,OUT:N):0 // ohne Semikolon", "NumberConvert(", "Stellen := 0); // ohne Semikolon"},
        {"HexToInt(IN:FF,OUT:N):0;// c", "NumberConvert(", ");// c"},
        {"HexToInt(IN:FF,OUT:N):0; (* Block *)", "NumberConvert(", "); (* Block *)"},
        {"TextOut([OUT:a//b]) // c", "TextOut(Text := \"a//b\"", "); // c"},
    };
    for (const auto& r : rows) {
        for (const QString& eol : {QString("\n"), QString("\r\n")}) {
            const QString converted = Convert("var N : Number" + eol + r.older + eol + "Log(N)" + eol).text;
            const QStringList lines = converted.split(eol);
            ASSERT_EQ(lines.size(), 4) << converted.toStdString();
            EXPECT_TRUE(lines[1].startsWith(r.start) && lines[1].endsWith(r.end)) << lines[1].toStdString();
            const TScriptOutcome run = RunScriptText(converted);
            EXPECT_EQ(run.exitCode, 0) << converted.toStdString() << run.errors.join('\n').toStdString();
        }
    }
}

// A procedure's parameters are variables of the script: an older line in the procedure reads them.
// An older text may open a bracket or a comment it never closes; the next line is a statement of its own.
TEST(Importer, OlderLinesReadProcedureParametersAndEndWithTheirLine)
{
    const struct { QString older; std::map<int, QString> lines; QStringList output; } rows[] = {  // converted lines by index
        {"var X : Number\nprocedure Wandle(H : String; var Y : Number);\n  HexToInt(IN:H,OUT:Y):0;\nend procedure\nWandle(\"FF\", X)\nLog(X)\n",
         {{2, "  NumberConvert(Operation := \"ccHexToInt\", Input := H, Output := Y, Stellen := 0);"}}, {"255"}},
        {"var N : Number\nTextOut([OUT:Spannung (V]);\nStatusBar(Wert (*alt);\nHexToInt(IN:FF,OUT:N):0;\nLog(N)\n",
         {{2, "StatusText(Text := \"Wert (*alt\");"},
          {3, "NumberConvert(Operation := \"ccHexToInt\", Input := \"FF\", Output := N, Stellen := 0);"}},
         {"Spannung (V", "255"}},
    };
    for (const auto& r : rows) {
        const TConverted c = Convert(r.older);
        EXPECT_TRUE(c.warnings.isEmpty()) << c.warnings.join('\n').toStdString();
        for (const auto& [index, line] : r.lines) EXPECT_EQ(c.text.section('\n', index, index), line);
        const TScriptOutcome run = RunScriptText(c.text);
        EXPECT_EQ(run.exitCode, 0) << c.text.toStdString() << run.errors.join('\n').toStdString();
        EXPECT_EQ(run.output, r.output);
    }
}

// Each command tells its older lines from current calls of the same procedure.
TEST(Importer, EachCommandKnowsTheShapeOfItsOlderLines)
{
    const struct { const char *procedure, *line; bool older; } rows[] = {
        {"NumberConvert", "HexToInt(IN:FF,OUT:X):0;", true},
        {"NumberConvert", "hextoint (IN:FF,OUT:X):0", true},
        {"NumberConvert", "HexToInt(IN:\"F\"F\",OUT:X):0;", true},  // quotes of the older text
        {"NumberConvert", "NumberConvert(\"ccHexToInt\", \"FF\", X, 0;", false},
        {"NumberConvert", "High := 5", false},
        {"NumberConvert", "HexToInt(FF)", false},
        {"TextOut", "TextOut([OUT:Hallo]);", true},
        {"TextOut", "TextOut([font:Arial:10:bold]);", true},
        {"TextOut", "TextOut([OUT:5\" Zoll][COL:255]);", true},
        {"TextOut", "TextOut(\"x\" + [FONT:", true},
        {"TextOut", "TextOut(\"[OUT:Hallo]\"", false},
        {"StringBearbeitung", "FormatStr(IN:x,LENGHT,OUT:N);", true},
        {"StringBearbeitung", "StringBearbeitung(Input := \"x\"", false},
        {"StatusText", "StatusBar(Bereit);", true},
        {"StatusText", "StatusText(Bereit;", false},
        {"ArrayToStr", "ArrayToStr(A, S);", true},
        {"ArrayToStr", "ArrayToStr(A,", false},
        {"ArrayToStr", "ArrayToStr(Str := S, Arr := A", false},
        {"StrToArray", "StrToArray(Hallo, A)", true},
        {"MeldungsBox", "MeldungsBox(\"a\",mtError);", true},
        {"MeldungsBox", "MeldungsBox(\"a\",[mbOK]);", true},
        {"MeldungsBox", "MeldungsBox(\"a\",@x:1,@y:2);", true},
        {"MeldungsBox", "MeldungsBox(\"mtError [mbOK] @x:\"", false},
        {"MeldungsBox", "MeldungsBox(Text := T, Type := mtErrorText,", false},
        {"OpenSaveDlg", "OpenSaveDlg(OPEN_DIALOG,[FILE:F]);", true},
        {"OpenSaveDlg", "OpenSaveDlg(True, F, \"[FILE:\"", false},
        {"SysUtils", "FILEEXIST(a.txt):N;", true},
        {"SysUtils", "SysUtils(\"FileExist\", \"a\", N", false},
        {"IniFile", "IniFiles_ReadString(Filename:a.ini,Sec:S,Id:K,Value:,Result:R,);", true},
        {"IniFile", "IniFile(\"a.ini\", \"S\"", false},
        {"Exec", "Exec(prog,Param:,Pfad:,Result:N,V:False);", true},
        {"Exec", "Exec(\"prog\", \",Param:\"", false},
    };
    THost host;
    for (const auto& r : rows) {
        TDVThreadRunEdit* command = host.Commands().ForProcedure(r.procedure);
        ASSERT_NE(command, nullptr) << r.procedure;
        EXPECT_EQ(command->IsOlderLine(r.line), r.older) << r.line;
    }
}

// The conversion passes the structure lines through their commands' RecodeScript: an older script's
// case branches become runnable, decimal commas become points, and structure lines already in the
// current form stay as they are.
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
    for (const QString& eol : {QString("\n"), QString("\r\n")}) EXPECT_EQ(Convert(older.join(eol)).text, converted.join(eol));
    // Lines inside a block comment are text: an older branch there stays.
    const QString commented = "var M : Number\ncase M of\n(*\n  3:\n*)\nend case\n";
    EXPECT_EQ(Convert(commented).text, commented);
    EXPECT_EQ(RunScriptText(commented).exitCode, 0);
    // The for line without its block is there for the conversion only.
    EXPECT_EQ(RunScriptText(older.mid(0, 20).join('\n')).exitCode, 2);
    const TScriptOutcome run = RunScriptText(converted.mid(0, 20).join('\n'));
    EXPECT_EQ(run.exitCode, 0) << run.errors.join('\n').toStdString();
    EXPECT_EQ(run.output, QStringList{"drei"});
}

}  // namespace
}  // namespace dv::host::test
