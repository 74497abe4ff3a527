#include "commands/system/gui_inifile_form.h"

#include "framework/forms/formbuilder.h"
#include "framework/translate.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QFileDialog>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace dv {

TIni_Files::TIni_Files(TDVCmdIniFiles& command) : TCommandForm(command, QStringLiteral("TIni_Files"), _("INI-FILES"), 179)
{
    auto* fileGroup = new QGroupBox(_("Dateiname:"), this);
    auto* fileRow = new QHBoxLayout(fileGroup);
    fileName_ = new QLineEdit(fileGroup);
    fileName_->setObjectName(QStringLiteral("Edit_Dateiname"));
    auto* open = new QPushButton(QStringLiteral(".."), fileGroup);
    open->setObjectName(QStringLiteral("BT_OpenFile"));
    open->setAutoDefault(false);
    fileRow->addWidget(fileName_, 1);
    fileRow->addWidget(open);
    Body()->addWidget(fileGroup);

    TFormBuilder rows(this, Body());
    section_ = rows.Edit(QStringLiteral("Edit_Section"), _("Abschnitt:"));
    ident_ = rows.Edit(QStringLiteral("Edit_Ident"), _("Eintrag:"));
    value_ = rows.Edit(QStringLiteral("Edit_Value"), _("Wert:"));
    result_ = rows.Edit(QStringLiteral("Edit_Result"), _("Ergebnis:"));
    modes_ = rows.RadiosOf(_("Aktion:"), kIniModes, [](const TIniModeRow& row) {
        return TFormBuilder::TRadio{row.radioName, row.caption, static_cast<int>(row.mode)};
    });

    connect(modes_, &QButtonGroup::idClicked, this, &TIni_Files::EnableFor);
    connect(open, &QPushButton::clicked, this, [this] {
        const QString chosen = QFileDialog::getOpenFileName(this, _("INI-Datei"), {}, _("INI-Dateien (*.ini);;Alle Dateien (*)"));
        if (!chosen.isEmpty()) fileName_->setText('"' + chosen + '"');
    });
    AttachVariableEditors();
}

void TIni_Files::EnableFor(int mode)
{
    const TIniModeRow* row = FindIniMode(mode);
    section_->setEnabled(row && row->section);
    ident_->setEnabled(row && row->ident);
    value_->setEnabled(row && row->value);
    result_->setEnabled(row && row->result);
}

void TIni_Files::Load(const Fields& f)
{
    fileName_->setText(f.fileName);
    section_->setText(f.section);
    ident_->setText(f.ident);
    value_->setText(f.value);
    result_->setText(f.result);
    // Mode 0 checks no button; an exclusive group cannot be emptied while exclusive.
    modes_->setExclusive(false);
    for (QAbstractButton* b : modes_->buttons()) b->setChecked(modes_->id(b) == f.mode);
    modes_->setExclusive(true);
    EnableFor(f.mode);
}

void TIni_Files::Store(Fields& f)
{
    f.fileName = fileName_->text();
    f.section = section_->text();
    f.ident = ident_->text();
    f.value = value_->text();
    f.result = result_->text();
    for (const TIniModeRow& row : kIniModes) {
        if (modes_->button(static_cast<int>(row.mode))->isChecked()) f.mode = static_cast<std::uint8_t>(row.mode);
    }
}

}  // namespace dv
