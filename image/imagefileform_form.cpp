#include "image/imagefileform_form.h"

#include "framework/translate.h"
#include "image/bitmapfile.h"
#include "image/currentimage.h"

#include <QBoxLayout>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace dv {

TImageFileForm::TImageFileForm(TDVThreadRunEdit& command, const QString& formClass, const QString& caption, int helpContext,
                               const QString& chooseName, const QString& chooseCaption, TBitmapChoice choice)
    : TBoundForm(command, formClass, caption, helpContext), choice_(choice)
{
    preview_ = new TImagePreview(QStringLiteral("ImageIs"), this);
    Body()->addWidget(preview_);
    file_ = new QLineEdit(this);
    file_->setObjectName(QStringLiteral("DVEdit_File"));
    auto* choose = new QPushButton(chooseCaption, this);
    choose->setObjectName(chooseName);
    choose->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->addWidget(file_);
    row->addWidget(choose);
    auto* rows = new QFormLayout;
    auto* label = new QLabel(_("&Dateiname"), this);
    label->setBuddy(file_);  // a row of edit and button: the mnemonic leads to the edit
    rows->addRow(label, row);
    Body()->addLayout(rows);
    connect(choose, &QPushButton::clicked, this, [this] { Choose(); });
    AttachVariableEditors();
}

void TImageFileForm::LoadFields()
{
    TBoundForm::LoadFields();
    preview_->ShowImage(CurrentImage::snapshot());
}

void TImageFileForm::Choose()
{
    const QString path = ChooseBitmapFile(this, choice_);
    if (path.isEmpty()) return;
    file_->setText(image::PortableFileText(path, image::ProjectFolderVariable()));
    Chosen(path);
}

}  // namespace dv
