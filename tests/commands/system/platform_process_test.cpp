#include "commands/system/platform_process.h"

#include "framework/services.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <csignal>
#include <thread>

namespace dv {
namespace {

TEST(SplitCommandLineTest, SplitsAsAShellDoesWithoutExpanding)
{
    struct Row {
        const char* line;
        QStringList words;
    };
    const Row rows[] = {
        {"prog a  b", {"prog", "a", "b"}},
        {"  prog\ta ", {"prog", "a"}},
        {"sh -c \"exit 3\"", {"sh", "-c", "exit 3"}},
        {"echo 'a \"b\" $HOME'", {"echo", "a \"b\" $HOME"}},
        {"echo \"a\\\"b\\\\c\\d\"", {"echo", "a\"b\\c\\d"}},  // in "..." only \ " $ ` are escaped
        {"echo a\\ b", {"echo", "a b"}},
        {"echo x\"y z\"w", {"echo", "xy zw"}},
        {"echo \"\" ''", {"echo", "", ""}},  // empty quotes are words
        {"echo *", {"echo", "*"}},            // no globbing
        {"", {}},
    };
    for (const Row& r : rows) {
        const auto words = SplitCommandLine(QString::fromUtf8(r.line));
        ASSERT_TRUE(words.has_value()) << r.line;
        EXPECT_EQ(*words, r.words) << r.line;
    }
    EXPECT_FALSE(SplitCommandLine("echo \"open").has_value());
    EXPECT_FALSE(SplitCommandLine("echo 'open").has_value());
}

using Clock = std::chrono::steady_clock;
double SecondsSince(Clock::time_point t) { return std::chrono::duration<double>(Clock::now() - t).count(); }

TEST(ChildProcessTest, ReportsExitCodeAndSignal)
{
    TChildProcess exit3;
    ASSERT_EQ(exit3.Start({"sh", "-c", "exit 3"}, {}), "");
    ASSERT_EQ(exit3.Wait(nullptr, 10000), TChildWait::Exited);
    EXPECT_EQ(exit3.ExitCode(), 3);

    TChildProcess killed;
    ASSERT_EQ(killed.Start({"sh", "-c", "kill -9 $$"}, {}), "");
    ASSERT_EQ(killed.Wait(nullptr, 10000), TChildWait::Exited);
    EXPECT_EQ(killed.ExitCode(), 128 + SIGKILL);
}

TEST(ChildProcessTest, StartFailureGivesTheSystemText)
{
    TChildProcess missing;
    EXPECT_EQ(missing.Start({"/nonexistent/program"}, {}), QString::fromLocal8Bit(strerror(ENOENT)));
    TChildProcess badDir;
    EXPECT_FALSE(badDir.Start({"true"}, "/nonexistent/dir").isEmpty());
}

TEST(ChildProcessTest, RunsInTheWorkingDirectory)
{
    QTemporaryDir dir;
    TChildProcess child;
    ASSERT_EQ(child.Start({"sh", "-c", "pwd > here.txt"}, dir.path()), "");
    ASSERT_EQ(child.Wait(nullptr, 10000), TChildWait::Exited);
    QFile out(dir.filePath("here.txt"));
    ASSERT_TRUE(out.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromLocal8Bit(out.readAll()).trimmed(), QFileInfo(dir.path()).canonicalFilePath());
}

TEST(ChildProcessTest, TimeOutAndStopEndTheWait)
{
    TChildProcess sleeper;
    ASSERT_EQ(sleeper.Start({"sleep", "30"}, {}), "");
    const auto t0 = Clock::now();
    EXPECT_EQ(sleeper.Wait(nullptr, 200), TChildWait::TimedOut);
    EXPECT_LT(SecondsSince(t0), 0.5);

    TRunControl stop;
    std::thread signaller([&stop] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        stop.SignalStop();
    });
    const auto t1 = Clock::now();
    EXPECT_EQ(sleeper.Wait(&stop, 0xFFFFFFFFu), TChildWait::Stopped);
    signaller.join();
    EXPECT_LT(SecondsSince(t1), 0.05 + 0.1);
    EXPECT_TRUE(sleeper.AskToTerminate());
    EXPECT_EQ(sleeper.Wait(nullptr, 10000), TChildWait::Exited);
    EXPECT_EQ(sleeper.ExitCode(), 128 + SIGTERM);
}

// Whether a process is gone or only waits to be collected by its parent.
bool Ended(pid_t pid)
{
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly)) return true;
    const QByteArray text = stat.readAll();
    return text.mid(text.lastIndexOf(')') + 2, 1) == "Z";
}

TEST(ChildProcessTest, AskToTerminateReachesTheWholeGroup)
{
    QTemporaryDir dir;
    TChildProcess parent;
    // The shell starts a grandchild, writes its pid and waits; SIGTERM to the group ends both.
    ASSERT_EQ(parent.Start({"sh", "-c", "sleep 30 & echo $! > pid; wait"}, dir.path()), "");
    QFile pidFile(dir.filePath("pid"));
    for (int i = 0; i < 200 && pidFile.size() == 0; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_TRUE(pidFile.open(QIODevice::ReadOnly));
    const pid_t grandchild = pidFile.readAll().trimmed().toInt();
    ASSERT_GT(grandchild, 0);
    EXPECT_FALSE(Ended(grandchild));

    EXPECT_TRUE(parent.AskToTerminate());
    EXPECT_EQ(parent.Wait(nullptr, 5000), TChildWait::Exited);
    bool gone = false;
    for (int i = 0; i < 500 && !(gone = Ended(grandchild)); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_TRUE(gone);
}

}  // namespace
}  // namespace dv
