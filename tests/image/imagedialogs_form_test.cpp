// The image dialogs as the user meets them: titles and help, controls by name with their captions,
// parameters in and out, and the file dialogs of the choose buttons.
#include "framework/forms/dvform.h"
#include "image/bitmapfile.h"
#include "image/currentimage.h"
#include "image/gui_imagecapture.h"
#include "image/gui_imagechange.h"
#include "image/gui_imageevaluation.h"
#include "image/gui_imageload.h"
#include "image/gui_imagesave.h"
#include "image/testpattern.h"
#include "tests/commands/formdriver.h"
#include "tests/commands/params.h"
#include "tests/support/testhost.h"

#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
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
    void SetUp() override { CurrentImage::replace(*image::TestPattern("bars")); }
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
    image::WriteBitmap(*image::TestPattern("checker"), dir.filePath("soll.bmp"));
    host.Declare("PROJEKTPFAD", g_StringType).Assign(std::make_unique<TStringValue>(dir.path()));
    host.projectPath = dir.path();
    TParamList params = MakeParams({{"Result", "R"}});
    bool referenceShown = false;
    ASSERT_TRUE(EditWith<TDVCmdImageEvaluation>(host, params, "TFormImageEvaluation", [&](QWidget& d) {
        OnModal("OpenDialog", [&](QWidget& w) {
            static_cast<QFileDialog&>(w).selectFile(dir.filePath("soll.bmp"));
            QMetaObject::invokeMethod(&w, "accept");
        });
        Click(d, "ButtonLoad");
        referenceShown = !Find<QLabel>(d, "ImageOught").pixmap().isNull();
        Click(d, "BT_OK");
    }));
    EXPECT_EQ(params.GetString("File"), "\"%PROJEKTPFAD%/soll.bmp\"");
    EXPECT_TRUE(referenceShown);
}

TEST_F(ImageDialogTest, SaveDialogChoosesAnExistingFileWithoutAsking)
{
    image::WriteBitmap(*image::TestPattern("grey"), dir.filePath("alt.bmp"));
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
        OnModal("SaveDialog", [&](QWidget& w) {
            static_cast<QFileDialog&>(w).selectFile(dir.filePath("alt.bmp"));
            QMetaObject::invokeMethod(&w, "accept");
        });
        Click(d, "ButtonSelect");
        Click(d, "BT_OK");
    }));
    EXPECT_EQ(questions, QStringList{});
    EXPECT_EQ(params.GetString("File"), '"' + dir.filePath("alt.bmp") + '"');
}

}  // namespace
}  // namespace dv
