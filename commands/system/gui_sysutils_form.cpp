#include "commands/system/gui_sysutils_form.h"

#include "commands/system/systemrows_form.h"
#include "framework/forms/formbuilder.h"
#include "framework/translate.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace dv {

TSystemUtilities::TSystemUtilities(TDVCmdSystemUtilities& command)
    : TCommandForm(command, QStringLiteral("TSystemUtilities"), _("System Utilities"), 182)
{
    commands_ = TFormBuilder(this, Body()).RadiosOf(QString(), kSysUtilCommands, [](const TSysUtilRow& row) {
        return TFormBuilder::TRadio{row.radioName, row.caption, static_cast<int>(row.command)};
    });
    const TBrowseRow file = AddBrowseRow(this, Body(), QStringLiteral("Edit_Filename"), _("Dateiname"),
                                         QStringLiteral("BT_Dir"), QStringLiteral("..."));
    fileLabel_ = file.label;
    fileLabel_->setObjectName(QStringLiteral("LB_Filename"));
    fileName_ = file.edit;
    result_ = TFormBuilder(this, Body()).Edit(QStringLiteral("Edit_Ergebnis"), _("Ergebnis-Variable"));
    resultLabel_ = nullptr;
    for (QLabel* l : findChildren<QLabel*>()) {
        if (l->buddy() == result_) resultLabel_ = l;
    }
    resultLabel_->setObjectName(QStringLiteral("LB_Ergebnis"));

    connect(commands_, &QButtonGroup::idClicked, this, &TSystemUtilities::Relabel);
    connect(file.button, &QPushButton::clicked, this, [this] {
        const QString chosen = QFileDialog::getOpenFileName(this, _("Dateiname"));
        if (!chosen.isEmpty()) fileName_->setText('"' + chosen + '"');
    });
    AttachVariableEditors();
}

void TSystemUtilities::Relabel(int subcommand)
{
    const bool copy = subcommand == static_cast<int>(TSysUtilSubcommand::FileCopy);
    fileLabel_->setText(copy ? _("Quelle:") : _("Dateiname"));
    resultLabel_->setText(copy ? _("Ziel:") : _("Ergebnis-Variable"));
}

void TSystemUtilities::Load(const Fields& f)
{
    commands_->button(static_cast<int>(f.command))->setChecked(true);
    Relabel(static_cast<int>(f.command));
    fileName_->setText(f.fileName);
    result_->setText(f.second);
}

void TSystemUtilities::Store(Fields& f)
{
    f.command = static_cast<TSysUtilSubcommand>(std::max(commands_->checkedId(), 0));
    f.fileName = fileName_->text();
    f.second = result_->text();
}

}  // namespace dv
