#include "commands/dialogs/gui_opensavedlg_form.h"

#include "framework/catalogue.h"
#include "framework/forms/formbuilder.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QLineEdit>
#include <QRadioButton>

namespace dv {

TFRM_OpenSave::TFRM_OpenSave(TDVCmdOpenSave& command)
    : TCommandForm(command, QStringLiteral("TFRM_OpenSave"), _("Open&Save Dialog"),
                   FindCommandClass(QStringLiteral("TDVCmdOpenSave"))->helpContext)
{
    TFormBuilder form(this, Body());
    QButtonGroup* kind = form.Radios(_("Dialog"), {QStringLiteral("RB_OpenDialog"), QStringLiteral("RB_SaveDialog")},
                                     {_("Open Dialog"), _("Save Dialog")});
    open_ = static_cast<QRadioButton*>(kind->button(0));
    save_ = static_cast<QRadioButton*>(kind->button(1));
    fileName_ = form.Edit(QStringLiteral("Edit_Filename"), _("Filename / Result:"));
    initDir_ = form.Edit(QStringLiteral("Edit_InitDir"), _("Initial Dir:"));
    caption_ = form.Edit(QStringLiteral("Edit_Caption"), _("Caption:"));
    extension_ = form.Edit(QStringLiteral("Edit_Extension"), _("Default Extension"));
    AttachVariableEditors();
}

void TFRM_OpenSave::Load(const Fields& f)
{
    (f.openDialog ? open_ : save_)->setChecked(true);
    fileName_->setText(f.fileName);
    initDir_->setText(f.initDir);
    caption_->setText(f.caption);
    extension_->setText(f.extension);
    fileName_->setFocus();
}

void TFRM_OpenSave::Store(Fields& f)
{
    f.openDialog = open_->isChecked();
    f.fileName = fileName_->text().trimmed();
    f.initDir = initDir_->text();
    f.caption = caption_->text();
    f.extension = extension_->text();
}

}  // namespace dv
