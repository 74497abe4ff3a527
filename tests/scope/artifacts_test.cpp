// dvrun --artifacts without a display: the scope example leaves one picture per shown scope, each
// image comparison a three-panel picture; the JUnit report attaches each and the log names each.
// A folder name that is none is refused, a camera that is not there ends the run.
#include "tests/scope/testio.h"

#include <QDir>
#include <QImage>

#include <gtest/gtest.h>

namespace dv {
namespace {

using testio::Dvrun;
using testio::TDvrun;

TEST(ScopeArtifacts, ExampleLeavesOnePicturePerShownScopeAndTheReportNamesThem)
{
    QTemporaryDir dir;
    const QString artifacts = dir.filePath("bilder");
    const TDvrun run = Dvrun({"--artifacts", artifacts, "--junit", dir.filePath("report.xml"), "--log", dir.filePath("run.log"),
                              DV_TEST_DATA_DIR "/../examples/scope.dvs"});
    ASSERT_EQ(run.exitCode, 0) << run.out.toStdString();

    // Three of the example's calls leave the scope shown; the others hide it.
    const QStringList pictures = QDir(artifacts).entryList({"*.png"}, QDir::Files, QDir::Name);
    ASSERT_EQ(pictures, (QStringList{"scope-001.png", "scope-002.png", "scope-003.png"}));
    const QString report = testio::ReadText(dir.filePath("report.xml"));
    const QString log = testio::ReadText(dir.filePath("run.log"));
    qsizetype last = -1;
    for (const QString& name : pictures) {
        const QString path = QDir(artifacts).absoluteFilePath(name);
        EXPECT_FALSE(QImage(path).isNull()) << name.toStdString();
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
    const QString file = dir.filePath("datei.txt"), script = dir.filePath("s.dvs");
    ASSERT_TRUE(testio::WriteFile(file, {}) && testio::WriteFile(script, "Log(\"lief\");\n"));
    for (const QString& name : {QString(), file}) {
        const TDvrun run = Dvrun({"--artifacts", name, script}, true);
        EXPECT_EQ(run.exitCode, 2) << name.toStdString();
        EXPECT_TRUE(run.out.isEmpty());
        EXPECT_TRUE(run.err.startsWith("dvrun: --artifacts erwartet einen Ordner, nicht \"" + name + "\"\n")) << name.toStdString();
    }
}

TEST(ImageScriptTest, EveryComparisonLeavesAThreePanelPictureAttachedToTheReport)
{
    QTemporaryDir dir;
    const QString script = dir.filePath("bild.dvs");
    ASSERT_TRUE(testio::WriteFile(script, R"(var E : Number;
ImageCapture(Device := "pattern:checker", Exposure := 0, WhiteBalance := 0);
ImageSave(File := PROJEKTPFAD + "/ref.bmp");
ImageCapture(Device := "pattern:checker@2,1", Exposure := 0, WhiteBalance := 0);
ImageEval(Result := E, File := PROJEKTPFAD + "/ref.bmp", Displacement := 4);
ImageEval(Result := E, File := PROJEKTPFAD + "/ref.bmp", Rect := [0, 0, 100, 100]);
ImageEval(Result := E, File := "", Coverage := True);
)"));
    const QString artifacts = dir.filePath("bilder");
    const TDvrun run = Dvrun({"--artifacts", artifacts, "--junit", dir.filePath("j.xml"), script});
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
    const QString report = testio::ReadText(dir.filePath("j.xml"));
    EXPECT_TRUE(report.contains("<system-out>[[ATTACHMENT|" + artifacts + "/imageeval-001.png]]\n[[ATTACHMENT|" + artifacts +
                                "/imageeval-002.png]]"))
        << report.toStdString();
}

TEST(ImageScriptTest, AMissingCameraEndsTheRunNamingTheCamerasThereAre)
{
    QTemporaryDir dir;
    const QString script = dir.filePath("bild.dvs");
    ASSERT_TRUE(testio::WriteFile(script, "ImageCapture(Device := \"Keine solche Kamera\", Exposure := 0, WhiteBalance := 0);\n"));
    const TDvrun run = Dvrun({script});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.out.contains("bild.dvs:1: ImageCapture: Die Kamera \"Keine solche Kamera\" gibt es nicht. Vorhandene Kameras: "))
        << run.out.toStdString();
}

}  // namespace
}  // namespace dv
