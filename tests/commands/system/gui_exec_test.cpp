#include "commands/system/gui_exec.h"

#include "tests/commands/system/systemtest.h"

#include <QDir>

#include <csignal>

namespace dv {
namespace {

using namespace test;

bool Ended(pid_t pid)  // gone, or only waiting to be collected
{
    const QByteArray stat = ReadFile(QStringLiteral("/proc/%1/stat").arg(pid));
    return stat.isEmpty() || stat.mid(stat.lastIndexOf(')') + 2, 1) == "Z";
}

TEST(ExecArithmeticTest, WaitLimitWrapsAsAnUnsignedCountAndTheResultKeepsItsOffset)
{
    const std::tuple<long double, long double, std::uint32_t> rows[] = {  // TimeOut, Delay, wait limit
        {0, 0, 0},  {1, 2.5L, 3500},  {0.0015L, 0, 2},  {-1, 0, 4294966296u},  {0, -0.001L, 0xFFFFFFFFu},
        {4294967.296L, 0, 0},  // 2^32 ms wraps to 0
    };
    for (const auto& [t, d, ms] : rows) EXPECT_EQ(ExecWaitLimitMs(t, d), ms) << double(t) << " + " << double(d);
    EXPECT_EQ(ExecResultOf(0), 0);
    EXPECT_EQ(ExecResultOf(1), -65535);  // the offset of 65536 is kept for old scripts
}

TEST(ExecArithmeticTest, CommandLineIsSplitAsWindowsReadsIt)
{
    EXPECT_EQ(ExecCommandLine("prog", ""), "prog");  // no trailing blank
    EXPECT_EQ(ExecDefaultWorkDir("\"/opt/my tools/prog\""), "\"/opt/my tools/");  // quotes as written
    const std::pair<const char*, QStringList> rows[] = {
        {R"(  prog C:\temp\file.txt it's)", {"prog", R"(C:\temp\file.txt)", "it's"}},  // \ and ' are ordinary
        {R"("/opt/my tools/prog" -x)", {"/opt/my tools/prog", "-x"}},
        {R"(prog\ "a b"	c)", {R"(prog\)", "a b", "c"}},  // no escapes in the program name; a tab separates
        {R"(p a\\\"b "a\\" b \\server\share)", {"p", R"(a\"b)", R"(a\)", "b", R"(\\server\share)"}},
        {R"(p "say ""hi""" "" x"y z"w)", {"p", R"(say "hi")", "", "xy zw"}},  // "" in quotes is one quote
        {R"(p 'a b' "open end)", {"p", "'a", "b'", "open end"}},  // an open quote runs to the end
        {"   ", {}},
    };
    for (const auto& [line, words] : rows) EXPECT_EQ(SplitCommandLine(QString::fromUtf8(line)), words) << line;
}

// Unquoted, the program is the first text up to a blank (or the whole line) that names a program.
TEST(ExecArithmeticTest, AnUnquotedProgramWithBlanksIsFoundAsWindowsFindsIt)
{
    const QStringList programs{"/p/work dir/my prog.sh", "/p/a", "x y"};
    const auto isProgram = [&programs](const QString& name) { return programs.contains(name); };
    const std::pair<const char*, QStringList> rows[] = {
        {R"(/p/work dir/my prog.sh a "b c")", {"/p/work dir/my prog.sh", "a", "b c"}},
        {"/p/work dir/my prog.sh", {"/p/work dir/my prog.sh"}},
        {"/p/a b/c", {"/p/a", "b/c"}},                    // the first that exists wins
        {"/q/none here -x", {"/q/none", "here", "-x"}},    // none exists: up to the first blank
        {R"("/p/a b" c)", {"/p/a b", "c"}},               // quoted: taken as it stands
        {"x y\tz", {"x y", "z"}},
    };
    for (const auto& [line, words] : rows) EXPECT_EQ(SplitCommandLine(QString::fromUtf8(line), isProgram), words) << line;
}

class ExecRunTest : public ::testing::Test {
protected:
    ExecRunTest()
    {
        host.Declare("R", g_NumberType);
        SetProgramOutputFolder(outputDir.path());
    }
    ~ExecRunTest() override { SetProgramOutputFolder({}); }

    // Runs the program and gives the value of R, the Return variable unless told otherwise.
    double Run(const char* exe, const char* args, const char* timeOut, bool kill = false, const QString& workDir = {},
               const char* returnVar = "R")
    {
        TParamList p = ParamsOf({{"ExePath", exe},       {"Params", args},     {"WorkDir", workDir},
                                 {"Return", returnVar}, {"TimeOut", timeOut}, {"Kill", kill ? "True" : "False"}});
        exec.RunThreaded(p);
        return double(static_cast<const TNumberValue*>(host.Value("R"))->GetVal());
    }

    QTemporaryDir outputDir;
    TTestHost host;
    TDVCmdStartEXE exec{&host};
};

TEST_F(ExecRunTest, ParamsReachTheProgramAsWindowsSplitsThemAndItsOutputGoesToTheRunsFile)
{
    EXPECT_EQ(Run("printf", R"("[%s]" C:\temp\file.txt it's "a ""q"" b" x\\\"y)", "10"), 0);
    EXPECT_EQ(ReadFile(ProgramOutputPath()), R"([C:\temp\file.txt][it's][a "q" b][x\"y])");
    EXPECT_TRUE(ProgramOutputPath().startsWith(outputDir.path()));
}

TEST_F(ExecRunTest, ExitCodesAreMappedAndAnEmptyReturnWritesNothing)
{
    EXPECT_EQ(Run("sh", "-c \"exit 3\"", "10"), -65533);
    EXPECT_EQ(Run("sh", "-c \"kill -9 $$\"", "10"), 128 + 9 - 65536);  // a signal reads as a shell's 128 + n
    EXPECT_EQ(Run("sh", "-c \"exit 0\"", "10"), 0);
    Run("sh", "-c \"exit 1\"", "10", false, {}, "");
    EXPECT_EQ(host.setVariableCalls.size(), 3);
    EXPECT_EQ(TDVCmdStartEXE::LastResult(), -65535);  // what the editor's Test button shows
}

TEST_F(ExecRunTest, TimeOutGivesMinusTwoAndKillAsksTheWholeGroupToEnd)
{
    auto start = Clock::now();
    EXPECT_EQ(Run("sleep", "30", "0", true), -2);  // TimeOut 0 does not wait at all
    EXPECT_LT(MsSince(start), 500);

    QTemporaryDir dir;  // also proves WorkDir: the pid file lands there
    start = Clock::now();
    EXPECT_EQ(Run("sh", "-c \"sleep 30 & echo $! > pid; wait\"", "0.2", true, dir.path()), -2);
    EXPECT_LT(MsSince(start), 500);
    const pid_t grandchild = ReadFile(dir.filePath("pid")).trimmed().toInt();
    ASSERT_GT(grandchild, 0);
    EXPECT_TRUE(Eventually([&] { return Ended(grandchild); })) << "SIGTERM did not reach the program's child";
}

TEST_F(ExecRunTest, StopEventEndsTheWaitWithin100Ms)
{
    TStopLater stopper(host.runControl, 100);
    EXPECT_EQ(Run("sleep", "30", "-1", true), -2);  // -1 s waits practically without end
    EXPECT_LT(stopper.MsSinceSignal(), 100);
}

TEST_F(ExecRunTest, FailuresNameWhatWentWrongAndWriteNothing)
{
    const QString noFile = QString::fromLocal8Bit(strerror(ENOENT));
    // ExePath, Params, TimeOut, WorkDir, what the message names
    const std::tuple<const char*, const char*, const char*, const char*, QStringList> rows[] = {
        {"/nonexistent/prog", "-x", "1", "", {"/nonexistent/prog -x", "Arbeitsverzeichnis: /nonexistent/", "existiert nicht"}},
        {"/nonexistent/prog", "", "1", "/tmp", {"Programm: /nonexistent/prog", noFile}},
        {"true", "", "1", "/nonexistent/dir", {"Programm: true", "Arbeitsverzeichnis: /nonexistent/dir", "existiert nicht"}},
        {"no/such/prog", "", "1", "/tmp", {"Programm: " + QDir::current().absoluteFilePath("no/such/prog"), "Arbeitsverzeichnis: /tmp", noFile}},
        {"\"\"", "", "1", "/tmp", {"Keine Anwendung"}},
        {"true", "", "\"soon\"", "", {"TimeOut"}},
    };
    for (const auto& [exe, args, timeOut, workDir, parts] : rows) {
        const QString failure = FailureOf([&] { Run(exe, args, timeOut, false, workDir); });
        for (const QString& part : parts) EXPECT_TRUE(failure.contains(part)) << exe << ": " << failure.toStdString();
    }
    EXPECT_TRUE(host.setVariableCalls.isEmpty());
}

// A relative program is the one the script's current directory names, whatever the working
// directory of the program; ExePath takes the project folder like every file name. A program path
// with blanks as the editor's file button writes it (quoted in the script, so the value has no
// quotes) and with quotes of its own in the value: without a WorkDir it runs in its folder.
TEST(ExecDvrunTest, RelativeProjectAndBlankProgramsAreTheOnesNamed)
{
    QTemporaryDir dir;
    const QDir root(dir.path());
    ASSERT_TRUE(root.mkpath("x/y/sub") && root.mkpath("x/y/other") && root.mkpath("x/y/work dir"));
    WriteProgram(root.filePath("prog.sh"), "exit 4");  // what the child's working directory would pick
    WriteProgram(root.filePath("x/prog.sh"), "exit 3");
    WriteProgram(root.filePath("x/y/sub/tool.sh"), "exit 5");
    WriteProgram(root.filePath("x/y/tool.sh"), "exit 6");
    const QString prog = root.filePath("x/y/work dir/my prog.sh");
    WriteProgram(prog, R"(pwd > "$1.txt"; echo "$2" >> "$1.txt"; exit 3)");
    const QByteArray p = prog.toUtf8();
    WriteFile(root.filePath("x/y/run.dvs"), R"(var R : Number
Exec(ExePath := "../prog.sh", Return := R, TimeOut := 10)
Check(R = 3 - 65536, "../prog.sh")
Exec(ExePath := "sub/tool.sh", WorkDir := "other", Return := R, TimeOut := 10)
Check(R = 5 - 65536, "sub/tool.sh")
Exec(ExePath := "%PROJEKTPFAD%/tool.sh", WorkDir := "/", Return := R, TimeOut := 10)
Check(R = 6 - 65536, "%PROJEKTPFAD%/tool.sh")
)" "Exec(ExePath := \"" + p + "\", Params := \"editor \"\"a b\"\"\", Return := R, TimeOut := 10)\n"
                                              "Check(R = 3 - 65536, \"editor\")\n"
                                              "Exec(ExePath := \"\"\"" + p + "\"\"\", Params := \"quoted c\", Return := R, TimeOut := 10)\n"
                                              "Check(R = 3 - 65536, \"quoted\")\n");
    const TDvrunRun run = RunDvrun({"run.dvs"}, {.workDir = root.filePath("x/y")});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QByteArray folder = root.filePath("x/y/work dir").toUtf8();
    EXPECT_EQ(ReadFile(folder + "/editor.txt"), folder + "\na b\n");
    EXPECT_EQ(ReadFile(folder + "/quoted.txt"), folder + "\nc\n");
}

// dvrun's output ends with dvrun, even when a program it started runs on: `x=$(dvrun ...)` returns.
TEST(ExecDvrunTest, AStartedProgramDoesNotHoldTheHostsOutput)
{
    QTemporaryDir dir;
    WriteFile(dir.filePath("run.dvs"), R"(Exec(ExePath := "sh", Params := "-c ""echo $$ > pid; echo gestartet; exec sleep 60""")
Log("fertig")
)");
    QProcess shell;
    shell.setWorkingDirectory(dir.path());
    shell.start("sh", {"-c", "x=$(\"$0\" run.dvs); echo \"$x\"", DV_BINARY_DIR "/host/dvrun"});
    const bool returned = shell.waitForFinished(30000);
    const pid_t program = ReadFile(dir.filePath("pid")).trimmed().toInt();
    if (program > 0) ::kill(program, SIGKILL);
    if (!returned) shell.kill(), shell.waitForFinished();
    ASSERT_TRUE(returned) << "the captured output stayed open while the program ran";
    EXPECT_EQ(shell.readAllStandardOutput(), "fertig\n");
    const QStringList logs = QDir(dir.path()).entryList({"exec-*.log"});
    ASSERT_EQ(logs.size(), 1);
    EXPECT_EQ(ReadFile(dir.filePath(logs.front())), "gestartet\n");
    EXPECT_TRUE(QString::fromUtf8(shell.readAllStandardError()).contains(dir.filePath(logs.front())));
}

// A script folder that takes no file (installed examples, another user's checkout): the programs'
// output goes to the temporary folder, and the log says where.
TEST(ExecDvrunTest, AReadOnlyScriptFolderSendsTheOutputToTheTemporaryFolder)
{
    if (!CanActAsOtherUser()) GTEST_SKIP() << "running as root without setpriv";
    QTemporaryDir dir;
    QTemporaryDir temp;
    WriteFile(dir.filePath("run.dvs"), R"(var R : Number
Exec(ExePath := "sh", Params := "-c ""echo hallo""", Return := R, TimeOut := 10)
Check(R = 0, "Exec")
)");
    ::chmod(QFile::encodeName(dir.filePath("run.dvs")).constData(), 0644);
    ::chmod(QFile::encodeName(dir.path()).constData(), 0555);
    ::chmod(QFile::encodeName(temp.path()).constData(), 01777);
    const TDvrunRun run = RunDvrun({dir.filePath("run.dvs")}, {.workDir = temp.path(), .environment = {"TMPDIR=" + temp.path()}, .asOtherUser = true});
    ::chmod(QFile::encodeName(dir.path()).constData(), 0755);
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList logs = QDir(temp.path()).entryList({"exec-*.log"});
    ASSERT_EQ(logs.size(), 1) << run.err.toStdString();
    EXPECT_EQ(ReadFile(temp.filePath(logs.front())), "hallo\n");
    const QString warning = "WARN: Die Ausgabedatei " + dir.filePath(logs.front()) + " kann nicht angelegt werden";
    EXPECT_TRUE(run.err.contains(warning) && run.err.contains(temp.filePath(logs.front()))) << run.err.toStdString();
}

// SIGTERM (a CI time-out) and SIGHUP (a closed terminal) stop a run as Ctrl-C does: the waiting Exec
// ends and asks its Kill program to end, the run fails with its reports written.
TEST(ExecDvrunTest, AnyStopSignalEndsTheWaitTheProgramAndTheRunWithReports)
{
    for (const int signal : {SIGTERM, SIGHUP, SIGINT}) {
        QTemporaryDir dir;
        WriteFile(dir.filePath("run.dvs"), R"(Exec(ExePath := "sh", Params := "-c ""echo $$ > pid; exec sleep 60""", TimeOut := 120, Kill := True)
Log("weiter")
)");
        QProcess dvrun;
        StartDvrun(dvrun, {"--junit", "report.xml", "--log", "run.log", "run.dvs"}, {.workDir = dir.path()});
        pid_t program = 0;
        ASSERT_TRUE(Eventually([&] { return (program = ReadFile(dir.filePath("pid")).trimmed().toInt()) > 0; }, 10000))
            << "the program did not start";
        ::kill(dvrun.processId(), signal);
        const bool ended = dvrun.waitForFinished(20000);
        const bool programGone = Eventually([&] { return Ended(program); });
        if (!programGone) ::kill(program, SIGKILL);
        ASSERT_TRUE(ended) << strsignal(signal);
        EXPECT_EQ(dvrun.exitStatus(), QProcess::NormalExit) << strsignal(signal);
        EXPECT_EQ(dvrun.exitCode(), 1) << strsignal(signal);
        EXPECT_TRUE(programGone) << strsignal(signal) << ": the Kill program still runs";
        EXPECT_TRUE(QString::fromUtf8(dvrun.readAllStandardError()).contains("run.dvs:1: Test abgebrochen"));
        EXPECT_FALSE(dvrun.readAllStandardOutput().contains("weiter"));
        EXPECT_TRUE(ReadFile(dir.filePath("run.log")).contains("Test abgebrochen")) << strsignal(signal);
        EXPECT_TRUE(ReadFile(dir.filePath("report.xml")).contains("Test abgebrochen")) << strsignal(signal);
    }
}

TEST(ExecParamsTest, OlderLineFormAndTheEditorsWholeSeconds)
{
    TDVCmdStartEXE exec(nullptr);
    TParamList p;
    ASSERT_TRUE(exec.DecodeScript("Exec(prog,Param:-a,Pfad:/tmp,Result:R,TimeOut:4,V:True);3;", p, nullptr));
    EXPECT_EQ(p, MakeParams({{"ExePath", "prog"}, {"Params", "-a"}, {"WorkDir", "/tmp"}, {"Return", "R"}, {"TimeOut", "4"},
                             {"Hide", "True"}, {"Delay", "3"}}));
    EXPECT_EQ(exec.Fields().timeOut, 7);

    p = TParamList();
    ASSERT_TRUE(exec.DecodeScript("Exec(prog,Param:,Pfad:,Result:,V:False);", p, nullptr));  // no TimeOut or Delay then
    EXPECT_EQ(p, MakeParams({{"ExePath", "prog"}, {"Params", ""}, {"WorkDir", ""}, {"Return", ""}, {"Hide", "False"}}));
    exec.SetParams(MakeParams({{"TimeOut", "0.5"}}));  // not an integer: counts as 0, so waiting is off
    EXPECT_FALSE(exec.Fields().waitForExit);
}

}  // namespace
}  // namespace dv
