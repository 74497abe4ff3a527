#include "commands/system/gui_callnamedpipe_form.h"

#include "framework/exceptions.h"
#include "framework/forms/formbuilder.h"
#include "framework/translate.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace dv {

TFormCallNamedPipe::TFormCallNamedPipe(TDVCmdCallNamedPipe& command)
    : TBoundForm(command, QStringLiteral("TFormCallNamedPipe"), _("CallNamedPipe"), 191), command_(command)
{
    TFormBuilder form(this, Body());
    form.Edit(QStringLiteral("DVEdit_Name"), _("Name der Pipe"));
    form.Edit(QStringLiteral("DVEdit_Call"), _("Zu schreibenden Text"));
    form.Edit(QStringLiteral("DVEdit_Result"), _("Ergebnis-Variable"));
    auto* test = new QPushButton(_("Test"), this);
    test->setObjectName(QStringLiteral("BT_Test"));
    test->setAutoDefault(false);
    ButtonRow()->insertWidget(0, test);
    connect(test, &QPushButton::clicked, this, [this] { TestCall(); });
    AttachVariableEditors();
}

void TFormCallNamedPipe::TestCall()
{
    const TDVCmdCallNamedPipe::TFields fields{findChild<QLineEdit*>(QStringLiteral("DVEdit_Name"))->text(),
                                              findChild<QLineEdit*>(QStringLiteral("DVEdit_Call"))->text(), {}};
    QString outcome;
    try {
        outcome = Format(_("Ergebnis = %s"), {command_.Transact(fields, nullptr)});
    } catch (const TDravikException& e) {
        outcome = e.Message();
    }
    QMessageBox box(QMessageBox::Information, windowTitle(), outcome, QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("MSG_TestResult"));
    box.exec();
}

}  // namespace dv
