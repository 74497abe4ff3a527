#include "image/gui_imageload_form.h"

#include "framework/exceptions.h"
#include "framework/services.h"
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

TFormImageLoad::TFormImageLoad(TDVCmdImageLoad& command)
    : TBoundForm(command, QStringLiteral("TFormImageLoad"), _("Bild Laden"), 109)
{
    preview_ = new TImagePreview(QStringLiteral("ImageIs"), this);
    Body()->addWidget(preview_);
    auto* edit = new QLineEdit(this);
    edit->setObjectName(QStringLiteral("DVEdit_File"));
    auto* choose = new QPushButton(_("Ö&ffnen"), this);
    choose->setObjectName(QStringLiteral("ButtonLoad"));
    choose->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->addWidget(edit);
    row->addWidget(choose);
    auto* rows = new QFormLayout;
    rows->addRow(_("&Dateiname"), row);
    Body()->addLayout(rows);
    connect(choose, &QPushButton::clicked, this, [this] { Choose(); });
    AttachVariableEditors();
}

void TFormImageLoad::LoadFields()
{
    TBoundForm::LoadFields();
    preview_->ShowImage(CurrentImage::snapshot());
}

void TFormImageLoad::Choose()
{
    const QString path = ChooseBitmapFile(this, TBitmapChoice::Open);
    if (path.isEmpty()) return;
    findChild<QLineEdit*>(QStringLiteral("DVEdit_File"))->setText(image::PortableFileText(path, image::ProjectFolderVariable()));
    try {
        CurrentImage::replace(image::ReadBitmap(path));
    } catch (const TDravikException& e) {
        QMessageBox::warning(this, windowTitle(), e.Message());
    }
    preview_->ShowImage(CurrentImage::snapshot());
}

}  // namespace dv
