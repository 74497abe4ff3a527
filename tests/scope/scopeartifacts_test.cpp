// dvrun --artifacts without a display: the example script leaves one picture per shown scope, the
// JUnit report attaches each and the log names each.
#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace {

QString ReadAll(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

TEST(ScopeArtifacts, ExampleLeavesOnePicturePerShownScopeAndTheReportNamesThem)
{
    QTemporaryDir dir;
    const QString artifacts = dir.filePath("bilder");
    QProcess p;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    env.remove("QT_QPA_PLATFORM");
    p.setProcessEnvironment(env);
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(DV_BINARY_DIR "/host/dvrun", {"--artifacts", artifacts, "--junit", dir.filePath("report.xml"), "--log",
                                          dir.filePath("run.log"), DV_TEST_DATA_DIR "/../examples/scope.dvs"});
    ASSERT_TRUE(p.waitForFinished(60000));
    const QString out = QString::fromUtf8(p.readAll());
    ASSERT_EQ(p.exitCode(), 0) << out.toStdString();

    // Three of the example's calls leave the scope shown; the others hide it.
    const QStringList pictures = QDir(artifacts).entryList({"*.png"}, QDir::Files, QDir::Name);
    ASSERT_EQ(pictures, (QStringList{"scope-001.png", "scope-002.png", "scope-003.png"}));
    const QString report = ReadAll(dir.filePath("report.xml"));
    const QString log = ReadAll(dir.filePath("run.log"));
    qsizetype last = -1;
    for (const QString& name : pictures) {
        const QString path = QDir(artifacts).absoluteFilePath(name);
        const QImage image(path);
        EXPECT_FALSE(image.isNull()) << name.toStdString();
        const qsizetype at = report.indexOf("[[ATTACHMENT|" + path + "]]");
        EXPECT_GT(at, last) << report.toStdString();  // in the order they were taken
        last = at;
        EXPECT_TRUE(log.contains(path)) << log.toStdString();
    }
    EXPECT_TRUE(report.contains("<system-out>")) << report.toStdString();
}

// Pictures need a folder: an empty name or an existing file is refused before anything runs.
TEST(ScopeArtifacts, ANameThatIsNoFolderIsRefused)
{
    QTemporaryDir dir;
    const QString file = dir.filePath("datei.txt");
    QFile f(file);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.close();
    const QString script = dir.filePath("s.dvs");
    QFile s(script);
    ASSERT_TRUE(s.open(QIODevice::WriteOnly));
    s.write("Log(\"lief\");\n");
    s.close();
    for (const QString& name : {QString(), file}) {
        QProcess p;
        p.start(DV_BINARY_DIR "/host/dvrun", {"--artifacts", name, script});
        ASSERT_TRUE(p.waitForFinished(30000));
        EXPECT_EQ(p.exitCode(), 2) << name.toStdString();
        EXPECT_TRUE(p.readAllStandardOutput().isEmpty());
        EXPECT_TRUE(QString::fromUtf8(p.readAllStandardError()).startsWith("dvrun: --artifacts erwartet einen Ordner, nicht \"" + name + "\"\n"))
            << name.toStdString();
    }
}

}  // namespace
