#include "image/gui_imagechange_form.h"

#include "framework/forms/formbuilder.h"
#include "framework/translate.h"
#include "image/camera.h"
#include "image/currentimage.h"
#include "image/imagepicker_form.h"
#include "image/testpattern.h"

#include <QBoxLayout>

namespace dv {

TFormImageChange::TFormImageChange(TDVCmdImageChange& command)
    : TBoundForm(command, QStringLiteral("TFormImageChange"), _("Bild Ändern"), 111)
{
    preview_ = new TImagePreview(QStringLiteral("ImageIs"), this);
    Body()->addWidget(preview_);
    TFormBuilder form(this, Body());
    form.Edit(QStringLiteral("DVEdit_Brightness"), _("&Helligkeit (Prozent, linear)"));
    form.Edit(QStringLiteral("DVEdit_Rect"), _("&Bereich"));
    form.Check(QStringLiteral("DVCheckBox_GreyScale"), _("&Graustufen"));
    AttachVariableEditors();
}

void TFormImageChange::LoadFields()
{
    TBoundForm::LoadFields();
    preview_->ShowImage(CurrentImage::snapshot());
}

TFormImageCapture::TFormImageCapture(TDVCmdImageCapture& command)
    : TBoundForm(command, QStringLiteral("TFormImageCapture"), _("Bild Aufnehmen"), 110)
{
    preview_ = new TImagePreview(QStringLiteral("ImageIs"), this);
    Body()->addWidget(preview_);
    QStringList devices{QString()};
    for (const QString& name : image::TestPatternNames()) devices << QStringLiteral("pattern:") + name;
    devices << image::CameraNames();
    TFormBuilder form(this, Body());
    form.Combo(QStringLiteral("DVEdit_Device"), _("&Kamera"), devices);
    form.Edit(QStringLiteral("DVEdit_Exposure"), _("&Belichtungszeit (ms, 0 = automatisch)"));
    form.Edit(QStringLiteral("DVEdit_WhiteBalance"), _("&Weißabgleich (K, 0 = automatisch)"));
    AttachVariableEditors();
}

void TFormImageCapture::LoadFields()
{
    TBoundForm::LoadFields();
    preview_->ShowImage(CurrentImage::snapshot());
}

}  // namespace dv
