// The dvrun binary as a child process: exit codes, options, reports and --convert.
#include "framework/typeconversion.h"
#include "host/scriptparser.h"
#include "tests/support/process.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QThread>

#include <chrono>
#include <csignal>
#include <poll.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace dv::test {
namespace {

class Dvrun : public testing::Test {
protected:
    QString Script(const QString& name, const QString& text) { return ScriptBytes(name, text.toUtf8()); }
    QString ScriptBytes(const QString& name, const QByteArray& bytes)
    {
        WriteFile(dir.filePath(name), bytes);
        return dir.filePath(name);
    }
    static TDvrunRun Run(const QStringList& args) { return RunDvrun(args); }
    // Runs a script that prints a line when it has started; signal goes waitMs after the line.
    TDvrunRun Signalled(const QString& script, int signal, const QStringList& options = {}, unsigned long waitMs = 0)
    {
        QProcess p;
        StartDvrun(p, options + QStringList{script});
        if (!p.waitForStarted(10000)) return {};
        while (p.state() == QProcess::Running && !p.canReadLine()) p.waitForReadyRead(10000);
        QThread::msleep(waitMs);
        ::kill(static_cast<pid_t>(p.processId()), signal);
        return FinishDvrun(p);
    }
    QTemporaryDir dir;
};

TEST_F(Dvrun, ExitCodesAndMessagesNamingFileLineAndColumn)
{
    const struct { const char* script; int exitCode; const char* message; } cases[] = {  // message: after "path:"
        {"Log(1)", 0, ""},
        {"Check(1 = 2, \"falsch\")", 1, ""},
        {"var A : Array of Number\nLog(A[1])", 1, ""},
        {"Log(1 +)", 2, ""},
        {"Unbekannt", 2, ""},
        {"", 0, ""},
        {"var X : Number\nX := 1 * ;\nX := 2 +\n", 2, "2:10: Ausdruck erwartet bei ';'"},
        {"var X : Number\n\nX := 1 / X\n", 1, "3: Division durch Null"},
    };
    for (const auto& c : cases) {
        const QString script = Script("s.dvs", c.script);
        const TDvrunRun r = Run({script});
        EXPECT_EQ(r.exitCode, c.exitCode) << c.script << "\n" << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(script + ":" + c.message) || !*c.message) << r.err.toStdString();
    }
    for (const QStringList& args : {QStringList{}, {"--bogus", Script("s.dvs", "")}, {dir.filePath("fehlt.dvs")}, {"a.dvs", "b.dvs"},
                                    {"--all", Script("s.dvs", "")}}) {
        EXPECT_EQ(Run(args).exitCode, 2) << args.join(' ').toStdString();
    }
    const TDvrunRun help = Run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("--define NAME=WERT") && help.out.contains("--list --all"));
}

TEST_F(Dvrun, DefineProjectLogAndJUnit)
{
    const QString script = Script("p.dvs", "var N : Number = 1\nLog(N * 2)\nLog(PROJEKTPFAD)\nCheck(N = 1, \"N ist 1\")\n");
    const QString junit = dir.filePath("bericht.xml"), log = dir.filePath("lauf.log");
    const TDvrunRun r = Run({"--define", "N=21", "--project", "/proj", "--junit", junit, "--log", log, script});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "42\n/proj\n");
    const QString xml = QString::fromUtf8(ReadFile(junit));
    EXPECT_TRUE(xml.contains("failures=\"1\""));
    EXPECT_TRUE(xml.contains("p.dvs:4: Prüfung fehlgeschlagen: N ist 1")) << xml.toStdString();
    EXPECT_TRUE(ReadFile(log).contains("LOG 42"));
    EXPECT_EQ(Run({"--define", "Fehlt=1", script}).exitCode, 2);
    EXPECT_EQ(Run({"--define", "N=abc", script}).exitCode, 2);
    EXPECT_EQ(Run({script}).out, "2\n" + QFileInfo(script).absolutePath() + "\n");
}

