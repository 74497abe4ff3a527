#include "commands/script/gui_bemerkung_form.h"

#include "commands/script/structure_form.h"
#include "framework/catalogue.h"
#include "framework/forms/formbuilder.h"

#include <QLabel>
#include <QLineEdit>

namespace dv {

TBemerkung::TBemerkung(TDVCmdComment& command)
    : TCommandForm(command, QStringLiteral("TBemerkung"), _("Bemerkung"),
                   FindCommandClass(QStringLiteral("TDVCmdComment"))->helpContext)
{
    text_ = TFormBuilder(this, Body()).Edit(QStringLiteral("Edit_Bemerkung"), _("Kommentar:"));
    text_->setMinimumWidth(360);
    label_ = NameLabelOf(*this, text_, QStringLiteral("Label1"));
}

void TBemerkung::Load(const Fields& fields)
{
    setWindowTitle(_("Bemerkung"));
    label_->setText(_("Kommentar:"));
    text_->setText(fields.text);
    text_->setFocus();
}

void TBemerkung::Store(Fields& fields) { fields.text = text_->text(); }

}  // namespace dv
