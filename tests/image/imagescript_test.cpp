// Image commands through the real dvrun: the pictures of comparisons with --artifacts and the
// JUnit attachments, and a camera that is not there.
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QImage>
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
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(DV_BINARY_DIR "/host/dvrun", args);
    if (!p.waitForFinished(60000)) p.kill();
    return {p.exitCode(), QString::fromUtf8(p.readAll())};
}

QString WriteScript(const QTemporaryDir& dir, const QString& text)
{
    const QString path = dir.filePath("bild.dvs");
    QFile f(path);
    f.open(QIODevice::WriteOnly);
    f.write(text.toUtf8());
    return path;
}

TEST(ImageScriptTest, EveryComparisonLeavesAThreePanelPictureAttachedToTheReport)
{
    QTemporaryDir dir;
    const QString script = WriteScript(dir, R"(var E : Number;
ImageCapture(Device := "pattern:checker", Exposure := 0, WhiteBalance := 0);
ImageSave(File := PROJEKTPFAD + "/ref.bmp");
ImageCapture(Device := "pattern:checker@2,1", Exposure := 0, WhiteBalance := 0);
ImageEval(Result := E, File := PROJEKTPFAD + "/ref.bmp", Displacement := 4);
ImageEval(Result := E, File := PROJEKTPFAD + "/ref.bmp", Rect := [0, 0, 100, 100]);
ImageEval(Result := E, File := "", Coverage := True);
)");
    const QString artifacts = dir.filePath("bilder");
    const TRun run = Dvrun({"--artifacts", artifacts, "--junit", dir.filePath("j.xml"), script});
    ASSERT_EQ(run.exitCode, 0) << run.out.toStdString();
    // Two comparisons, two pictures; coverage compares nothing.
    EXPECT_EQ(QDir(artifacts).entryList(QDir::Files), (QStringList{"imageeval-001.png", "imageeval-002.png"}));
    const QImage picture(artifacts + "/imageeval-001.png");
    EXPECT_GE(picture.width(), 3 * 640);
    EXPECT_EQ(picture.height(), 480);
    // The middle panel is the current image moved back by the offset found: it matches the
    // reference, so the heat map is black away from the border that the move uncovered.
    EXPECT_EQ(qRed(picture.pixel(2 * 640 + 16 + 320, 240)), 0);
    EXPECT_TRUE(run.out.contains(artifacts + "/imageeval-002.png")) << run.out.toStdString();
    QFile junit(dir.filePath("j.xml"));
    ASSERT_TRUE(junit.open(QIODevice::ReadOnly));
    const QString report = QString::fromUtf8(junit.readAll());
    EXPECT_TRUE(report.contains("<system-out>[[ATTACHMENT|" + artifacts + "/imageeval-001.png]]\n[[ATTACHMENT|" + artifacts +
                                "/imageeval-002.png]]"))
        << report.toStdString();
}

TEST(ImageScriptTest, AMissingCameraEndsTheRunNamingTheCamerasThereAre)
{
    QTemporaryDir dir;
    const QString script = WriteScript(dir, "ImageCapture(Device := \"Keine solche Kamera\", Exposure := 0, WhiteBalance := 0);\n");
    const TRun run = Dvrun({script});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.out.contains("bild.dvs:1: ImageCapture: Die Kamera \"Keine solche Kamera\" gibt es nicht. Vorhandene Kameras: "))
        << run.out.toStdString();
}

}  // namespace
