// The host services as commands use them: parser, project environment, variable access; the memory
// an array of numbers takes.
#include "framework/exceptions.h"
#include "tests/host/scriptrun.h"

#include <gtest/gtest.h>

#include <malloc.h>

namespace dv::host::test {
namespace {

class HostServices : public testing::Test {
protected:
    void Load(const QString& script)
    {
        TScriptRun run("test.dvs", host);
        ASSERT_TRUE(run.Load(script));
        run.Run();
        ASSERT_EQ(run.Report().exitCode, 0) << run.Report().errors.join('\n').toStdString();
    }
    THost host;
};

TEST_F(HostServices, ArrayLiteralsParseToAnArrayNodeWithAnUnusedEntryZero)
{
    for (const char* text : {"[1, 2, 3]", "{72}{65}{76}"}) {
        TDVAbsyPtr node = host.ParseExpression(text);
        auto* array = dynamic_cast<TDVAbsyArray*>(node.get());
        ASSERT_NE(array, nullptr) << text;
        ASSERT_EQ(array->Elements().size(), 4u);
        EXPECT_EQ(array->Elements()[0], nullptr);
        EXPECT_EQ(array->Elements()[3]->Evaluate()->AsText(), QString(text[0] == '[' ? "3" : "76"));
    }
    TDVAbsyPtr words = host.ParseExpression("{H}{A}");
    EXPECT_EQ(static_cast<TDVAbsyArray&>(*words).Elements()[1]->Evaluate()->GetType().kind, TValueKind::String);
}

TEST_F(HostServices, MalformedExpressionsGiveNoneOrTheSyntaxError)
{
    for (const char* text : {"1 +", "(a > 5", "", "x y", "[1, 2"}) {
        EXPECT_EQ(host.ParseSingleExpression(text), nullptr) << text;
    }
    EXPECT_THROW(host.ParseExpression("1 +"), TDVSyntaxError);
    EXPECT_NE(host.ParseSingleExpression("(2 > 1) and True"), nullptr);
}

TEST_F(HostServices, BeforeTheRunOnlyConstantsEvaluate)
{
    TScriptRun run("test.dvs", host);
    ASSERT_TRUE(run.Load("var X : Number = 5"));
    TDVAbsyPtr variable = host.ParseExpression("X + 1");
    EXPECT_THROW(variable->Evaluate(), TDVRuntimeException);
    EXPECT_EQ(host.ParseExpression("2 * 3")->Evaluate()->AsText(), "6");
    run.Run();
    EXPECT_EQ(variable->Evaluate()->AsText(), "6");  // the same tree, once the variable exists
}

TEST_F(HostServices, SetVariableStopsAtTheArrayLimit)
{
    host.Exec().limits.maxArray = 10;
    Load("var A : Array of Number");
    host.SetVariable("A{10}", std::make_unique<TNumberValue>(1.0L));
    EXPECT_THROW(host.SetVariable("A{11}", std::make_unique<TNumberValue>(1.0L)), TDVRuntimeException);
    EXPECT_THROW(host.SetVariable("A{99999999999}", std::make_unique<TNumberValue>(1.0L)), TDVRuntimeException);
    EXPECT_EQ(host.ResolveText("A"), "{0}{0}{0}{0}{0}{0}{0}{0}{0}{1}");
}

TEST_F(HostServices, SetVariableWritesAnArrayElementGrowingTheArray)
{
    Load("var A : Array of Number = [1]");
    host.SetVariable("A{3}", std::make_unique<TNumberValue>(7.5L));
    EXPECT_EQ(host.ResolveText("A"), "{1}{0}{7.5}");
    host.SetVariable("a{1}", std::make_unique<TStringValue>("2"));
    EXPECT_EQ(host.ResolveText("A"), "{2}{0}{7.5}");
}

TEST_F(HostServices, SetVariableOnAnUndeclaredNameRaisesAndCreatesNothing)
{
    Load("var X : Number");
    EXPECT_THROW(host.SetVariable("Y", std::make_unique<TNumberValue>(1.0L)), TDVRuntimeException);
    EXPECT_EQ(host.FindVariable("Y"), nullptr);
    EXPECT_THROW(host.SetVariable("X{1}", std::make_unique<TNumberValue>(1.0L)), TDVRuntimeException);
    host.SetVariable("", std::make_unique<TNumberValue>(1.0L));  // a left-out var parameter
    EXPECT_EQ(host.ResolveText("X"), "0");
}

TEST_F(HostServices, FindVariableGivesKindAndCurrentValue)
{
    Load("var N : Number = 4\nvar S : String = \"abc\"\nvar A : Array of String = {x}");
    const struct {
        const char* name;
        TValueKind kind;
        const char* text;
    } cases[] = {{"N", TValueKind::Number, "4"}, {"s", TValueKind::String, "abc"}, {"A", TValueKind::Array, "{x}"},
                 {"PROJEKTPFAD", TValueKind::String, ""}};
    for (const auto& c : cases) {
        TDVVariable* v = host.FindVariable(c.name);
        ASSERT_NE(v, nullptr) << c.name;
        EXPECT_EQ(v->GetType().kind, c.kind) << c.name;
        EXPECT_EQ(v->GetValue().AsText(), QString(c.text)) << c.name;
    }
    // An array variable hands out the array itself: changes are the variable's.
    static_cast<TArrayValue&>(host.FindVariable("A")->GetValue()).Append(std::make_unique<TStringValue>("y"));
    EXPECT_EQ(host.ResolveText("A"), "{x}{y}");
}

TEST_F(HostServices, ResolveTextGivesValuesOfVariablesAndLeavesOtherTextAlone)
{
    Load("var Pfad : String = \"/daten/x.hkv\"\nvar Zahl : Number = 2.5");
    EXPECT_EQ(host.ResolveText("Pfad"), "/daten/x.hkv");
    EXPECT_EQ(host.ResolveText(" Zahl "), "2.5");
    EXPECT_EQ(host.ResolveText("3.14"), "3.14");
    EXPECT_EQ(host.ResolveText("C:\\bild.bmp"), "C:\\bild.bmp");
    EXPECT_EQ(host.ResolveText("Unbekannt"), "Unbekannt");
}

TEST_F(HostServices, ProjectPathPlaceholderAndVariable)
{
    host.SetProjectFolder("/projekte/p1");
    Load("var Datei : String = PROJEKTPFAD + \"/bild.bmp\"");
    EXPECT_EQ(host.ResolveText("Datei"), "/projekte/p1/bild.bmp");
    EXPECT_EQ(host.ReplaceProjectPath("%PROJEKTPFAD%/ref.bmp"), "/projekte/p1/ref.bmp");
    EXPECT_EQ(host.ReplaceProjectPath("%projektpfad%/a"), "/projekte/p1/a");
    EXPECT_EQ(host.ReplaceProjectPath("/fest/a.bmp"), "/fest/a.bmp");
}

// The memory an Array of Number of a million elements holds in a running script.
// Bytes the allocator has handed out and not had back, mapped blocks included.
std::size_t HeapInUse()
{
    const struct mallinfo2 m = mallinfo2();
    return m.uordblks + m.hblkhd;
}

TEST(ArrayMemory, AMillionNumbersTakeAtMost16MB)
{
    const struct { const char *how, *script; } rows[] = {
        {"element by element",
         "var A : Array of Number\nvar I : Number\nfor I := 1 to 1000000 do\n  A[I] := I / 3\nend for\n"},
        {"SetLength", "var A : Array of Number\nSetLength(A, 1000000)\nA[1000000] := 1000000 / 3\n"},
    };
    for (const auto& r : rows) {
        SCOPED_TRACE(r.how);
        THost host;
        host.SetOutput({}, {});
        TScriptRun run(QStringLiteral("test.dvs"), host);
        ASSERT_TRUE(run.Load(QString::fromLatin1(r.script)));
        const std::size_t before = HeapInUse();
        run.Run();
        ASSERT_EQ(run.Report().exitCode, 0) << run.Report().FailureText().toStdString();
        const std::size_t after = HeapInUse();  // the program's variables still hold the array
        const auto* array = dynamic_cast<const TArrayValue*>(&host.FindVariable(QStringLiteral("A"))->GetValue());
        ASSERT_NE(array, nullptr);
        ASSERT_EQ(array->GetSize(), 1000000);
        EXPECT_EQ(array->GetNumber(1000000), 1000000.0L / 3);
        EXPECT_LE(after - before, std::size_t{16'000'000});
    }
}

}  // namespace
}  // namespace dv::host::test
