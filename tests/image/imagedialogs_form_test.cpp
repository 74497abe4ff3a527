// The image dialogs as the user meets them: titles and help, controls by name with their captions,
// parameters in and out, the file dialogs of the choose buttons with the project folder written as
// its placeholder, and the evaluation's frame drawn from the Rect text and with the mouse.
#include "framework/forms/dvform.h"
#include "image/bitmapfile.h"
#include "image/currentimage.h"
#include "image/gui_imagecapture.h"
#include "image/gui_imagechange.h"
#include "image/gui_imageevaluation.h"
#include "image/gui_imageload.h"
#include "image/gui_imagesave.h"
#include "image/selectionview_form.h"
#include "image/testpattern.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/scope/formcheck.h"
#include "tests/support/testhost.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QRubberBand>
#include <QTabWidget>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <vector>

namespace dv {
namespace {

using namespace test;

// What a control says: a button its text, any other control the label whose mnemonic leads to it.
QString CaptionOf(QWidget& dialog, const QString& name)
{
    auto* control = dialog.findChild<QWidget*>(name);
    if (!control) return QStringLiteral("(no control)");
    if (auto* button = qobject_cast<QAbstractButton*>(control)) return button->text();
    for (QLabel* label : dialog.findChildren<QLabel*>()) {
        if (label->buddy() == control) return label->text();
    }
    return QStringLiteral("(no label)");
}

// Opens command's dialog on params, runs act on it; act must close it.
template <class Command>
bool EditWith(TTestHost& host, TParamList& params, const char* formName, std::function<void(QWidget&)> act)
{
    Command command(&host);
    OnModal(formName, std::move(act));
    return command.Edit(params);
}

class ImageDialogTest : public testing::Test {
protected:
    void SetUp() override
    {
        CurrentImage::replace(*image::TestPattern("bars"));
        image::WriteBitmap(*image::TestPattern("checker"), dir.filePath("checker.bmp"));
    }
    void DeclareProjectFolder()
    {
        host.Declare("PROJEKTPFAD", g_StringType).Assign(std::make_unique<TStringValue>(dir.path()));
    }
    // Chooses file in the next file dialog of that name; openedIn, where given, learns the folder
    // it opened in.
    static void ChooseInFileDialog(const char* dialogName, const QString& file, QString* openedIn = nullptr)
    {
        OnModal(dialogName, [=](QWidget& w) {
            auto& dialog = static_cast<QFileDialog&>(w);
            if (openedIn) *openedIn = dialog.directory().absolutePath();
            dialog.selectFile(file);
            QMetaObject::invokeMethod(&dialog, "accept");
        });
    }
    // The evaluation of the current image against checker.bmp in the given area.
    TParamList Evaluation(const char* rect)
    {
        TParamList params = MakeParams({{"Result", "R"}, {"Rect", rect}});
        params.AddString("File", '"' + dir.filePath("checker.bmp") + '"');
        return params;
    }
    QTemporaryDir dir;
    TTestHost host;
};

TEST_F(ImageDialogTest, EveryDialogHasItsTitleHelpAndCaptions)
{
    using TCaptions = std::vector<std::pair<QString, QString>>;
    struct Row {
        const char* form;
        std::function<void(TTestHost&, std::function<void(QWidget&)>)> open;
        QString title;
        int help;
        QString helpButton;
        TCaptions captions;  // control -> caption; a caption "" only asks that the control is there
    };
    const auto opener = [](auto* commandType, const char* form) {
        using Command = std::remove_pointer_t<decltype(commandType)>;
        return [form](TTestHost& host, std::function<void(QWidget&)> act) {
            TParamList params;
            EditWith<Command>(host, params, form, std::move(act));
        };
    };
    const TCaptions common{{"BT_OK", "OK"}, {"BT_Cancel", "Abbrechen"}, {"ImageIs", ""}};
    const Row rows[] = {
        {"TFormImageLoad", opener((TDVCmdImageLoad*)nullptr, "TFormImageLoad"), "Bild Laden", 109, "DVHelpButton",
         {{"DVEdit_File", "&Dateiname"}, {"ButtonLoad", "Ö&ffnen"}}},
        {"TFormImageSave", opener((TDVCmdImageSave*)nullptr, "TFormImageSave"), "Bild Speichern", 113, "DVHelpButton",
         {{"DVEdit_File", "&Dateiname"}, {"ButtonSelect", "Aus&wählen"}, {"BT_Test", "Test"}}},
        {"TFormImageEvaluation", opener((TDVCmdImageEvaluation*)nullptr, "TFormImageEvaluation"), "Bild Auswerten", 112,
         "DVHelpButton1",
         {{"DVEdit_File", "&Dateiname Vergleichsbild"}, {"ButtonLoad", "Ö&ffnen"}, {"DVEdit_Rect", "&Bereich"},
          {"DVEdit_Displacement", "&Positionstoleranz"}, {"UpDown1", ""}, {"DVEdit_Result", "&Ergebnis-Variable"},
          {"DVRadioButton_Compare", "&Vergleich"}, {"DVRadioButton_CompareMax", "&Vergleich (Max)"},
          {"DVRadioButton_Coverage", "&Abdeckung"}, {"PageControl1", ""}, {"ImageOught", ""}, {"ShapeSelection", ""}}},
        {"TFormImageChange", opener((TDVCmdImageChange*)nullptr, "TFormImageChange"), "Bild Ändern", 111, "DVHelpButton",
         {{"DVEdit_Brightness", "&Helligkeit (Prozent, linear)"}, {"DVEdit_Rect", "&Bereich"},
          {"DVCheckBox_GreyScale", "&Graustufen"}}},
        {"TFormImageCapture", opener((TDVCmdImageCapture*)nullptr, "TFormImageCapture"), "Bild Aufnehmen", 110,
         "DVHelpButton",
         {{"DVEdit_Device", "&Kamera"}, {"DVEdit_Exposure", "&Belichtungszeit (ms, 0 = automatisch)"},
          {"DVEdit_WhiteBalance", "&Weißabgleich (K, 0 = automatisch)"}}},
    };
    for (const Row& r : rows) {
        QString title;
        int help = -1;
        QString helpButton;
        TCaptions captions;
        r.open(host, [&](QWidget& d) {
            title = d.windowTitle();
            if (auto* button = d.findChild<TDVHelpButton*>()) {
                help = button->HelpContext();
                helpButton = button->objectName();
            }
            for (const auto& [name, caption] : common) captions.emplace_back(name, d.findChild<QWidget*>(name) ? caption : "(no control)");
            for (const auto& [name, caption] : r.captions) {
                const QString found = CaptionOf(d, name);
                captions.emplace_back(name, caption.isEmpty() && found != "(no control)" ? QString() : found);
            }
            Click(d, "BT_Cancel");
        });
        EXPECT_EQ(title, r.title) << r.form;
        EXPECT_EQ(help, r.help) << r.form;
        EXPECT_EQ(helpButton, r.helpButton) << r.form;
        TCaptions wanted = common;
        wanted.insert(wanted.end(), r.captions.begin(), r.captions.end());
        EXPECT_EQ(captions, wanted) << r.form;
    }
}

TEST_F(ImageDialogTest, ChangeDialogBindsItsParametersBothWays)
{
    TParamList params = MakeParams({{"Brightness", "30"}, {"Rect", "[1, 2, 3, 4]"}, {"GreyScale", "True"}});
    QStringList shown;
    bool greyShown = false;
    ASSERT_TRUE(EditWith<TDVCmdImageChange>(host, params, "TFormImageChange", [&](QWidget& d) {
        shown << Find<QLineEdit>(d, "DVEdit_Brightness").text() << Find<QLineEdit>(d, "DVEdit_Rect").text();
        greyShown = Find<QCheckBox>(d, "DVCheckBox_GreyScale").isChecked();
        Type(d, "DVEdit_Brightness", "45.5");
        Type(d, "DVEdit_Rect", "[5, 6, 7, 8]");
        Click(d, "DVCheckBox_GreyScale");
        Click(d, "BT_OK");
    }));
    EXPECT_EQ(shown, (QStringList{"30", "[1, 2, 3, 4]"}));
    EXPECT_TRUE(greyShown);
    EXPECT_EQ(params.GetString("Brightness"), "45.5");
    EXPECT_EQ(params.GetString("Rect"), "[5, 6, 7, 8]");
    EXPECT_EQ(params.GetString("GreyScale"), "False");
}

TEST_F(ImageDialogTest, CaptureDialogOffersThePatternsAndBindsItsParametersBothWays)
{
    TParamList params = MakeParams({{"Device", "pattern:grey"}, {"Exposure", "20"}, {"WhiteBalance", "0"}});
    QString deviceShown;
    QStringList offered;
    ASSERT_TRUE(EditWith<TDVCmdImageCapture>(host, params, "TFormImageCapture", [&](QWidget& d) {
        auto& device = Find<QComboBox>(d, "DVEdit_Device");
        deviceShown = device.currentText();
        for (int i = 0; i < device.count(); ++i) offered << device.itemText(i);
        device.setEditText("file:%PROJEKTPFAD%/soll.bmp");
        Type(d, "DVEdit_Exposure", "7");
        Type(d, "DVEdit_WhiteBalance", "6500");
        Click(d, "BT_OK");
    }));
    EXPECT_EQ(deviceShown, "pattern:grey");
    // The default camera first, then the test pictures; cameras of this machine may follow.
    EXPECT_EQ(offered.mid(0, 4), (QStringList{"", "pattern:bars", "pattern:grey", "pattern:checker"}));
    EXPECT_EQ(params.GetString("Device"), "file:%PROJEKTPFAD%/soll.bmp");
    EXPECT_EQ(params.GetString("Exposure"), "7");
    EXPECT_EQ(params.GetString("WhiteBalance"), "6500");
}

TEST_F(ImageDialogTest, EvaluationChooseButtonWritesThePortableFileAndShowsTheReference)
{
    DeclareProjectFolder();
    host.projectPath = dir.path();
    TParamList params = MakeParams({{"Result", "R"}});
    bool referenceShown = false;
    ASSERT_TRUE(EditWith<TDVCmdImageEvaluation>(host, params, "TFormImageEvaluation", [&](QWidget& d) {
        ChooseInFileDialog("OpenDialog", dir.filePath("checker.bmp"));
        Click(d, "ButtonLoad");
        referenceShown = !Find<QLabel>(d, "ImageOught").pixmap().isNull();
        Click(d, "BT_OK");
    }));
    EXPECT_EQ(params.GetString("File"), "\"%PROJEKTPFAD%/checker.bmp\"");
    EXPECT_TRUE(referenceShown);
}

TEST_F(ImageDialogTest, LoadDialogChoosesPortablyAndKeepsTheImageWhenCancelled)
{
    CurrentImage::replace({});
    DeclareProjectFolder();
    TParamList params = MakeParams({{"File", "\"alt.bmp\""}});
    QString openedIn;
    QString edited;
    bool previewShown = false;
    EXPECT_FALSE(EditWith<TDVCmdImageLoad>(host, params, "TFormImageLoad", [&](QWidget& d) {
        ChooseInFileDialog("OpenDialog", dir.filePath("checker.bmp"), &openedIn);
        Click(d, "ButtonLoad");
        edited = Find<QLineEdit>(d, "DVEdit_File").text();
        previewShown = !Find<QLabel>(d, "ImageIs").pixmap().isNull();
        Click(d, "BT_Cancel");
    }));
    EXPECT_EQ(openedIn, QFileInfo(dir.path()).absoluteFilePath());
    EXPECT_EQ(edited, "\"%PROJEKTPFAD%/checker.bmp\"");
    EXPECT_TRUE(previewShown);
    EXPECT_EQ(params.GetString("File"), "\"alt.bmp\"");            // cancelled: the list as it was
    EXPECT_EQ(CurrentImage::snapshot().size(), QSize(640, 480));  // but the chosen picture is loaded
}

TEST_F(ImageDialogTest, SaveDialogWithoutProjectVariableOpensInItsDefaultFolder)
{
    TParamList params;
    QString openedIn;
    QString outcome;
    EXPECT_TRUE(EditWith<TDVCmdImageSave>(host, params, "TFormImageSave", [&](QWidget& d) {
        ChooseInFileDialog("SaveDialog", dir.filePath("neu.bmp"), &openedIn);
        Click(d, "ButtonSelect");
        OnModal("MSG_TestResult", [&](QWidget& box) {
            outcome = static_cast<QMessageBox&>(box).text();
            static_cast<QMessageBox&>(box).accept();
        });
        Click(d, "BT_Test");
        Click(d, "BT_OK");
    }));
    EXPECT_NE(openedIn, QFileInfo(dir.path()).absoluteFilePath());
    EXPECT_EQ(params.GetString("File"), '"' + dir.filePath("neu.bmp") + '"');
    EXPECT_EQ(outcome, "Ergebnis = gespeichert");
    EXPECT_EQ(image::ReadBitmap(dir.filePath("neu.bmp")).size(), QSize(640, 480));
}

TEST_F(ImageDialogTest, SaveDialogChoosesAnExistingFileWithoutAsking)
{
    // Should a question come up, it is answered Yes, and noted.
    QStringList questions;
    QTimer watch;
    watch.setInterval(5);
    QObject::connect(&watch, &QTimer::timeout, [&] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible()) return;
        questions << box->text();
        if (QAbstractButton* yes = box->button(QMessageBox::Yes)) yes->click();
        else box->accept();
    });
    watch.start();
    TParamList params;
    ASSERT_TRUE(EditWith<TDVCmdImageSave>(host, params, "TFormImageSave", [&](QWidget& d) {
        ChooseInFileDialog("SaveDialog", dir.filePath("checker.bmp"));
        Click(d, "ButtonSelect");
        Click(d, "BT_OK");
    }));
    EXPECT_EQ(questions, QStringList{});
    EXPECT_EQ(params.GetString("File"), '"' + dir.filePath("checker.bmp") + '"');
}

