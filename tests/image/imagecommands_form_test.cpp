#include "image/bitmapfile.h"
#include "image/currentimage.h"
#include "image/gui_imageevaluation.h"
#include "image/gui_imageload.h"
#include "image/gui_imagesave.h"
#include "image/selectionview_form.h"
#include "image/testpattern.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QMessageBox>
#include <QRubberBand>
#include <QTabWidget>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace dv {
namespace {

using namespace test;

class ImageFormTest : public testing::Test {
protected:
    void SetUp() override
    {
        CurrentImage::replace({});
        image::WriteBitmap(*image::TestPattern("checker"), dir.filePath("checker.bmp"));
    }
    void DeclareProjectFolder()
    {
        host.Declare("PROJEKTPFAD", g_StringType).Assign(std::make_unique<TStringValue>(dir.path()));
    }
    // Chooses file in the next file dialog of that name and tells in which folder it opened.
    void ChooseInFileDialog(const char* dialogName, const QString& file, QString* openedIn)
    {
        OnModal(dialogName, [=](QWidget& w) {
            auto& dialog = static_cast<QFileDialog&>(w);
            *openedIn = dialog.directory().absolutePath();
            dialog.selectFile(file);
            QMetaObject::invokeMethod(&dialog, "accept");
        });
    }
    QTemporaryDir dir;
    TTestHost host;
};

TEST_F(ImageFormTest, LoadDialogChoosesPortablyAndKeepsTheImageWhenCancelled)
{
    DeclareProjectFolder();
    TDVCmdImageLoad command(&host);
    TParamList params = MakeParams({{"File", "\"alt.bmp\""}});
    QString openedIn;
    QString edited;
    bool previewShown = false;
    OnModal("TFormImageLoad", [&](QWidget& d) {
        ChooseInFileDialog("OpenDialog", dir.filePath("checker.bmp"), &openedIn);
        Click(d, "ButtonLoad");
        edited = Find<QLineEdit>(d, "DVEdit_File").text();
        previewShown = !Find<QLabel>(d, "ImageIs").pixmap().isNull();
        Click(d, "BT_Cancel");
    });
    EXPECT_FALSE(command.Edit(params));
    EXPECT_EQ(openedIn, QFileInfo(dir.path()).absoluteFilePath());
    EXPECT_EQ(edited, "\"%PROJEKTPFAD%/checker.bmp\"");
    EXPECT_TRUE(previewShown);
    EXPECT_EQ(params.GetString("File"), "\"alt.bmp\"");                 // cancelled: the list as it was
    EXPECT_EQ(CurrentImage::snapshot().size(), QSize(640, 480));       // but the chosen picture is loaded
}

TEST_F(ImageFormTest, SaveDialogWithoutProjectVariableOpensInItsDefaultFolder)
{
    TDVCmdImageSave command(&host);
    CurrentImage::replace(*image::TestPattern("bars"));
    TParamList params;
    QString openedIn;
    QString outcome;
    OnModal("TFormImageSave", [&](QWidget& d) {
        ChooseInFileDialog("SaveDialog", dir.filePath("neu.bmp"), &openedIn);
        Click(d, "ButtonSelect");
        OnModal("MSG_TestResult", [&](QWidget& box) {
            outcome = static_cast<QMessageBox&>(box).text();
            static_cast<QMessageBox&>(box).accept();
        });
        Click(d, "BT_Test");
        Click(d, "BT_OK");
    });
    EXPECT_TRUE(command.Edit(params));
    EXPECT_NE(openedIn, QFileInfo(dir.path()).absoluteFilePath());
    EXPECT_EQ(params.GetString("File"), '"' + dir.filePath("neu.bmp") + '"');
    EXPECT_EQ(outcome, "Ergebnis = gespeichert");
    EXPECT_EQ(image::ReadBitmap(dir.filePath("neu.bmp")).size(), QSize(640, 480));
}

TEST_F(ImageFormTest, EvaluationFrameFollowsTheRectTextAndTheMouse)
{
    CurrentImage::replace(*image::TestPattern("bars"));
    TDVCmdImageEvaluation command(&host);
    TParamList params = MakeParams({{"Result", "R"}, {"Rect", "{64}{32}{128}{96}"}, {"Displacement", "4"}});
    params.AddString("File", '"' + dir.filePath("checker.bmp") + '"');
    QStringList pages;
    QRect frameFromText;
    double factor = 0;
    OnModal("TFormImageEvaluation", [&](QWidget& d) {
        auto& tabs = Find<QTabWidget>(d, "PageControl1");
        for (int i = 0; i < tabs.count(); ++i) pages << tabs.tabText(i);
        tabs.setCurrentIndex(1);
        auto& view = Find<TSelectionView>(d, "ImageOught");
        factor = view.Factor();
        frameFromText = Find<QRubberBand>(d, "ShapeSelection").geometry();
        // Drawn with the mouse from view (20, 10) to (120, 60).
        QTest::mousePress(&view, Qt::LeftButton, {}, QPoint(20, 10));
        QTest::mouseMove(&view, QPoint(70, 30));
        QTest::mouseRelease(&view, Qt::LeftButton, {}, QPoint(120, 60));
        Click(d, "DVRadioButton_CompareMax");
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(pages, (QStringList{"Interner Puffer", "Vergleichsbild"}));
    EXPECT_EQ(factor, 0.75);  // 640 x 480 fitted into the 480 x 360 view
    EXPECT_EQ(frameFromText, QRect(48, 24, 96, 72));
    EXPECT_EQ(params.GetString("Rect"), "[27, 13, 133, 67]");  // view pixels / 0.75, rounded
    EXPECT_EQ(params.GetString("CompareMax"), "True");
    EXPECT_EQ(params.GetString("Compare"), "False");
    EXPECT_EQ(params.GetString("Displacement"), "4");
}

TEST_F(ImageFormTest, EvaluationClickWithoutDraggingKeepsTheAreaAndItsFrame)
{
    CurrentImage::replace(*image::TestPattern("bars"));
    TDVCmdImageEvaluation command(&host);
    TParamList params = MakeParams({{"Result", "R"}, {"Rect", "[64, 32, 128, 96]"}});
    params.AddString("File", '"' + dir.filePath("checker.bmp") + '"');
    QRect frameAfterClicks;
    bool frameShown = false;
    OnModal("TFormImageEvaluation", [&](QWidget& d) {
        Find<QTabWidget>(d, "PageControl1").setCurrentIndex(1);
        auto& view = Find<TSelectionView>(d, "ImageOught");
        QTest::mouseClick(&view, Qt::LeftButton, {}, QPoint(200, 150));
        // A hand that shakes by a pixel while clicking has not drawn an area either.
        QTest::mousePress(&view, Qt::LeftButton, {}, QPoint(30, 40));
        QTest::mouseMove(&view, QPoint(31, 40));
        QTest::mouseRelease(&view, Qt::LeftButton, {}, QPoint(31, 41));
        const auto& frame = Find<QRubberBand>(d, "ShapeSelection");
        frameAfterClicks = frame.geometry();
        frameShown = frame.isVisible();
        Click(d, "BT_OK");
    });
    ASSERT_TRUE(command.Edit(params));
    EXPECT_EQ(params.GetString("Rect"), "[64, 32, 128, 96]");
    EXPECT_TRUE(frameShown);
    EXPECT_EQ(frameAfterClicks, QRect(48, 24, 96, 72));  // the area at the view's scale 0.75
}

}  // namespace
}  // namespace dv
