// The dvrun binary as a child process: exit codes, options, reports and --convert.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace {

struct TRun {
    int exitCode;
    QString out;
    QString err;
};

class Dvrun : public testing::Test {
protected:
    QString Script(const QString& name, const QString& text) { return ScriptBytes(name, text.toUtf8()); }
    QString ScriptBytes(const QString& name, const QByteArray& bytes)
    {
        const QString path = dir.filePath(name);
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(bytes);
        return path;
    }
    TRun Run(const QStringList& args)
    {
        QProcess p;
        p.setProgram(DV_BINARY_DIR "/host/dvrun");
        p.setArguments(args);
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove("DISPLAY");
        env.remove("WAYLAND_DISPLAY");
        p.setProcessEnvironment(env);
        p.start();
        p.waitForFinished(30000);
        return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
    }
    QTemporaryDir dir;
};

TEST_F(Dvrun, ExitCodes)
{
    const struct {
        const char* script;
        int exitCode;
    } cases[] = {
        {"Log(1)", 0},
        {"Check(1 = 2, \"falsch\")", 1},
        {"var A : Array of Number\nLog(A[1])", 1},
        {"Log(1 +)", 2},
        {"Unbekannt", 2},
        {"", 0},
    };
    for (const auto& c : cases) {
        const TRun r = Run({Script("s.dvs", c.script)});
        EXPECT_EQ(r.exitCode, c.exitCode) << c.script << "\n" << r.err.toStdString();
    }
    EXPECT_EQ(Run({}).exitCode, 2);
    EXPECT_EQ(Run({"--bogus", Script("s.dvs", "")}).exitCode, 2);
    EXPECT_EQ(Run({dir.filePath("fehlt.dvs")}).exitCode, 2);
    EXPECT_EQ(Run({"a.dvs", "b.dvs"}).exitCode, 2);
    const TRun help = Run({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_TRUE(help.out.contains("--define NAME=WERT"));
}

TEST_F(Dvrun, MessagesNameFileLineAndColumn)
{
    const QString path = Script("fehler.dvs", "var X : Number\nX := 1 * ;\nX := 2 +\n");
    const TRun r = Run({path});
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_TRUE(r.err.contains(path + ":2:10: Ausdruck erwartet bei ';'")) << r.err.toStdString();
    const TRun runtime = Run({Script("lauf.dvs", "var X : Number\n\nX := 1 / X\n")});
    EXPECT_TRUE(runtime.err.contains("lauf.dvs:3: Division durch Null")) << runtime.err.toStdString();
}

TEST_F(Dvrun, DefineProjectLogAndJUnit)
{
    const QString script = Script("p.dvs", "var N : Number = 1\nLog(N * 2)\nLog(PROJEKTPFAD)\nCheck(N = 1, \"N ist 1\")\n");
    const QString junit = dir.filePath("bericht.xml"), log = dir.filePath("lauf.log");
    const TRun r = Run({"--define", "N=21", "--project", "/proj", "--junit", junit, "--log", log, script});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "42\n/proj\n");
    QFile j(junit), l(log);
    ASSERT_TRUE(j.open(QIODevice::ReadOnly));
    const QString xml = QString::fromUtf8(j.readAll());
    EXPECT_TRUE(xml.contains("failures=\"1\""));
    EXPECT_TRUE(xml.contains("p.dvs:4: Prüfung fehlgeschlagen: N ist 1")) << xml.toStdString();
    ASSERT_TRUE(l.open(QIODevice::ReadOnly));
    EXPECT_TRUE(QString::fromUtf8(l.readAll()).contains("LOG 42"));
    EXPECT_EQ(Run({"--define", "Fehlt=1", script}).exitCode, 2);
    EXPECT_EQ(Run({"--define", "N=abc", script}).exitCode, 2);
    EXPECT_EQ(Run({script}).out, "2\n" + QFileInfo(script).absolutePath() + "\n");
}

TEST_F(Dvrun, ListAndConvert)
{
    const TRun list = Run({"--list"});
    EXPECT_EQ(list.exitCode, 0);
    EXPECT_TRUE(list.out.contains("ShowLabor\tprocedure ShowLabor;"));
    // Lines that are no older command form pass through unchanged.
    const QString old = "93:for I := 1 to 3 do\nShowLabor;\n  Log(\"x\")\n";
    const TRun converted = Run({"--convert", Script("alt.dvs", old)});
    EXPECT_EQ(converted.exitCode, 0);
    EXPECT_EQ(converted.out, old);
}

// Inputs that once ended the process with an abort (exit code 134): each is a syntax error with its
// place now, and the process ends normally.
TEST_F(Dvrun, MalformedCharactersAreSyntaxErrors)
{
    const struct {
        const char* script;  // UTF-8
        const char* expected;
    } cases[] = {
        {"@@", "m.dvs:1:1: Unerwartetes Zeichen '@'"},
        {"Log(1)\n@ @ @\nLog(2)", "m.dvs:2:1: Unerwartetes Zeichen '@'"},
        {"Log(\xEF\xBC\x91)", "m.dvs:1:5: Unerwartetes Zeichen '\xEF\xBC\x91'"},  // full-width digit one
        {"Log(1\xD9\xA3)", "m.dvs:1:6: Unerwartetes Zeichen '\xD9\xA3'"},         // Arabic-Indic digit three
        {"Log('Text')", "m.dvs:1:5: Unerwartetes Zeichen '''"},
        {"Log(1e99999)", "m.dvs:1:5: Ungültige Zahl bei '1e99999'"},
        {"var X : Number = 1e-99999", "m.dvs:1:18: Ungültige Zahl"},
    };
    for (const auto& c : cases) {
        const TRun r = Run({Script("m.dvs", QString::fromUtf8(c.script))});
        EXPECT_EQ(r.exitCode, 2) << c.script << "\n" << r.err.toStdString();
        EXPECT_TRUE(r.err.contains(QString::fromUtf8(c.expected))) << c.script << "\n" << r.err.toStdString();
        EXPECT_TRUE(r.out.isEmpty()) << c.script;
    }
}

// A bad character at the start of the line after another error is reported too, not swallowed
// while the reader skips to the next statement.
TEST_F(Dvrun, ABadCharacterAfterAnErrorHasItsOwnMessage)
{
    const TRun r = Run({Script("z.dvs", "Log(1 +)\n@Log(2)\nLog(3)\n")});
    EXPECT_EQ(r.exitCode, 2);
    EXPECT_TRUE(r.err.contains("z.dvs:1:")) << r.err.toStdString();
    EXPECT_TRUE(r.err.contains("z.dvs:2:1: Unerwartetes Zeichen '@'")) << r.err.toStdString();
}

// Scripts written on Windows stations are Windows-1252; a file that is not valid UTF-8 is read so.
TEST_F(Dvrun, AScriptThatIsNotUtf8IsReadAsWindows1252)
{
    const QByteArray script = "var Gr\xF6\xDF" "e : String = \"Gr\xFC\xDF" "e \x80 \x84" "a\x93\"\nLog(Gr\xF6\xDF" "e)\n";
    const TRun r = Run({ScriptBytes("w.dvs", script)});
    EXPECT_EQ(r.exitCode, 0) << r.err.toStdString();
    EXPECT_EQ(r.out, QString::fromUtf8("Grüße € „a“\n"));
    const TRun converted = Run({"--convert", ScriptBytes("w.dvs", script)});
    EXPECT_EQ(converted.exitCode, 0);
    EXPECT_EQ(converted.out, QString::fromUtf8("var Größe : String = \"Grüße € „a“\"\nLog(Größe)\n"));
    // Valid UTF-8 stays UTF-8, even where its bytes would also be Windows-1252 text.
    EXPECT_EQ(Run({Script("u.dvs", QString::fromUtf8("Log(\"Grüße\")"))}).out, QString::fromUtf8("Grüße\n"));
}

}  // namespace
