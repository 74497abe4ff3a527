#include "commands/dialogs/gui_formshow_form.h"

#include "framework/catalogue.h"
#include "framework/forms/formbuilder.h"

namespace dv {

namespace {
int HelpOf(const char* commandClass) { return FindCommandClass(QLatin1String(commandClass))->helpContext; }
}  // namespace

TFormFormShow::TFormFormShow(TDVCmdFormShow& command)
    : TBoundForm(command, QStringLiteral("TFormFormShow"), _("Formular anzeigen"), HelpOf("TDVCmdFormShow"))
{
    TFormBuilder form(this, Body());
    form.Edit(QStringLiteral("DVEdit_File"), _("HTML-Datei"));
    form.Check(QStringLiteral("DVCheckBox_Fullscreen"), _("Vollbild"));
    AttachVariableEditors();
}

TFormFormResult::TFormFormResult(TDVCmdFormResult& command)
    : TBoundForm(command, QStringLiteral("TFormFormResult"), _("Formular auswerten"), HelpOf("TDVCmdFormResult"))
{
    TFormBuilder form(this, Body());
    form.Check(QStringLiteral("DVCheckBox_Close"), _("Formular danach schließen"));
    form.Edit(QStringLiteral("DVEdit_Timeout"), _("Wartezeit in ms (-1: unbegrenzt)"));
    form.Edit(QStringLiteral("DVEdit_Result"), _("Ergebnis-Variable"));
    form.Check(QStringLiteral("DVCheckBox_Unpack"), _("Felder in gleichnamige Variablen"));
    AttachVariableEditors();
}

}  // namespace dv