TEST_F(Dvrun, ListShowsTheCommandsTheBuiltinsAndWithAllTheOperatorCommands)
{
    const TDvrunRun list = Run({"--list"}), builtins = Run({"--list", "--builtins"}), all = Run({"--list", "--all"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_TRUE(list.out.contains("ShowLabor\tprocedure ShowLabor;"));
    EXPECT_EQ(builtins.exitCode, 0);
    for (const char* line : {"Copy\tfunction Copy(S : String; Index : Number; Count : Number) : String;\n",
                             "SetLength\tprocedure SetLength(var A : Array of Misc; N : Number);\n", "Pi\tfunction Pi : Number;\n",
                             "Log\tprocedure Log(Text : Misc);\n"}) {
        EXPECT_TRUE(builtins.out.contains(line)) << line;
    }
    EXPECT_EQ(all.exitCode, 0) << all.err.toStdString();
    for (const char* procedure : {"MeldungsBox\t", "StatusText\t", "OpenSaveDlg\t", "FormShow\t", "FormResult\t"}) {
        EXPECT_TRUE(all.out.contains(QString("\n") + procedure)) << procedure;
    }
    for (const QString& line : list.out.split('\n')) EXPECT_TRUE(all.out.contains(line)) << line.toStdString();
}

// Converting changes no script that is already in the current form, nor lines that are no older
// command form.
TEST_F(Dvrun, ConvertLeavesCurrentScriptsAlone)
{
    QStringList scripts{Script("alt.dvs", "93:for I := 1 to 3 do\nShowLabor;\n  Log(\"x\")\n")};
    for (const char* folder : {DV_TEST_DATA_DIR "/../examples", DV_TEST_DATA_DIR "/host/scripts"}) {
        for (const QFileInfo& f : QDir(folder).entryInfoList({"*.dvs"}, QDir::Files)) scripts << f.filePath();
    }
    ASSERT_GT(scripts.size(), 5);
    for (const QString& path : scripts) {
        const TDvrunRun converted = Run({"--convert", path});
        EXPECT_EQ(converted.exitCode, 0) << path.toStdString();
        EXPECT_EQ(converted.bytes, ReadFile(path)) << path.toStdString();
    }
}

// Older system lines with paths (slashes, backslashes, blanks, quotes) become lines that run on
// the files they named; an older Exec line whose program path holds blanks, bare or in quotes,
// runs that program in its folder.
TEST_F(Dvrun, ConvertedSystemLinesWithPathsRun)
{
    const QString d = dir.path();
    for (const char* name : {"a b.txt", "back\\slash.txt", "say \"hi\".txt"}) Script(name, "x");
    ASSERT_TRUE(QDir(d).mkpath("conf dir") && QDir(d).mkpath("work dir"));
    Script("conf dir/a.ini", "[Main]\nName=Wert\n");
    const QString prog = dir.filePath("prog.sh"), blanks = dir.filePath("work dir/my prog.sh");
    WriteProgram(prog, "pwd > wo.txt\necho \"$1\" >> wo.txt");
    WriteProgram(blanks, "pwd >> wo.txt\necho \"$1\" >> wo.txt\nexit 2");
    const QString older = "var N, R : Misc\n"
                          "FILEEXIST(" + d + "/a b.txt):N;\nLog(N)\n"
                          "FILEEXIST(" + d + "/back\\slash.txt):N; // Rückstrich\nLog(N)\n"
                          "FILEEXIST(" + d + "/say \"hi\".txt):N;\nLog(N)\n"
                          "FILEEXIST(\"" + d + "/a b.txt\"):N;\nLog(N)\n"
                          "FILEEXIST(" + d + "/fehlt.txt):N;\nLog(N)\n"
                          "IniFiles_ReadString(Filename:" + d + "/conf dir/a.ini,Sec:Main,Id:Name,Value:,Result:R,);\nLog(R)\n"
                          "Exec(" + prog + ",Param:eins,Pfad:" + d + "/work dir,Result:N,TimeOut:5,V:False);\nLog(N)\n"
                          "Exec(" + blanks + ",Param:bar,Pfad:,Result:N,TimeOut:5,V:False);\nLog(N)\n"
                          "Exec(\"" + blanks + "\",Param:zitiert,Pfad:,Result:N,TimeOut:5,V:False);\nLog(N)\n";
    const TDvrunRun converted = Run({"--convert", Script("alt.dvs", older)});
    ASSERT_EQ(converted.exitCode, 0);
    EXPECT_TRUE(converted.err.isEmpty()) << converted.err.toStdString();
    EXPECT_TRUE(converted.out.contains("); // Rückstrich\n")) << converted.out.toStdString();
    const TDvrunRun run = Run({Script("neu.dvs", converted.out)});
    EXPECT_EQ(run.exitCode, 0) << converted.out.toStdString() << run.err.toStdString();
    EXPECT_EQ(run.out, "True\nTrue\nTrue\nTrue\nFalse\nWert\n0\n-65534\n-65534\n") << converted.out.toStdString();
    const QString folder = d + "/work dir";
    EXPECT_EQ(QString::fromUtf8(ReadFile(folder + "/wo.txt")), folder + "\neins\n" + folder + "\nbar\n" + folder + "\nzitiert\n");
}

TEST_F(Dvrun, ConvertWarnsOfLinesItKeeps)
{
    const QString older = "var A : Array of Number\nHexToInt(IN:FF,OUT:A[1]):0;\n";
    const TDvrunRun converted = Run({"--convert", Script("alt.dvs", older)});
    EXPECT_EQ(converted.exitCode, 0);
    EXPECT_TRUE(converted.out.startsWith("var A : Array of Number\nHexToInt(IN:FF,OUT:A[1]):0; // nicht umgesetzt: "))
        << converted.out.toStdString();
    EXPECT_TRUE(converted.err.startsWith(dir.filePath("alt.dvs") + ":2: nicht umgesetzt: ")) << converted.err.toStdString();
    const TDvrunRun run = Run({Script("neu.dvs", converted.out)});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_TRUE(run.err.startsWith(dir.filePath("neu.dvs") + ":2:")) << run.err.toStdString();
}

// Scripts built to break the interpreter end with their message, file and line, the exit code and a
// written report; never with a signal.
TEST_F(Dvrun, HostileScriptsEndWithAMessageAndAReport)
{
    const QString open = "if True then\n", close = "end if\n";
    const QString recursion = "procedure P();\n" + open.repeated(150) + "P\n" + close.repeated(150) + "end procedure\nP\n";
    const int limit = dv::host::TScriptParser::kMaxNesting;
    const struct { const char* name; QString text; QStringList options; int exitCode, line; const char* message; } cases[] = {
        {"klammern", "Log(" + QString("(").repeated(8000) + "1" + QString(")").repeated(8000) + ")", {}, 2, 1, "zu tief verschachtelt"},
        {"arrays", "var A : Misc = " + QString("[").repeated(10000) + QString("]").repeated(10000), {}, 2, 1, "zu tief verschachtelt"},
        {"ifs", open.repeated(10000) + close.repeated(10000), {}, 2, limit, "zu tief verschachtelt"},
        {"unendlich", "var I : Number\nvar X : Number = -1e4000 * 1e4000\nfor I := X to 1 do\nend for", {}, 1, 3, "keine endlichen Zahlen"},
        {"runden", "var I : Number\nfor I := 0 to 1e17 do\nend for", {}, 1, 2, "mehr als 2^53 Durchläufe"},
        {"index", "var A : Array of Number\nA[2000000000] := 1", {}, 1, 2, "--max-array 100000000"},
        {"fuellen", "var A : Array of Number\nvar I : Number\nwhile True do\n  I := I + 1\n  A[I] := I\nend while",
         {"--max-array", "1000"}, 1, 5, "mit 1001 Elementen"},
        {"setlength", "var A : Array of Misc\nSetLength(A, 1e9)", {}, 1, 2, "--max-array"},
        {"verdoppeln", "var S : String = \"x\"\nvar I : Number\nfor I := 1 to 64 do\n  S := S + S\nend for",
         {"--max-string", "1e6"}, 1, 4, "mit 1048576 Zeichen"},
        {"rekursion", "procedure P();\n  P\nend procedure\nP", {}, 1, 2, "Zu tiefe Rekursion beim Aufruf von P"},
        {"tiefe_rekursion", recursion, {}, 1, 152, "Zu tiefe Rekursion beim Aufruf von P"},
    };
    for (const auto& c : cases) {
        const QString script = Script(QString(c.name) + ".dvs", c.text), junit = dir.filePath(QString(c.name) + ".xml");
        const TDvrunRun r = Run(c.options + QStringList{"--junit", junit, script});
        EXPECT_FALSE(r.crashed) << c.name;
        EXPECT_EQ(r.exitCode, c.exitCode) << c.name;
        const QString where = QStringLiteral("%1:%2:").arg(script).arg(c.line);
        EXPECT_TRUE(r.err.startsWith(where) && r.err.section('\n', 0, 0).contains(c.message)) << c.name << ": " << r.err.left(300).toStdString();
        EXPECT_TRUE(QString::fromUtf8(ReadFile(junit)).contains(c.message)) << c.name;
    }
}

TEST_F(Dvrun, DeepButValidScriptsRun)
{
    const struct { QString text, out; } cases[] = {
        {"Log(" + QString("-").repeated(50001) + "1)", "-1\n"},
        {"var X : Number = 2\nLog(" + QString("-").repeated(50000) + "X)", "2\n"},
        {"Log(not " + QString("not ").repeated(49999) + "False)", "False\n"},
        {"Log(1" + QString(" + 1").repeated(199999) + ")", "200000\n"},
        {"var S : String\nS := \"\"" + QString(" + \"ab\"").repeated(20000) + "\nLog(Length(S))", "40000\n"},
        {"Log(" + QString("(").repeated(dv::host::TScriptParser::kMaxNesting - 2) + "7" +
             QString(")").repeated(dv::host::TScriptParser::kMaxNesting - 2) + ")", "7\n"},
    };
    for (const auto& c : cases) {
        const TDvrunRun r = Run({Script("tief.dvs", c.text)});
        EXPECT_EQ(r.exitCode, 0) << c.text.left(40).toStdString() << r.err.left(300).toStdString();
        EXPECT_EQ(r.out, c.out) << c.text.left(40).toStdString();
    }
}

// The first Ctrl-C (or SIGTERM) ends loops, recursions without loops and waits at the next statement,
// with the line, a verdict and the report; a stop while a pipe is tried reads as any stop, not as the
// pipe's failure.
TEST_F(Dvrun, AStopSignalStopsEveryKindOfWork)
{
    const QString pipe = "var R : String\nLog(\"los\")\nCallNamedPipe(Name := \"dvtest-fehlt-" + QString::number(::getpid()) +
                         "\", Call := \"x\", Result := R)\n";
    const struct { QString text; int signal; unsigned long waitMs; int line; } cases[] = {  // line 0: any
        {"Log(\"los\")\nwhile True do\nend while", SIGINT, 0, 2},
        {"procedure Zwei(N : Number);\n  if N > 0 then\n    Zwei(N - 1)\n    Zwei(N - 1)\n  end if\nend procedure\n"
         "Log(\"los\")\nZwei(60)", SIGINT, 0, 0},
        {"Log(\"los\")\nSleep(600000)", SIGINT, 0, 2},
        {pipe, SIGTERM, 500, 3},
    };
    for (const auto& c : cases) {
        const QString script = Script("stopp.dvs", c.text), junit = dir.filePath("stopp.xml");
        const TDvrunRun r = Signalled(script, c.signal, {"--junit", junit}, c.waitMs);
        EXPECT_FALSE(r.crashed) << c.text.toStdString();
        EXPECT_EQ(r.exitCode, 1) << c.text.toStdString();
        EXPECT_TRUE(r.err.contains("Test abgebrochen")) << c.text.toStdString() << r.err.toStdString();
        const QString where = c.line > 0 ? QStringLiteral("%1:%2: Test abgebrochen").arg(script).arg(c.line) : QString();
        EXPECT_TRUE(r.err.startsWith(where)) << r.err.toStdString();
        EXPECT_TRUE(ReadFile(junit).contains("Test abgebrochen")) << c.text.toStdString();
    }
}

// A command that does not heed the first signal (a copy from a pipe nobody writes to): the second
// ends dvrun at once.
TEST_F(Dvrun, ASecondSignalEndsAtOnce)
{
    const QString fifo = dir.filePath("fifo");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    const QString script = Script("fifo.dvs", "Log(\"los\")\nSysUtils(Command := \"FileCopy\", FileName := \"" + fifo +
                                              "\", Target := \"" + dir.filePath("kopie") + "\")\n");
    QProcess p;
    StartDvrun(p, {script});
    ASSERT_TRUE(p.waitForReadyRead(10000));
    QThread::msleep(200);
    ::kill(static_cast<pid_t>(p.processId()), SIGTERM);
    EXPECT_FALSE(p.waitForFinished(300)) << "the copy was to hold the first signal off";
    const auto second = std::chrono::steady_clock::now();
    ::kill(static_cast<pid_t>(p.processId()), SIGTERM);
    ASSERT_TRUE(p.waitForFinished(5000));
    EXPECT_LT(std::chrono::steady_clock::now() - second, std::chrono::milliseconds(500));
    EXPECT_EQ(p.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(p.exitCode(), 1);
}

TEST_F(Dvrun, BuiltinDomainErrorsNameTheFunction)
{
    const struct { const char *call, *message; } cases[] = {
        {"Sqrt(-1)", "Sqrt(-1) ist nicht definiert"},
        {"Ln(0)", "Ln(0) ist nicht definiert"},
        {"Log10(-2)", "Log10(-2) ist nicht definiert"},
        {"Power(0, -1)", "Power(0; -1) ist nicht definiert"},
        {"Power(-8, 1 / 3)", "Power(-8; 0.333333333333333) ist nicht definiert"},
        {"Exp(1e6)", "Exp(1000000) ist zu groß"},
        {"Chr(256)", "Chr(256) ist nicht definiert"},
        {"Copy(\"abc\", 1.5, 1)", "Copy: 1.5 ist keine ganze Zahl"},
        {"Random(-1)", "Random(-1) ist nicht definiert"},
        {"Ord(\"\")", "Ord erwartet ein Zeichen"},
        {"Length(1)", "Length erwartet einen Text oder ein Array"},
        {"Sqrt(\"x\")", "\"x\" ist kein gültiger Gleitkommawert"},
    };
    for (const auto& c : cases) {
        const QString script = Script("bereich.dvs", QStringLiteral("Log(\"vorher\")\nLog(%1)\n").arg(c.call));
        const TDvrunRun r = Run({script});
        EXPECT_EQ(r.exitCode, 1) << c.call;
        EXPECT_EQ(r.out, "vorher\n") << c.call;
        EXPECT_TRUE(r.err.startsWith(script + ":2: ") && r.err.contains(c.message)) << c.call << ": " << r.err.toStdString();
    }
}

TEST_F(Dvrun, RandomRepeatsWithItsSeed)
{
    const QString script = Script("zufall.dvs", "Log(Random)\nLog(Random(1000000))\nLog(Random)\n");
    const TDvrunRun first = Run({"--seed", "42", script}), again = Run({"--seed", "42", script}), other = Run({"--seed", "43", script});
    EXPECT_EQ(first.exitCode, 0);
    EXPECT_EQ(first.out.count('\n'), 3);
    EXPECT_EQ(first.out, again.out);
    EXPECT_NE(first.out, other.out);
    EXPECT_EQ(Run({"--seed", "-1", script}).exitCode, 2);
    EXPECT_EQ(Run({"--max-array", "viele", script}).exitCode, 2);
}

// Inputs that once ended the process with an abort (exit code 134): each is a syntax error with its
// place now, and the process ends normally. A bad character at the start of the line after another
// error is reported too, not swallowed while the reader skips to the next statement.
TEST_F(Dvrun, MalformedCharactersAreSyntaxErrors)
{
    const struct { const char *script, *expected; } cases[] = {  // the script in UTF-8
        {"@@", "m.dvs:1:1: Unerwartetes Zeichen '@'"},
        {"Log(1)\n@ @ @\nLog(2)", "m.dvs:2:1: Unerwartetes Zeichen '@'"},
        {"Log(\xEF\xBC\x91)", "m.dvs:1:5: Unerwartetes Zeichen '\xEF\xBC\x91'"},  // full-width digit one
        {"Log(1\xD9\xA3)", "m.dvs:1:6: Unerwartetes Zeichen '\xD9\xA3'"},         // Arabic-Indic digit three
        {"Log('Text')", "m.dvs:1:5: Unerwartetes Zeichen '''"},
        {"Log(1e99999)", "m.dvs:1:5: Ungültige Zahl bei '1e99999'"},
        {"var X : Number = 1e-99999", "m.dvs:1:18: Ungültige Zahl"},
        {"Log(1 +)\n@Log(2)\nLog(3)\n", "m.dvs:1:"},
        {"Log(1 +)\n@Log(2)\nLog(3)\n", "m.dvs:2:1: Unerwartetes Zeichen '@'"},
    };
    for (const auto& c : cases) {
        const TDvrunRun r = Run({Script("m.dvs", QString::fromUtf8(c.script))});
        EXPECT_EQ(r.exitCode, 2) << c.script << "\n" << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(QString::fromUtf8(c.expected))) << c.script << "\n" << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << c.script;
    }
}

// Scripts from Windows stations run in each encoding they come in (a file that is not valid UTF-8 is
// Windows-1252; valid UTF-8 stays UTF-8, though its bytes would also be Windows-1252 text), and
// --convert writes them back in it: byte for byte without older lines, with the older line rewritten
// otherwise.
TEST_F(Dvrun, ConvertKeepsTheEncodingOfTheScript)
{
    const QString current = QString::fromUtf8("var Größe : String = \"Grüße € „a“\"\r\nLog(Größe)\r\n");
    const QString older = QString::fromUtf8("var N : Number\r\nTextOut([OUT:Grüße €]);\r\nHexToInt(IN:FF,OUT:N):0;\r\nLog(N)\r\n");
    const QString expected = QString::fromUtf8(
        "var N : Number\r\nTextOut(Text := \"Grüße €\", Font := \"\", FontSize := 10, FontColor := 0, FontStyle := \"Arial\");\r\n"
        "NumberConvert(Operation := \"ccHexToInt\", Input := \"FF\", Output := N, Stellen := 0);\r\nLog(N)\r\n");
    for (const TTextEncoding e : {TTextEncoding::Windows1252, TTextEncoding::Utf8, TTextEncoding::Utf8Bom, TTextEncoding::Utf16LE,
                                  TTextEncoding::Utf16BE}) {
        const int code = static_cast<int>(e);
        const QByteArray bytes = EncodeText(current, e);
        const TDvrunRun run = Run({ScriptBytes("c.dvs", bytes)});
        EXPECT_EQ(run.exitCode, 0) << code << run.err.toStdString();
        EXPECT_EQ(run.out, QString::fromUtf8("Grüße € „a“\n")) << code;
        const TDvrunRun same = Run({"--convert", ScriptBytes("c.dvs", bytes)});
        EXPECT_EQ(same.exitCode, 0) << code;
        EXPECT_EQ(same.bytes, bytes) << code;

        const TDvrunRun converted = Run({"--convert", ScriptBytes("o.dvs", EncodeText(older, e))});
        EXPECT_TRUE(converted.err.isEmpty()) << code << converted.err.toStdString();
        EXPECT_EQ(converted.bytes, EncodeText(expected, e)) << code;
        const TDvrunRun after = Run({ScriptBytes("n.dvs", converted.bytes)});
        EXPECT_EQ(after.exitCode, 0) << code << after.err.toStdString();
        EXPECT_EQ(after.out, QString::fromUtf8("Grüße €\n255\n")) << code;
    }
    // ASCII up to a closing "ß" without a line end is Windows-1252 all the same: the "ß" stays.
    const QByteArray closing = "Log(\"x\")\r\n// Ma\xDF";
    EXPECT_EQ(Run({"--convert", ScriptBytes("m.dvs", closing)}).bytes, closing);
}

// An X display number that no server on this machine listens on.
QString AbsentDisplay()
{
    int n = 99;
    while (QFileInfo::exists(QStringLiteral("/tmp/.X11-unix/X%1").arg(n))) ++n;
    return QStringLiteral(":%1").arg(n);
}

// A script's stdout and stderr on one terminal, as a person sees them: everything the run wrote.
QByteArray RunOnTerminal(const QStringList& args, int limitMs = 20000)
{
    std::vector<QByteArray> bytes{DV_BINARY_DIR "/host/dvrun"};
    for (const QString& a : args) bytes.push_back(a.toLocal8Bit());
    std::vector<char*> argv;
    for (QByteArray& b : bytes) argv.push_back(b.data());
    argv.push_back(nullptr);
    int master = -1;
    const pid_t child = ::forkpty(&master, nullptr, nullptr, nullptr);
    if (child == 0) {
        ::unsetenv("DISPLAY");
        ::unsetenv("WAYLAND_DISPLAY");
        ::execv(argv[0], argv.data());
        ::_exit(127);
    }
    QByteArray out;
    QElapsedTimer timer;
    timer.start();
    char buffer[4096];
    for (;;) {
        pollfd p{master, POLLIN, 0};
        const int left = limitMs - static_cast<int>(timer.elapsed());
        if (left <= 0 || ::poll(&p, 1, left) <= 0) {
            ::kill(child, SIGKILL);
            out += "\n<<< time limit >>>";
            break;
        }
        const ssize_t n = ::read(master, buffer, sizeof buffer);
        if (n <= 0) break;  // EIO once the run has ended
        out.append(buffer, n);
    }
    ::close(master);
    ::waitpid(child, nullptr, 0);
    return out;
}

// Operator dialogs are shown only where a person sees them: a run that draws its pictures
// offscreen, or whose display does not answer, takes its --answer or fails naming the option,
// and never waits for a window nobody can see. An answer that no command asked for is named.
TEST_F(Dvrun, OperatorCommandsWithoutAVisibleDisplayTakeTheirAnswers)
{
    const QString mb = Script("mb.dvs", "var ButtonResult : String;\n"
                                        "MeldungsBox(Position := True, Text := \"Frage?\", Type := \"mtConfirmation\", "
                                        "Buttons := \"mbYes + mbNo\", XPos := 0, YPos := 0);\nLog(\"BR=\" + ButtonResult);\n");
    const QString os = Script("os.dvs", "var Datei : String;\nOpenSaveDlg(OpenDlg := False, FileName := Datei, "
                                        "InitDir := PROJEKTPFAD, Caption := \"Bericht\", Extension := \"csv\");\nLog(Datei);\n");
    const QString art = dir.filePath("bilder"), display = "DISPLAY=" + AbsentDisplay();
    const QString unreachable = "Die Anzeige " + display + " antwortet nicht";
    const struct { QStringList args, environment; int exitCode; const char* out; QString err; } cases[] = {
        {{mb, "--artifacts", art, "--answer", "MeldungsBox=JA"}, {}, 0, "BR=JA\n", ""},
        {{mb, "--artifacts", art}, {}, 1, "", "dvrun --answer MeldungsBox="},
        {{os, "--artifacts", art, "--answer", "OpenSaveDlg=/tmp/bericht"}, {}, 0, "/tmp/bericht.csv\n", ""},
        {{mb, "--answer", "MeldungsBox=NEIN"}, {display}, 0, "BR=NEIN\n", unreachable},
        {{mb, "--artifacts", art, "--answer", "MeldungsBox=JA"}, {display}, 0, "BR=JA\n", unreachable},
        {{mb}, {display}, 1, "", "dvrun --answer MeldungsBox="},
        {{Script("s.dvs", "Log(1)"), "--answer", "FormResult=A=1", "--answer", "MeldungsBox=JA"}, {}, 0, "1\n",
         "--answer FormResult: kein Befehl hat nach dieser Antwort gefragt"},
        {{Script("s.dvs", "Log(1)"), "--answer", "FormResult=A=1", "--answer", "MeldungsBox=JA"}, {}, 0, "1\n",
         "--answer MeldungsBox: kein Befehl"},
    };
    for (const auto& c : cases) {
        // As a person starts it: no platform chosen for Qt.
        const TDvrunRun r = RunDvrun(c.args, {.environment = c.environment + QStringList{"-QT_QPA_PLATFORM"}, .limitMs = 20000});
        const std::string what = (c.args.mid(1).join(' ') + " " + c.environment.join(' ')).toStdString();
        EXPECT_EQ(r.exitCode, c.exitCode) << what << "\n" << r.err.toStdString();
        EXPECT_EQ(r.out, c.out) << what;
        EXPECT_TRUE(r.err.contains(c.err)) << what << "\n" << r.err.toStdString();
    }
}

// On a terminal the status text stands in a line of its own until the next output: whatever comes
// next (a form's address, a warning, an error) first clears it. The address is in the log too.
TEST_F(Dvrun, EveryLineAfterAStatusTextClearsItFirst)
{
    Script("f.html", "<form method=post></form>");
    const QString log = dir.filePath("lauf.log");
    const QString script = Script("st.dvs", "var R : String;\nvar X : Number;\n"
                                            "StatusText(Text := \"Eins\");\nFormShow(File := PROJEKTPFAD + \"/f.html\");\n"
                                            "StatusText(Text := \"Zwei\");\nFormResult(Timeout := 10, Result := R);\n"
                                            "StatusText(Text := \"Drei\");\nLog(\"vier\");\n"
                                            "StatusText(Text := \"Fünf\");\nX := 1 / X;\n");
    const QByteArray out = RunOnTerminal({script, "--log", log});
    const QByteArray clear = "\r\033[K";
    const struct {
        const char* status;
        const char* next;
    } cases[] = {{"Eins", "FormShow: http://127.0.0.1:"}, {"Zwei", "WARN: FormResult: keine Eingabe"},
                 {"Drei", "vier"}, {"F\xc3\xbcnf", "st.dvs:10: Division durch Null"}};
    for (const auto& c : cases) {
        const qsizetype at = out.indexOf(clear + c.status);
        ASSERT_GE(at, 0) << c.status << "\n" << out.toStdString();
        const QByteArray after = out.mid(at + clear.size() + qstrlen(c.status));
        EXPECT_TRUE(after.startsWith(clear)) << c.status << " is followed by: " << after.left(60).toStdString();
        EXPECT_TRUE(after.contains(c.next)) << c.status;
    }
    const QString logged = QString::fromUtf8(ReadFile(log));
    EXPECT_TRUE(logged.contains("LOG FormShow: http://127.0.0.1:")) << logged.toStdString();
    EXPECT_TRUE(logged.contains("STATUS Zwei\nWARN FormResult: keine Eingabe innerhalb von 10 ms")) << logged.toStdString();
}

}  // namespace
}  // namespace dv::test
