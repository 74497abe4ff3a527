// The example scripts run end to end through dvrun, and older lines convert to current ones.
#include "tests/support/httpclient.h"
#include "tests/support/process.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QUrl>

namespace {

using namespace dv::test;

// What a run printed, on stdout and stderr.
QString Printed(const TDvrunRun& run) { return run.out + run.err; }

class Examples : public testing::Test {
protected:
    // The examples run on a copy, since some of them write files next to themselves.
    void SetUp() override
    {
        const QDir source(DV_TEST_DATA_DIR "/../examples");
        for (const QString& name : source.entryList(QDir::Files)) {
            ASSERT_TRUE(QFile::copy(source.filePath(name), dir.filePath(name))) << name.toStdString();
        }
    }
    TDvrunRun Run(const QString& script, const QStringList& extra = {}) { return RunDvrun(QStringList{dir.filePath(script)} + extra); }
    QTemporaryDir dir;
};

TEST_F(Examples, EveryScriptRunsToItsEndWithoutFailedChecks)
{
    const struct { const char* script; QStringList expectedLines; } rows[] = {
        {"main.dvs", {"Mittelwert: 5", "Mittelwert im Sollbereich", "PRÜFLING OK: Mittelwert 5"}},
        {"text.dvs", {"HALLO WELT", "00FF", "255", "HALLO", "10 €", "Alle Umwandlungen fertig"}},
        {"system.dvs", {"system.dvs fertig"}},
        {"scope.dvs", {"scope.dvs fertig"}},
        {"image.dvs", {"Verschoben, Toleranz 16: 100", "image.dvs fertig"}},
    };
    for (const auto& r : rows) {
        const TDvrunRun run = Run(r.script);
        EXPECT_EQ(run.exitCode, 0) << r.script << ":\n" << Printed(run).toStdString();
        const QStringList lines = run.out.split('\n');
        for (const QString& expected : r.expectedLines) {
            EXPECT_TRUE(lines.contains(expected)) << r.script << " printed no line \"" << expected.toStdString() << "\"";
        }
    }
}

TEST_F(Examples, PipeAndTcpAgainstTheEchoServer)
{
    QTcpServer probe;  // a free port for the echo server
    ASSERT_TRUE(probe.listen(QHostAddress::LocalHost, 0));
    const QString port = QString::number(probe.serverPort());
    probe.close();
    const QString pipe = QStringLiteral("dvexample%1").arg(QCoreApplication::applicationPid());

    QProcess echo;
    echo.start(DV_PIPE_ECHO, {"--pipe", pipe, "--tcp", port, "--exit-after", "60"});
    ASSERT_TRUE(echo.waitForReadyRead(10000));
    ASSERT_TRUE(echo.readAllStandardOutput().startsWith("ready"));
    const TDvrunRun run = Run("ipc.dvs", {"--define", "Pipe=" + pipe, "--define", "Port=" + port});
    echo.terminate();
    echo.waitForFinished(5000);
    EXPECT_EQ(run.exitCode, 0) << Printed(run).toStdString();
    EXPECT_TRUE(Printed(run).contains("Pipe: Hallo Pipe")) << Printed(run).toStdString();
    EXPECT_TRUE(Printed(run).contains("TCP: PING")) << Printed(run).toStdString();
}

// The operator example headless: the question and the file are answered on the command line, the
// HTML form by an HTTP client at the address FormShow prints.
TEST_F(Examples, OperatorAnsweredThroughAnswersAndAnHttpClient)
{
    const QString log = dir.filePath("operator.log");
    QProcess p;
    StartDvrun(p, {dir.filePath("operator.dvs"), "--log", log, "--answer", "MeldungsBox=JA", "--answer", "OpenSaveDlg=" + dir.filePath("bericht")});
    QByteArray out;
    QUrl form;
    while (form.isEmpty() && p.waitForReadyRead(30000)) {
        out += p.readAllStandardOutput();
        for (const QByteArray& line : out.split('\n')) {
            if (line.startsWith("FormShow: ")) form = QUrl(QString::fromUtf8(line.mid(10).trimmed()));
        }
    }
    ASSERT_TRUE(form.isValid()) << out.toStdString() << p.readAllStandardError().toStdString();
    const QByteArray path = form.path(QUrl::FullyEncoded).toUtf8();
    EXPECT_TRUE(Http(form.port(), GetRequest(form.port(), path)).body.contains("name=\"Pruefer\""));
    EXPECT_EQ(Http(form.port(), PostRequest(form.port(), path, "Pruefer=Erika+Muster&Seriennummer=SN-42")).status,
              200);
    ASSERT_TRUE(p.waitForFinished(30000));
    out += p.readAllStandardOutput();
    EXPECT_EQ(p.exitCode(), 0) << out.toStdString() << p.readAllStandardError().toStdString();
    const QStringList lines = QString::fromUtf8(out).split('\n');
    for (const QString& expected : QStringList{"Bericht: " + dir.filePath("bericht.csv"), "Felder: Pruefer,Seriennummer",
                                               "Prüfer Erika Muster, Seriennummer SN-42"}) {
        EXPECT_TRUE(lines.contains(expected)) << "no line \"" << expected.toStdString() << "\" in\n" << out.toStdString();
    }
    EXPECT_TRUE(QString::fromUtf8(ReadFile(log)).contains("STATUS Warte auf den Prüfer"));

    const TDvrunRun unanswered = Run("operator.dvs");
    EXPECT_EQ(unanswered.exitCode, 1);
    EXPECT_TRUE(Printed(unanswered).contains("dvrun --answer MeldungsBox=")) << Printed(unanswered).toStdString();
}

// The older lines of every command convert to their current form, and the converted script runs
// with what each older line meant, in a folder with the files it names.
TEST(OlderLines, ConvertToTheCurrentFormOfEachCommandAndRun)
{
    const TDvrunRun converted = RunDvrun({"--convert", DV_TEST_DATA_DIR "/examples/older_lines.dvs"});
    EXPECT_EQ(converted.exitCode, 0);
    EXPECT_EQ(converted.bytes, ReadFile(DV_TEST_DATA_DIR "/examples/older_lines.expected"));

    QTemporaryDir dir;
    WriteFile(dir.filePath("neu.dvs"), converted.bytes);
    WriteFile(dir.filePath("x.txt"), "x");
    WriteFile(dir.filePath("a.ini"), "[Main]\nName=Wert\n");
    // The older lines name their files relative to the current directory.
    const TDvrunRun run = RunDvrun({"neu.dvs", "--answer", "MeldungsBox=JA", "--answer", "OpenSaveDlg=" + dir.filePath("bericht")},
                                   {.workDir = dir.path()});
    EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
    // HexToInt FF, ROUND 2.5 to even, the length of "Hi", the texts, Exec's return code, the file
    // that exists, the INI value, the chosen file.
    const QString expected = "255\n2\n2\nHallo Welt\nohne Schrift\n0\nTrue\nWert\n" + dir.filePath("bericht.csv") + "\nbleibt wie es ist\n";
    EXPECT_EQ(run.out, expected) << run.err.toStdString();
}

}  // namespace
