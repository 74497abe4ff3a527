#include "commands/system/gui_exec.h"

#include "framework/exceptions.h"
#include "tests/support/testhost.h"

#include <gtest/gtest.h>

#include <QTemporaryDir>

#include <chrono>
#include <thread>

namespace dv {
namespace {

TEST(ExecArithmeticTest, WaitLimitRoundsAndWrapsAsAnUnsignedCount)
{
    struct Row {
        long double timeOut;
        long double delay;
        std::uint32_t ms;
    };
    const Row rows[] = {
        {0, 0, 0},
        {0.2L, 0, 200},
        {1, 2.5L, 3500},        // Delay adds to TimeOut
        {0.0005L, 0, 0},        // half a millisecond rounds to even
        {0.0015L, 0, 2},
        {-1, 0, 4294966296u},   // 2^32 - 1000
        {0, -0.001L, 0xFFFFFFFFu},
        {4294967.296L, 0, 0},   // 2^32 ms wraps to 0
    };
    for (const Row& r : rows) EXPECT_EQ(ExecWaitLimitMs(r.timeOut, r.delay), r.ms) << double(r.timeOut) << " + " << double(r.delay);
}

TEST(ExecArithmeticTest, ResultMappingAndCommandLine)
{
    EXPECT_EQ(ExecResultOf(0), 0);
    EXPECT_EQ(ExecResultOf(1), -65535);
    EXPECT_EQ(ExecResultOf(3), -65533);
    EXPECT_EQ(ExecResultOf(255), -65281);
    EXPECT_EQ(ExecCommandLine("prog", ""), "prog");  // no trailing blank
    EXPECT_EQ(ExecCommandLine("prog", "-a b"), "prog -a b");
    EXPECT_EQ(ExecDefaultWorkDir("/opt/tools/prog"), "/opt/tools/");
    EXPECT_EQ(ExecDefaultWorkDir("\"/opt/my tools/prog\""), "\"/opt/my tools/");  // quotes as written
    EXPECT_EQ(ExecDefaultWorkDir("prog"), "");
}

class ExecRunTest : public ::testing::Test {
protected:
    ExecRunTest() { host.Declare("R", g_NumberType); }

    TParamList Call(const QString& exe, const QString& args, const QString& timeOut, bool kill = false)
    {
        TParamList p;
        p.AddString("ExePath", exe);
        p.AddString("Params", args);
        p.AddString("Return", "R");
        p.AddString("TimeOut", timeOut);
        p.AddString("Kill", kill ? "True" : "False");
        return p;
    }
    double Result() const { return double(static_cast<const TNumberValue*>(host.Value("R"))->GetVal()); }

