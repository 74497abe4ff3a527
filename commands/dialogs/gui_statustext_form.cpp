#include "commands/dialogs/gui_statustext_form.h"

#include "framework/catalogue.h"
#include "framework/forms/formbuilder.h"

#include <QLineEdit>
#include <QMessageBox>

namespace dv {

TStatusleiste::TStatusleiste(TDVCmdStatusBar& command)
    : TCommandForm(command, QStringLiteral("TStatusleiste"), _("Statusleiste"),
                   FindCommandClass(QStringLiteral("TDVCmdStatusBar"))->helpContext)
{
    text_ = TFormBuilder(this, Body()).Edit(QStringLiteral("Edit_Statustext"), _("Text in die Statusleiste schreiben"));
    AttachVariableEditors();
}

void TStatusleiste::Load(const Fields& f)
{
    text_->setText(f.text);
    text_->setFocus();
}

void TStatusleiste::Store(Fields& f) { f.text = text_->text(); }

QString TStatusleiste::ScriptLine() const { return StatusBarLine(text_->text()); }

QString TStatusleiste::BT_TestClick()
{
    Fields tested = edited_;
    Store(tested);
    command_.SetFields(tested);
    const QString shown = Format(_("Ergebnis = %s"), {command_.OnEditorTest()});
    QMessageBox box(QMessageBox::Information, windowTitle(), shown, QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("Ergebnis"));
    box.exec();
    return shown;
}

}  // namespace dv
