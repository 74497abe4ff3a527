#include "commands/text/gui_numberconvert_form.h"

#include "framework/catalogue.h"
#include "framework/dvtools.h"
#include "framework/forms/formbuilder.h"
#include "framework/intconvert.h"
#include "framework/translate.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QVBoxLayout>

#include <vector>

namespace dv {

TZahlenkonverter::TZahlenkonverter(TDVCmdNumberConversion& command)
    : TCommandForm(command, QStringLiteral("TZahlenkonverter"), _("Zahlenkonverter"),
                   FindCommandClass(QStringLiteral("TDVCmdNumberConversion"))->helpContext)
{
    TFormBuilder form(this, Body());
    input_ = form.Edit(QStringLiteral("Edit_IN"), _("E&ingabe:"));
    output_ = form.Edit(QStringLiteral("Edit_Out"), _("&Ausgabe:"));

    stellenPanel_ = new QWidget(this);
    stellenPanel_->setObjectName(QStringLiteral("Panel_Stellen"));
    auto* row = new QHBoxLayout(stellenPanel_);
    row->setContentsMargins(0, 0, 0, 0);
    auto* label = new QLabel(_("Stellen:"), stellenPanel_);
    stellen_ = new QLineEdit(QStringLiteral("2"), stellenPanel_);
    stellen_->setObjectName(QStringLiteral("Edit_Stellen"));
    label->setBuddy(stellen_);
    upDown_ = new QSpinBox(stellenPanel_);
    upDown_->setObjectName(QStringLiteral("UD_Stellen"));
    upDown_->setRange(1, 16);
    upDown_->setValue(2);
    row->addWidget(label);
    row->addWidget(stellen_);
    row->addWidget(upDown_);
    Body()->addWidget(stellenPanel_);
    connect(upDown_, &QSpinBox::valueChanged, this, [this](int value) { stellen_->setText(QString::number(value)); });

    QStringList names;
    QStringList captions;
    std::vector<int> ids;
    for (const TNumberOperationRow& op : NumberOperations()) {
        names << QStringLiteral("RB_") + QLatin1String(op.keyword);
        captions << _(op.caption);
        ids.push_back(static_cast<int>(op.value));
    }
    operations_ = form.Radios(_("Operation"), names, captions, ids);
    connect(operations_, &QButtonGroup::idClicked, this, [this](int id) { ShowStellen(id); });
    AttachVariableEditors();
}

void TZahlenkonverter::ShowStellen(int operation) { stellenPanel_->setVisible(OperationRow(operation).usesDigits); }

void TZahlenkonverter::Load(const Fields& fields)
{
    input_->setText(fields.input);
    output_->setText(fields.output);
    stellen_->setText(QString::number(fields.digits));
    const QSignalBlocker quiet(upDown_);
    upDown_->setValue(fields.digits);  // the up-down keeps to 1..16; the edit keeps the text
    const int operation = InInterval(1, 13, fields.operation);
    operations_->button(operation)->setChecked(true);
    ShowStellen(operation);
    input_->setFocus();
}

void TZahlenkonverter::Store(Fields& fields)
{
    if (operations_->checkedId() > 0) fields.operation = operations_->checkedId();
    fields.input = input_->text();
    fields.output = output_->text();
    fields.digits = static_cast<std::uint8_t>(StrToIntDef(stellen_->text(), 0));
}

}  // namespace dv
