// The example scripts run end to end through dvrun, and older lines convert to current ones.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTemporaryDir>

namespace {

struct TRun {
    int exitCode;
    QString out;
};

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
    struct Row {
        const char* script;
        QStringList expectedLines;
    };
    const Row rows[] = {
        {"main.dvs", {"Mittelwert: 5", "Mittelwert im Sollbereich", "PRÜFLING OK: Mittelwert 5"}},
        {"text.dvs", {"HALLO WELT", "00FF", "255", "HALLO", "10 €", "Alle Umwandlungen fertig"}},
        {"system.dvs", {"system.dvs fertig"}},
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

TEST(OlderLines, ConvertToTheCurrentFormOfEachCommand)
{
    const TRun run = Dvrun({"--convert", DV_TEST_DATA_DIR "/examples/older_lines.dvs"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out, ReadFile(DV_TEST_DATA_DIR "/examples/older_lines.expected"));
}

}  // namespace
