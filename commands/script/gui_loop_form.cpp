#include "commands/script/gui_loop_form.h"

#include "framework/catalogue.h"
#include "framework/forms/formbuilder.h"

#include <QAbstractButton>
#include <QButtonGroup>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace dv {

namespace {

constexpr const char* kTag = "tag";

// A group of the dialog at its natural height, so that the dialog's height is the sum of its parts.
QGroupBox* AddGroup(QWidget* owner, QVBoxLayout* body, const QString& objectName, const QString& caption,
                    const QString& explanation, QVBoxLayout*& inner)
{
    auto* group = new QGroupBox(caption, owner);
    group->setObjectName(objectName);
    group->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    inner = new QVBoxLayout(group);
    inner->addWidget(new QLabel(explanation, group));
    body->addWidget(group);
    return group;
}

}  // namespace

TDVGUILoop::TDVGUILoop(TDVCmdLoop& command)
    : TCommandForm(command, QStringLiteral("TDVGUILoop"), _("Schleifen"),
                   FindCommandClass(QStringLiteral("TDVCmdLoop"))->helpContext)
{
    types_ = TFormBuilder(this, Body())
                 .Radios(_("Schleifentyp"), {QStringLiteral("RadioFor"), QStringLiteral("RadioWhile"), QStringLiteral("RadioRepeat")},
                         {_("Zählschleife (for - to - do)"), _("Vorprüfende Schleife (while-do)"),
                          _("Nachprüfende Schleife (repeat-until)")},
                         {static_cast<int>(TLoopType::For), static_cast<int>(TLoopType::While), static_cast<int>(TLoopType::Repeat)});
    typeGroup_ = static_cast<QGroupBox*>(types_->parent());
    typeGroup_->setObjectName(QStringLiteral("RG_Type"));
    typeGroup_->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);

    QVBoxLayout* inner = nullptr;
    forGroup_ = AddGroup(this, Body(), QStringLiteral("GB_ForLoop"), _("Zählschleife"),
                         _("Der Zähler läuft in Schritten von 1 vom Startwert bis zum Endwert;\n"
                           "der Schleifenrumpf wird für jeden Wert einmal ausgeführt."),
                         inner);
    TFormBuilder forRows(forGroup_, inner);
    loopVarName_ = forRows.Edit(QStringLiteral("Edit_LoopVarName"), _("Zähler:"));
    startValue_ = forRows.Edit(QStringLiteral("Edit_StartValue"), _("Startwert:"));
    endValue_ = forRows.Edit(QStringLiteral("Edit_EndValue"), _("Endwert:"));

    whileGroup_ = AddGroup(this, Body(), QStringLiteral("GB_WhileLoop"), _("Vorprüfende Schleife"),
                           _("Die Bedingung wird vor jedem Durchlauf geprüft; ist sie schon zu Beginn\n"
                             "falsch, wird der Schleifenrumpf nie ausgeführt."),
                           inner);
    whileCondition_ = TFormBuilder(whileGroup_, inner).Edit(QStringLiteral("Edit_WhileCondition"), _("Bedingung:"));

    repeatGroup_ = AddGroup(this, Body(), QStringLiteral("GB_RepeatLoop"), _("Nachprüfende Schleife"),
                            _("Die Bedingung wird nach jedem Durchlauf geprüft; der Schleifenrumpf wird\n"
                              "mindestens einmal ausgeführt und wiederholt, bis die Bedingung wahr ist."),
                            inner);
    repeatCondition_ = TFormBuilder(repeatGroup_, inner).Edit(QStringLiteral("Edit_RepeatCondition"), _("Bedingung:"));

    OkButton()->setText(_("&OK"));
    CancelButton()->setText(_("&Abbrechen"));
    for (QAbstractButton* radio : types_->buttons()) {
        radio->setProperty(kTag, types_->id(radio));
        connect(radio, &QAbstractButton::clicked, this, [this, radio] { OnTypeSelect(*radio); });
    }
    AttachVariableEditors();
}

QGroupBox* TDVGUILoop::GroupOf(TLoopType type) const
{
    switch (type) {
    case TLoopType::For: return forGroup_;
    case TLoopType::While: return whileGroup_;
    case TLoopType::Repeat: return repeatGroup_;
    }
    return forGroup_;
}

void TDVGUILoop::OnTypeSelect(const QObject& sender)
{
    const auto type = static_cast<TLoopType>(sender.property(kTag).toInt());
    for (QGroupBox* group : {forGroup_, whileGroup_, repeatGroup_}) group->setVisible(group == GroupOf(type));
    layout()->activate();
    const int height = typeGroup_->sizeHint().height() + GroupOf(type)->sizeHint().height() + 75;
    resize(isVisible() ? width() : sizeHint().width(), height);
}

void TDVGUILoop::SelectType(TLoopType type)
{
    QAbstractButton* radio = types_->button(static_cast<int>(type));
    radio->setChecked(true);
    OnTypeSelect(*radio);
}

void TDVGUILoop::Load(const Fields& fields)
{
    loopVarName_->setText(fields.loopVarName);
    startValue_->setText(fields.startValue);
    endValue_->setText(fields.endValue);
    whileCondition_->setText(fields.whileCondition);
    repeatCondition_->setText(fields.repeatCondition);
    SelectType(fields.type);
}

void TDVGUILoop::Store(Fields& fields)
{
    fields.type = static_cast<TLoopType>(types_->checkedId());
    fields.loopVarName = loopVarName_->text();
    fields.startValue = startValue_->text();
    fields.endValue = endValue_->text();
    fields.whileCondition = whileCondition_->text();
    fields.repeatCondition = repeatCondition_->text();
}

}  // namespace dv
