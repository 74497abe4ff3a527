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
    QString Script(const QString& name, const QString& text)
    {
        const QString path = dir.filePath(name);
        QFile f(path);
        f.open(QIODevice::WriteOnly);
        f.write(text.toUtf8());
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

// Converting changes no script that is already in the current form.
TEST_F(Dvrun, ConvertLeavesCurrentScriptsAlone)
{
    QStringList scripts;
    for (const char* folder : {DV_TEST_DATA_DIR "/../examples", DV_TEST_DATA_DIR "/host/scripts"}) {
        for (const QFileInfo& f : QDir(folder).entryInfoList({"*.dvs"}, QDir::Files)) scripts << f.filePath();
    }
    ASSERT_GT(scripts.size(), 5);
    for (const QString& path : scripts) {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        const TRun converted = Run({"--convert", path});
        EXPECT_EQ(converted.exitCode, 0) << path.toStdString();
        EXPECT_EQ(converted.out.toUtf8(), f.readAll()) << path.toStdString();
    }
}

// Older system lines with paths (slashes, backslashes, blanks, quotes) become lines that run on
// the files they named.
TEST_F(Dvrun, ConvertedSystemLinesWithPathsRun)
{
    const QString d = dir.path();
    for (const char* name : {"a b.txt", "back\\slash.txt", "say \"hi\".txt"}) Script(name, "x");
    ASSERT_TRUE(QDir(d).mkpath("conf dir") && QDir(d).mkpath("work dir"));
    Script("conf dir/a.ini", "[Main]\nName=Wert\n");
    const QString prog = Script("prog.sh", "#!/bin/sh\npwd > wo.txt\necho \"$1\" >> wo.txt\n");
    QFile::setPermissions(prog, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    const QString older = "var N, R : Misc\n"
                          "FILEEXIST(" + d + "/a b.txt):N;\nLog(N)\n"
                          "FILEEXIST(" + d + "/back\\slash.txt):N; // Rückstrich\nLog(N)\n"
                          "FILEEXIST(" + d + "/say \"hi\".txt):N;\nLog(N)\n"
                          "FILEEXIST(\"" + d + "/a b.txt\"):N;\nLog(N)\n"
                          "FILEEXIST(" + d + "/fehlt.txt):N;\nLog(N)\n"
                          "IniFiles_ReadString(Filename:" + d + "/conf dir/a.ini,Sec:Main,Id:Name,Value:,Result:R,);\nLog(R)\n"
                          "Exec(" + prog + ",Param:eins,Pfad:" + d + "/work dir,Result:N,TimeOut:5,V:False);\nLog(N)\n";
    const TRun converted = Run({"--convert", Script("alt.dvs", older)});
    ASSERT_EQ(converted.exitCode, 0);
    EXPECT_TRUE(converted.err.isEmpty()) << converted.err.toStdString();
    EXPECT_TRUE(converted.out.contains("); // Rückstrich\n")) << converted.out.toStdString();
    const TRun run = Run({Script("neu.dvs", converted.out)});
    EXPECT_EQ(run.exitCode, 0) << converted.out.toStdString() << run.err.toStdString();
    EXPECT_EQ(run.out, "True\nTrue\nTrue\nTrue\nFalse\nWert\n0\n") << converted.out.toStdString();
    QFile where(d + "/work dir/wo.txt");
    ASSERT_TRUE(where.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(where.readAll()), d + "/work dir\neins\n");
}

TEST_F(Dvrun, ConvertWarnsOfLinesItKeeps)
{
    const QString older = "var A : Array of Number\nHexToInt(IN:FF,OUT:A[1]):0;\n";
    const TRun converted = Run({"--convert", Script("alt.dvs", older)});
    EXPECT_EQ(converted.exitCode, 0);
    EXPECT_TRUE(converted.out.startsWith("var A : Array of Number\nHexToInt(IN:FF,OUT:A[1]):0; // nicht umgesetzt: "))
        << converted.out.toStdString();
    EXPECT_TRUE(converted.err.startsWith("dvrun: Zeile 2: nicht umgesetzt: ")) << converted.err.toStdString();
}

}  // namespace