    test::TTestHost host;
    TDVCmdStartEXE exec{&host};
};

using Clock = std::chrono::steady_clock;
double SecondsSince(Clock::time_point t) { return std::chrono::duration<double>(Clock::now() - t).count(); }

TEST_F(ExecRunTest, ExitCodesAreMapped)
{
    TParamList exit3 = Call("sh", "-c \"exit 3\"", "10");
    exec.RunThreaded(exit3);
    EXPECT_EQ(Result(), -65533);
    TParamList exit0 = Call("sh", "-c 'exit 0'", "10");
    exec.RunThreaded(exit0);
    EXPECT_EQ(Result(), 0);
    EXPECT_EQ(TDVCmdStartEXE::LastResult(), 0);
}

TEST_F(ExecRunTest, TimeOutGivesMinusTwoAndKillEndsTheProgram)
{
    QTemporaryDir dir;
    TParamList p = Call("sh", "-c 'trap \"echo term > got; exit 0\" TERM; sleep 30 & wait'", "0.2", true);
    p.AddString("WorkDir", dir.path());
    const auto t0 = Clock::now();
    exec.RunThreaded(p);
    EXPECT_LT(SecondsSince(t0), 0.5);
    EXPECT_EQ(Result(), -2);
    bool got = false;
    for (int i = 0; i < 300 && !(got = QFileInfo::exists(dir.filePath("got"))); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(got) << "the program was not asked to end";
}

TEST_F(ExecRunTest, StopEventEndsTheWaitAtOnce)
{
    TParamList p = Call("sleep", "30", "-1", true);  // -1 s waits practically without end
    std::thread stopper([this] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        host.runControl.SignalStop();
    });
    const auto t0 = Clock::now();
    exec.RunThreaded(p);
    const double took = SecondsSince(t0);
    stopper.join();
    EXPECT_LT(took, 0.1 + 0.1);
    EXPECT_EQ(Result(), -2);
}

TEST_F(ExecRunTest, EmptyReturnWritesNothing)
{
    TParamList p = Call("sh", "-c 'exit 1'", "10");
    p.AddString("Return", "");
    exec.RunThreaded(p);
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
    EXPECT_EQ(TDVCmdStartEXE::LastResult(), -65535);
}

TEST_F(ExecRunTest, FailuresNameWhatWentWrong)
{
    TParamList missing = Call("/nonexistent/prog", "-x", "1");
    try {
        exec.RunThreaded(missing);
        FAIL() << "no exception";
    } catch (const TDVRuntimeException& e) {
        EXPECT_TRUE(e.Message().contains("/nonexistent/prog -x")) << e.Message().toStdString();
        EXPECT_TRUE(e.Message().contains(QString::fromLocal8Bit(strerror(ENOENT)))) << e.Message().toStdString();
    }
    TParamList openQuote = Call("sh", "-c \"exit", "1");
    EXPECT_THROW(exec.RunThreaded(openQuote), TDVRuntimeException);
    TParamList textTimeOut = Call("true", "", "\"soon\"");
    EXPECT_THROW(exec.RunThreaded(textTimeOut), TDVRuntimeException);
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

TEST(ExecParamsTest, EditorFoldsDelayIntoTimeOut)
{
    TDVCmdStartEXE exec(nullptr);
    TParamList in;
    in.AddString("ExePath", "\"/bin/prog\"");
    in.AddString("TimeOut", "5");
    in.AddString("Delay", "2");
    in.AddString("Hide", "True");
    exec.SetParams(in);
    EXPECT_TRUE(exec.Fields().waitForExit);
    EXPECT_EQ(exec.Fields().timeOut, 7);
    TParamList out;
    exec.ReadParams(out);
    EXPECT_EQ(out.Names(), QStringList({"ExePath", "Params", "WorkDir", "Return", "TimeOut", "Hide", "Minimized", "Kill"}));
    EXPECT_EQ(out.GetString("TimeOut"), "7");
    EXPECT_EQ(out.GetString("Hide"), "True");
    EXPECT_FALSE(out.Contains("Delay"));

    TParamList noWait;
    noWait.AddString("TimeOut", "0.5");  // not an integer: counts as 0, so waiting is off
    exec.SetParams(noWait);
    EXPECT_FALSE(exec.Fields().waitForExit);
    TParamList written;
    exec.ReadParams(written);
    EXPECT_FALSE(written.Contains("TimeOut"));
}

TEST(ExecParamsTest, OlderLineForm)
{
    TDVCmdStartEXE exec(nullptr);
    TParamList p;
    ASSERT_TRUE(exec.DecodeScript("Exec(prog,Param:-a,Pfad:/tmp,Result:R,TimeOut:4,V:True);3;", p, nullptr));
    EXPECT_EQ(p.GetString("ExePath"), "prog");
    EXPECT_EQ(p.GetString("Params"), "-a");
    EXPECT_EQ(p.GetString("WorkDir"), "/tmp");
    EXPECT_EQ(p.GetString("Return"), "R");
    EXPECT_EQ(p.GetString("TimeOut"), "4");
    EXPECT_EQ(p.GetString("Hide"), "True");
    EXPECT_EQ(p.GetString("Delay"), "3");
    EXPECT_EQ(exec.Fields().timeOut, 7);

    TParamList bare;
    ASSERT_TRUE(exec.DecodeScript("Exec(prog,Param:,Pfad:,Result:,V:False);", bare, nullptr));
    EXPECT_FALSE(bare.Contains("TimeOut"));
    EXPECT_FALSE(bare.Contains("Delay"));
    EXPECT_EQ(bare.GetString("ExePath"), "prog");
}

}  // namespace
}  // namespace dv
