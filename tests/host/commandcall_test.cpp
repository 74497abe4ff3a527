// How a script call reaches a library command: parameter texts and values, defaults, var
// parameters, threads, and the stop of a run.
#include "framework/catalogue.h"
#include "framework/exceptions.h"
#include "framework/signature.h"
#include "tests/host/scriptrun.h"

#include <gtest/gtest.h>

#include <thread>

namespace dv::host::test {
namespace {

const char* const kProbeSignature =
    "procedure Probe(Text : Misc; S : String = [10]; N : Number = -1; B : Boolean = false; "
    "A : Array of Number = []; var R : Misc = ; E : string = ; Z : Number = 21.4; Q : String = \"\");";

class TRecordingCommand : public TDVFuncRunEdit {
public:
    explicit TRecordingCommand(const char* signature = kProbeSignature) : TDVFuncRunEdit(signature, {}, nullptr) {}
    void Run(TParamList& params) override
    {
        calls.push_back(params);
        threads.push_back(std::this_thread::get_id());
        if (stop) TestEnvironment().StopTest();
    }
    std::vector<TParamList> calls;
    std::vector<std::thread::id> threads;
    bool stop = false;
};

class TThreadCommand : public TDVThreadRunEdit {
public:
    TThreadCommand() : TDVThreadRunEdit("procedure Warte(var Result : String);", {}, nullptr) {}
    void RunThreaded(TParamList& params) override
    {
        thread = std::this_thread::get_id();
        VarAccess().SetVariable(params.GetString("Result"), std::make_unique<TStringValue>("fertig"));
    }
    std::thread::id thread;
};

TScriptOutcome RunWith(const QString& script, const std::shared_ptr<TDVThreadRunEdit>& command)
{
    return RunScriptText(script, {}, [&](THost& host) { host.Commands().Add(command); });
}

TEST(CommandCall, InputParametersReachTheCommandAsTheTextOfTheirValue)
{
    const struct { const char* call; std::vector<std::pair<const char*, const char*>> params; } cases[] = {
        {"Probe(1.5)", {{"Text", "1.5"}}},
        {"Probe(1 / 4 * 2)", {{"Text", "0.5"}}},
        {"Probe(Text := 3 > 2)", {{"Text", "True"}}},
        {"Probe([72, 65])", {{"Text", "{72}{65}"}}},
        {"Probe(\"a\" + \"b\")", {{"Text", "ab"}}},
        {"Probe(V)", {{"Text", "{1}{2}"}}},
        // The default [10] of S is a line feed.
        {"Probe(1)", {{"S", "\n"}, {"N", "-1"}, {"B", "False"}, {"A", ""}, {"R", ""}, {"E", ""}, {"Z", "21.4"}, {"Q", ""}}},
        {"Probe(1, S := [72, 105])", {{"S", "Hi"}}},
        {"Probe(1, S := {72}{105})", {{"S", "Hi"}}},
        {"Probe(1, R := V)", {{"R", "V"}}},
        {"Probe(1, r := v)", {{"R", "v"}}},
    };
    for (const auto& c : cases) {
        auto probe = std::make_shared<TRecordingCommand>();
        const TScriptOutcome out = RunWith(QStringLiteral("var V : Array of Number = [1, 2]\n") + c.call, probe);
        ASSERT_EQ(out.exitCode, 0) << c.call << ": " << out.errors.join('\n').toStdString();
        ASSERT_EQ(probe->calls.size(), 1u) << c.call;
        for (const auto& [param, expected] : c.params) {
            EXPECT_EQ(probe->calls[0].GetString(param).toStdString(), expected) << c.call << " " << param;
        }
    }
}

TEST(CommandCall, ValuesAreAttachedSoGetValueNeedsNoParsing)
{
    auto probe = std::make_shared<TRecordingCommand>();
    ASSERT_EQ(RunWith("Probe(2.5, B := True)", probe).exitCode, 0);
    const TValuePtr text = probe->calls.at(0).GetValue("Text");
    ASSERT_EQ(text->GetType().kind, TValueKind::Number);
    EXPECT_EQ(static_cast<const TNumberValue&>(*text).GetVal(), 2.5L);
    EXPECT_EQ(probe->calls[0].GetValue("B")->GetType().kind, TValueKind::Boolean);
}

TEST(CommandCall, ALeftOutParameterWithoutDefaultIsAbsent)
{
    auto need = std::make_shared<TRecordingCommand>("procedure Need(A : String; B : Number);");
    ASSERT_EQ(RunWith("Need(\"x\")", need).exitCode, 0);
    EXPECT_TRUE(need->calls.at(0).Contains("A"));
    EXPECT_FALSE(need->calls[0].Contains("B"));
    EXPECT_EQ(need->calls[0].GetString("B"), QString());
}

TEST(CommandCall, AnUndeclaredVarArgumentFailsBeforeTheCommandRunsAndCreatesNothing)
{
    auto probe = std::make_shared<TRecordingCommand>();
    const TScriptOutcome out = RunWith("Log(\"a\")\nProbe(1, R := Nirgends)\nLog(\"b\")", probe);
    EXPECT_EQ(out.exitCode, 1);
    EXPECT_EQ(out.output, QStringList{"a"});
    EXPECT_TRUE(probe->calls.empty());
    ASSERT_EQ(out.errors.size(), 1);
    EXPECT_TRUE(out.errors[0].startsWith("test.dvs:2: ")) << out.errors[0].toStdString();
    EXPECT_TRUE(out.errors[0].contains("\"Nirgends\" wurde nicht als Variable deklariert!"));
    THost host;
    EXPECT_EQ(host.FindVariable("Nirgends"), nullptr);
}

TEST(CommandCall, ThreadCommandsRunOnAWorkerAndWriteTheirVarParameter)
{
    auto wait = std::make_shared<TThreadCommand>();
    auto probe = std::make_shared<TRecordingCommand>();
    const TScriptOutcome out = RunScriptText("var T : String\nWarte(T)\nLog(T)\nProbe(1)", {}, [&](THost& host) {
        host.Commands().Add(wait);
        host.Commands().Add(probe);
    });
    ASSERT_EQ(out.exitCode, 0) << out.errors.join('\n').toStdString();
    EXPECT_EQ(out.output, QStringList{"fertig"});
    EXPECT_NE(wait->thread, std::this_thread::get_id());
    EXPECT_EQ(probe->threads.at(0), std::this_thread::get_id());
}

TEST(CommandCall, StopTestEndsTheRunAfterTheCommand)
{
    auto probe = std::make_shared<TRecordingCommand>();
    probe->stop = true;
    const TScriptOutcome out = RunWith("Probe(1)\nLog(\"danach\")", probe);
    EXPECT_EQ(out.exitCode, 1);
    EXPECT_TRUE(out.output.isEmpty());
    ASSERT_EQ(out.errors.size(), 1);
    EXPECT_TRUE(out.errors[0].startsWith("test.dvs:1: ")) << out.errors[0].toStdString();
}

TEST(CommandCall, CommandFailuresEndTheRunWithTheirLine)
{
    struct TFailing : TDVFuncRunEdit {
        TFailing() : TDVFuncRunEdit("procedure Kaputt;", {}, nullptr) {}
        void Run(TParamList&) override { throw TDravikException("Gerät antwortet nicht", 7); }
    };
    const TScriptOutcome out = RunWith("\nKaputt\nLog(1)", std::make_shared<TFailing>());
    EXPECT_EQ(out.exitCode, 1);
    EXPECT_EQ(out.errors, QStringList{"test.dvs:2: Gerät antwortet nicht"});
}

TEST(CommandCall, EveryCatalogueSignatureParsesAndItsDefaultsEvaluate)
{
    THost host;
    for (const TCatalogueRow& row : Catalogue()) {
        if (QLatin1String(row.signature).isEmpty()) continue;
        const TDVSignature sig = ParseSignature(QString::fromLatin1(row.signature));
        EXPECT_EQ(sig.name, QLatin1String(row.procedure));
        for (const TDVParamDecl& p : sig.params) {
            if (!p.hasDefault || p.defaultText.isEmpty()) continue;
            EXPECT_NE(host.ParseSingleExpression(p.defaultText), nullptr) << row.procedure << " " << p.name.toStdString();
        }
    }
}

}  // namespace
}  // namespace dv::host::test
