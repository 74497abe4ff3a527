// The example scripts run end to end through dvrun, and older lines convert to current ones.
#include "tests/support/httpclient.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QUrl>

namespace {

struct TRun { int exitCode; QString out; };

TRun Dvrun(const QStringList& args)
{
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    p.setProcessEnvironment(env);
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(DV_BINARY_DIR "/host/dvrun", args);
    if (!p.waitForFinished(60000)) p.kill();
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput())};
}

QString ReadFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

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
    TRun Run(const QString& script, const QStringList& extra = {})
    {
        return Dvrun(QStringList{dir.filePath(script)} + extra);
    }
    QTemporaryDir dir;
};

TEST_F(Examples, EveryScriptRunsToItsEndWithoutFailedChecks)
{
    struct Row { const char* script; QStringList expectedLines; };
    const Row rows[] = {
        {"main.dvs", {"Mittelwert: 5", "Mittelwert im Sollbereich", "PRÜFLING OK: Mittelwert 5"}},
        {"text.dvs", {"HALLO WELT", "00FF", "255", "HALLO", "10 €", "Alle Umwandlungen fertig"}},
        {"system.dvs", {"system.dvs fertig"}},
        {"scope.dvs", {"scope.dvs fertig"}},
        {"image.dvs", {"Verschoben, Toleranz 16: 100", "image.dvs fertig"}},
    };
    for (const Row& r : rows) {
        const TRun run = Run(r.script);
        EXPECT_EQ(run.exitCode, 0) << r.script << ":\n" << run.out.toStdString();
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
    const TRun run = Run("ipc.dvs", {"--define", "Pipe=" + pipe, "--define", "Port=" + port});
    echo.terminate();
    echo.waitForFinished(5000);
    EXPECT_EQ(run.exitCode, 0) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("Pipe: Hallo Pipe")) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains("TCP: PING")) << run.out.toStdString();
}

// The operator example headless: the question and the file are answered on the command line, the
// HTML form by an HTTP client at the address FormShow prints.
TEST_F(Examples, OperatorAnsweredThroughAnswersAndAnHttpClient)
{
    const QString log = dir.filePath("operator.log");
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    p.setProcessEnvironment(env);
    p.start(DV_BINARY_DIR "/host/dvrun", {dir.filePath("operator.dvs"), "--log", log, "--answer", "MeldungsBox=JA",
                                          "--answer", "OpenSaveDlg=" + dir.filePath("bericht")});
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
    EXPECT_TRUE(dv::test::Http(form.port(), dv::test::GetRequest(form.port(), path)).body.contains("name=\"Pruefer\""));
    EXPECT_EQ(dv::test::Http(form.port(), dv::test::PostRequest(form.port(), path, "Pruefer=Erika+Muster&Seriennummer=SN-42")).status,
              200);
    ASSERT_TRUE(p.waitForFinished(30000));
    out += p.readAllStandardOutput();
    EXPECT_EQ(p.exitCode(), 0) << out.toStdString() << p.readAllStandardError().toStdString();
    const QStringList lines = QString::fromUtf8(out).split('\n');
    for (const QString& expected : QStringList{"Bericht: " + dir.filePath("bericht.csv"), "Felder: Pruefer,Seriennummer",
                                               "Prüfer Erika Muster, Seriennummer SN-42"}) {
        EXPECT_TRUE(lines.contains(expected)) << "no line \"" << expected.toStdString() << "\" in\n" << out.toStdString();
    }
    EXPECT_TRUE(ReadFile(log).contains("STATUS Warte auf den Prüfer"));

    const TRun unanswered = Run("operator.dvs");
    EXPECT_EQ(unanswered.exitCode, 1);
    EXPECT_TRUE(unanswered.out.contains("dvrun --answer MeldungsBox=")) << unanswered.out.toStdString();
}

// The older lines of every command convert to their current form, and the converted script runs
// with what each older line meant, in a folder with the files it names.
TEST(OlderLines, ConvertToTheCurrentFormOfEachCommandAndRun)
{
    const TRun converted = Dvrun({"--convert", DV_TEST_DATA_DIR "/examples/older_lines.dvs"});
    EXPECT_EQ(converted.exitCode, 0);
    EXPECT_EQ(converted.out, ReadFile(DV_TEST_DATA_DIR "/examples/older_lines.expected"));

    QTemporaryDir dir;
    for (const auto& [name, text] : {std::pair{"neu.dvs", converted.out}, {"x.txt", QString("x")}, {"a.ini", QString("[Main]\nName=Wert\n")}}) {
        QFile f(dir.filePath(name));
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(text.toUtf8());
    }
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    p.setProcessEnvironment(env);
    p.setWorkingDirectory(dir.path());  // the older lines name their files relative to it
    p.start(DV_BINARY_DIR "/host/dvrun", {"neu.dvs", "--answer", "MeldungsBox=JA", "--answer", "OpenSaveDlg=" + dir.filePath("bericht")});
    ASSERT_TRUE(p.waitForFinished(60000));
    const QString err = QString::fromUtf8(p.readAllStandardError());
    EXPECT_EQ(p.exitCode(), 0) << err.toStdString();
    // HexToInt FF, ROUND 2.5 to even, the length of "Hi", the texts, Exec's return code, the file
    // that exists, the INI value, the chosen file.
    const QString expected = "255\n2\n2\nHallo Welt\nohne Schrift\n0\nTrue\nWert\n" + dir.filePath("bericht.csv") + "\nbleibt wie es ist\n";
    EXPECT_EQ(QString::fromUtf8(p.readAllStandardOutput()), expected) << err.toStdString();
}

}  // namespace
