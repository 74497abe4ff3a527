// Current-form lines written from a signature and a list and read back; the importer of older lines.
#include "framework/dvtools.h"
#include "framework/registry.h"
#include "host/importer.h"
#include "tests/host/scriptrun.h"

#include <gtest/gtest.h>

namespace dv::host::test {
namespace {

// A command whose older lines read as "Alt(a, b);" into B and A (the reverse order, as some do).
class TOldStyleCommand : public TDVFuncRunEdit {
public:
    TOldStyleCommand() : TDVFuncRunEdit("procedure Neu(A : String; B : Number = 0; C : Boolean = False);", {}, nullptr) {}
    QStringList OlderNames() const override { return {"Alt"}; }
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*) override
    {
        const QString args = GetStrPart("(", ")", script);
        SetBoundField("A", Segment(args, ",", 2));
        SetBoundField("B", Segment(args, ",", 1));
        SetBoundField("C", "False");
        ReadParams(params);
        return true;
    }
};

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

TEST(Importer, OlderLinesBecomeCurrentLinesAndOthersStay)
{
    THost host;
    host.Commands().Add(std::make_shared<TOldStyleCommand>());
    const QString old = "var X : Number\r\n  911:Alt(7, \"x\");\r\nNeu(A := \"y\");\r\nLog(Alt)\r\nAlt\r\n";
    const QString converted = ConvertScript(old, host.Commands());
    EXPECT_EQ(converted.toStdString(),
              "var X : Number\r\n  911:Neu(A := \"x\", B := 7);\r\nNeu(A := \"y\");\r\nLog(Alt)\r\nNeu(A := , B := );\r\n");
}

}  // namespace
}  // namespace dv::host::test
