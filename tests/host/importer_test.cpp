// Current-form lines written from a signature and a list and read back; the importer of older lines.
#include "framework/registry.h"
#include "host/importer.h"
#include "tests/host/scriptrun.h"

#include <gtest/gtest.h>

namespace dv::host::test {
namespace {

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

TEST(Importer, ScriptsInTheCurrentFormStayByteForByte)
{
    const char* scripts[] = {
        "var High, Low, round : Number\nHigh := 5\nround := Low * 2\n",
        "High := 5\r\nround := Low * 2\r\n",  // not even declared: still no older line
        "var X : Misc\nTextOut(\"Hallo\")\nNumberConvert(\"ccIntToHex\", 255, X, 4)\n",
        "var S : String\nArrayToStr(S, [72, 105]);  // bleibt\n",
        "var S : String\nvar A : Array of String\nStrToArray(\"123\", A)\nArrayToStr(S, A)",
        "  93:TextOut(Text := \"a\",\n    FontSize := 12)\n",
        "var N : Number\nif N > 1 then\n  TextOut(N + 1)\nend if\n",
        "(* ältere Zeilen, abgeschaltet:\nHexToInt(IN:FF,OUT:N):0;\n*)\n",
    };
    for (const char* script : scripts) {
        THost host;
        QStringList warnings;
        EXPECT_EQ(ConvertScript(script, host.Commands(), &warnings).toStdString(), script);
        EXPECT_TRUE(warnings.isEmpty()) << script;
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
    };
    for (const auto& p : probes) {
        THost host;
        QStringList warnings;
        const QString converted = ConvertScript(head + p.older, host.Commands(), &warnings);
        EXPECT_TRUE(warnings.isEmpty()) << p.older << ": " << warnings.join('\n').toStdString();
        const QString script = converted + (*p.show ? QString("\nLog(%1)").arg(p.show) : QString());
        const TScriptOutcome run = RunScriptText(script);
        ASSERT_EQ(run.exitCode, 0) << script.toStdString() << "\n" << run.errors.join('\n').toStdString();
        EXPECT_TRUE(run.output.contains(p.expected)) << script.toStdString() << "\n" << run.output.join('\n').toStdString();
    }
}

TEST(Importer, TrailingCommentsAndMarkersStayWithTheConvertedLine)
{
    THost host;
    const QString converted = ConvertScript("var N : Number\r\n  7:HexToInt(IN:FF,OUT:N):0;  // Wert\r\n", host.Commands());
    const QStringList lines = converted.split("\r\n");
    ASSERT_EQ(lines.size(), 3);
    EXPECT_TRUE(lines[1].startsWith("  7:NumberConvert(")) << lines[1].toStdString();
    EXPECT_TRUE(lines[1].endsWith(");  // Wert")) << lines[1].toStdString();
}

// A line that cannot become a current line stays as it was, marked, and is named in a warning.
TEST(Importer, UnconvertibleLinesAreKeptWithTheirReason)
{
    const char* lines[] = {
        "HexToInt(IN:FF,OUT:A[1]):0;",
        "StringBearbeitung(IN:x,OUT:S);",
    };
    for (const char* line : lines) {
        THost host;
        QStringList warnings;
        const QString converted = ConvertScript(QString("var A : Array of Number\n") + line, host.Commands(), &warnings);
        EXPECT_TRUE(converted.startsWith(QString("var A : Array of Number\n") + line + " // nicht umgesetzt: ")) << converted.toStdString();
        ASSERT_EQ(warnings.size(), 1) << line;
        EXPECT_TRUE(warnings[0].startsWith("Zeile 2: nicht umgesetzt: ")) << warnings[0].toStdString();
    }
}

}  // namespace
}  // namespace dv::host::test