TEST_F(ImageDialogTest, EvaluationFrameFollowsTheRectTextAndTheMouse)
{
    TParamList params = Evaluation("{64}{32}{128}{96}");
    params.AddString("Displacement", "4");
    QStringList pages;
    QRect frameFromText;
    double factor = 0;
    ASSERT_TRUE(EditWith<TDVCmdImageEvaluation>(host, params, "TFormImageEvaluation", [&](QWidget& d) {
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
    }));
    EXPECT_EQ(pages, (QStringList{"Interner Puffer", "Vergleichsbild"}));
    EXPECT_EQ(factor, 0.75);  // 640 x 480 fitted into the 480 x 360 view
    EXPECT_EQ(frameFromText, QRect(48, 24, 96, 72));
    EXPECT_EQ(params.GetString("Rect"), "[27, 13, 133, 67]");  // view pixels / 0.75, rounded
    EXPECT_EQ(params.GetString("CompareMax"), "True");
    EXPECT_EQ(params.GetString("Compare"), "False");
    EXPECT_EQ(params.GetString("Displacement"), "4");
}

TEST_F(ImageDialogTest, EvaluationClickWithoutDraggingKeepsTheAreaAndItsFrame)
{
    TParamList params = Evaluation("[64, 32, 128, 96]");
    QRect frameAfterClicks;
    bool frameShown = false;
    ASSERT_TRUE(EditWith<TDVCmdImageEvaluation>(host, params, "TFormImageEvaluation", [&](QWidget& d) {
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
    }));
    EXPECT_EQ(params.GetString("Rect"), "[64, 32, 128, 96]");
    EXPECT_TRUE(frameShown);
    EXPECT_EQ(frameAfterClicks, QRect(48, 24, 96, 72));  // the area at the view's scale 0.75
}

}  // namespace
}  // namespace dv
