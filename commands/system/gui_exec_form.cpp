#include "commands/system/gui_exec_form.h"

#include "commands/system/systemrows_form.h"
#include "framework/exceptions.h"
#include "framework/forms/formbuilder.h"
#include "framework/translate.h"

#include <QCheckBox>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace dv {

TStartEXE::TStartEXE(TDVCmdStartEXE& command) : TCommandForm(command, QStringLiteral("TStartEXE"), _("Anwendung starten"), 177)
{
    const TBrowseRow exe = AddBrowseRow(this, Body(), QStringLiteral("Edit_ExeName"), _("Name / Pfad der Anwendung:"),
                                        QStringLiteral("BT_SearchExe"), QStringLiteral(".."));
    exeName_ = exe.edit;
    TFormBuilder rows(this, Body());
    parameter_ = rows.Edit(QStringLiteral("Edit_Parameter"), _("Übergabeparameter"));
    const TBrowseRow dir = AddBrowseRow(this, Body(), QStringLiteral("Edit_Workdir"), _("Arbeitsverzeichnis"),
                                        QStringLiteral("Button1"), QStringLiteral(".."));
    workDir_ = dir.edit;
    TFormBuilder more(this, Body());
    exitCode_ = more.Edit(QStringLiteral("Edit_ExitCode"), _("Exitcode"));
    waitForExit_ = more.Check(QStringLiteral("CB_WaitForExit"), _("Warten bis Programm beendet wurde."));

    auto* timeoutRow = new QHBoxLayout;
    timeoutLabel_ = new QLabel(_("Timeout:"), this);
    timeout_ = new QSpinBox(this);
    timeout_->setObjectName(QStringLiteral("Spin_Timeout"));
    timeout_->setRange(-1, 32000);
    secondsLabel_ = new QLabel(_("Sekunden"), this);
    timeoutRow->addWidget(timeoutLabel_);
    timeoutRow->addWidget(timeout_);
    timeoutRow->addWidget(secondsLabel_);
    timeoutRow->addStretch();
    Body()->addLayout(timeoutRow);
    TFormBuilder checks(this, Body());
    kill_ = checks.Check(QStringLiteral("CB_Kill"), _("Nach Timeout Programm automatisch beenden."));
    hide_ = checks.Check(QStringLiteral("CB_Ausblenden"), _("Dravik während der Ausführung ausblenden."));
    minimized_ = checks.Check(QStringLiteral("CB_Minimized"), _("Programm minimiert ausführen."));

    auto* test = new QPushButton(_("Test"), this);
    test->setObjectName(QStringLiteral("BT_Test"));
    test->setAutoDefault(false);
    ButtonRow()->insertWidget(0, test);

    connect(waitForExit_, &QCheckBox::toggled, this, &TStartEXE::ShowWaitControls);
    connect(test, &QPushButton::clicked, this, &TStartEXE::RunTest);
    connect(exe.button, &QPushButton::clicked, this, [this] {
        const QString file = QFileDialog::getOpenFileName(this, _("Anwendungsname"), {}, _("Programme (*)"));
        if (!file.isEmpty()) exeName_->setText('"' + file + '"');
    });
    connect(dir.button, &QPushButton::clicked, this, [this] {
        const QString chosen = QFileDialog::getExistingDirectory(this, _("Bitte Verzeichnis auswählen ..."));
        if (!chosen.isEmpty()) workDir_->setText('"' + chosen + '"');
    });
    ShowWaitControls(false);
    AttachVariableEditors();
}

void TStartEXE::ShowWaitControls(bool show)
{
    for (QWidget* w : {static_cast<QWidget*>(timeoutLabel_), static_cast<QWidget*>(timeout_),
                       static_cast<QWidget*>(secondsLabel_), static_cast<QWidget*>(kill_)}) {
        w->setVisible(show);
    }
}

void TStartEXE::Load(const Fields& f)
{
    exeName_->setText(f.exePath);
    parameter_->setText(f.params);
    workDir_->setText(f.workDir);
    exitCode_->setText(f.returnVar);
    timeout_->setValue(f.timeOut);
    waitForExit_->setChecked(f.waitForExit);
    ShowWaitControls(f.waitForExit);
    kill_->setChecked(f.kill);
    hide_->setChecked(f.hide);
    minimized_->setChecked(f.minimized);
}

void TStartEXE::Store(Fields& f)
{
    f.exePath = exeName_->text();
    f.params = parameter_->text();
    f.workDir = workDir_->text();
    f.returnVar = exitCode_->text();
    f.waitForExit = waitForExit_->isChecked();
    f.timeOut = timeout_->value();
    f.kill = kill_->isChecked();
    f.hide = hide_->isChecked();
    f.minimized = minimized_->isChecked();
}

void TStartEXE::RunTest()
{
    // The test runs what the dialog shows now; the command's fields stay as they were until OK.
    const Fields saved = command_.Fields();
    Fields shown = saved;
    Store(shown);
    command_.SetFields(shown);
    QString text;
    try {
        text = command_.OnEditorTest();
    } catch (const TDravikException& e) {
        text = e.Message();
    }
    command_.SetFields(saved);
    QMessageBox box(QMessageBox::Information, windowTitle(), text, QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("TestResult"));
    box.exec();
}

}  // namespace dv
