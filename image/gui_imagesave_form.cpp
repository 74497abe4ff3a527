#include "image/gui_imagesave_form.h"

#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/translate.h"
#include "image/bitmapfile.h"
#include "image/currentimage.h"
#include "image/imagepicker_form.h"

#include <QBoxLayout>
#include <QFormLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace dv {

TFormImageSave::TFormImageSave(TDVCmdImageSave& command)
    : TBoundForm(command, QStringLiteral("TFormImageSave"), _("Bild Speichern"), 113), command_(command)
{
    preview_ = new TImagePreview(QStringLiteral("ImageIs"), this);
    Body()->addWidget(preview_);
    auto* edit = new QLineEdit(this);
    edit->setObjectName(QStringLiteral("DVEdit_File"));
    auto* choose = new QPushButton(_("Aus&wählen"), this);
    choose->setObjectName(QStringLiteral("ButtonSelect"));
    choose->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->addWidget(edit);
    row->addWidget(choose);
    auto* rows = new QFormLayout;
    rows->addRow(_("&Dateiname"), row);
    Body()->addLayout(rows);
    auto* test = new QPushButton(_("Test"), this);
    test->setObjectName(QStringLiteral("BT_Test"));
    test->setAutoDefault(false);
    ButtonRow()->insertWidget(0, test);
    connect(choose, &QPushButton::clicked, this, [this] { Choose(); });
    connect(test, &QPushButton::clicked, this, [this] { Test(); });
    AttachVariableEditors();
}

void TFormImageSave::LoadFields()
{
    TBoundForm::LoadFields();
    preview_->ShowImage(CurrentImage::snapshot());
}

void TFormImageSave::Choose()
{
    const QString path = ChooseBitmapFile(this, TBitmapChoice::Save);
    if (path.isEmpty()) return;
    findChild<QLineEdit*>(QStringLiteral("DVEdit_File"))->setText(image::PortableFileText(path, image::ProjectFolderVariable()));
}

void TFormImageSave::Test()
{
    // The edit holds the file as a script writes it: a quoted text.
    TParamList params;
    params.AddString(QStringLiteral("File"), StripQuotes(findChild<QLineEdit*>(QStringLiteral("DVEdit_File"))->text()));
    QString outcome = Format(_("Ergebnis = %s"), {_("gespeichert")});
    try {
        command_.Run(params);
    } catch (const TDravikException& e) {
        outcome = e.Message();
    }
    QMessageBox box(QMessageBox::Information, windowTitle(), outcome, QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("MSG_TestResult"));
    box.exec();
}

}  // namespace dv
