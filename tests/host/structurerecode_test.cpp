// dvrun --convert passes the lines of the script structure through their commands' RecodeScript:
// an older script's case branches become runnable, decimal commas in conditions become points.
#include <gtest/gtest.h>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace {

struct TRun {
    int exitCode;
    QString out;
};

TRun Dvrun(const QStringList& args)
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
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput())};
}

QString Write(const QTemporaryDir& dir, const QString& name, const QString& text)
{
    const QString path = dir.filePath(name);
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(text.toUtf8());
    return path;
}

TEST(StructureRecode, OlderCaseBranchesAndDecimalCommasAreConvertedAndTheScriptRuns)
{
    const QStringList older = {
        "var Modus : Number = 3",
        "var Wert : Number = 1",
        "var Text : String = \"a,b\"",
        "//  Auswahl   ",
        "case  Modus  of",
        "  1:",
        "    Text := \"eins\"",
        "  2 :",
        "    Text := \"zwei\"",
        "  3:",
        "    Text := \"drei\"",
        "  631:end case",
        "93:if Wert < 1,5 then",
        "  Log(Text)",
        "911:else",
        "  Log(\"nein\")",
        "912:end if;",
        "if Text = \"a,b\" then",
        "  Log(\"Komma\")",
        "end if",
        "  for I := 1 to 2 do  ",
    };
    QStringList converted = older;
    converted[3] = "//  Auswahl";
    converted[4] = "case Modus of";
    converted[5] = "  select 1:";
    converted[7] = "  select 2 :";
    converted[9] = "  select 3:";
    converted[12] = "93:if Wert < 1.5 then";
    converted[20] = "  for I := 1 to 2 do";
    QTemporaryDir dir;
    for (const QString& eol : {QString("\n"), QString("\r\n")}) {
        const TRun run = Dvrun({"--convert", Write(dir, "alt.dvs", older.join(eol))});
        EXPECT_EQ(run.exitCode, 0);
        EXPECT_EQ(run.out, converted.join(eol)) << run.out.toStdString();
    }
    const QStringList runnable = converted.mid(0, 20);
    EXPECT_EQ(Dvrun({Write(dir, "alt.dvs", older.mid(0, 20).join('\n'))}).exitCode, 2);
    const TRun run = Dvrun({Write(dir, "neu.dvs", runnable.join('\n'))});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, "drei\n");
}

}  // namespace
