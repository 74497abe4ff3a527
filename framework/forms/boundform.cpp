#include "framework/forms/boundform.h"

#include "framework/dvtools.h"
#include "framework/runedit.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLineEdit>

namespace dv {

namespace {
const QString kEdit = QStringLiteral("DVEdit_");
const QString kCheck = QStringLiteral("DVCheckBox_");
const QString kRadio = QStringLiteral("DVRadioButton_");
}  // namespace

void LoadBoundControls(QWidget& form, const TDVThreadRunEdit& command)
{
    for (const QString& name : command.Signature().ParamNames()) {
        const QString text = command.BoundField(name);
        if (auto* edit = form.findChild<QLineEdit*>(kEdit + name)) edit->setText(text);
        if (auto* combo = form.findChild<QComboBox*>(kEdit + name)) combo->setCurrentText(text);
        for (const QString& prefix : {kCheck, kRadio}) {
            if (auto* button = form.findChild<QAbstractButton*>(prefix + name)) button->setChecked(StrToBoolEx(text, false));
        }
    }
}

void StoreBoundControls(const QWidget& form, TDVThreadRunEdit& command)
{
    for (const QString& name : command.Signature().ParamNames()) {
        if (auto* edit = form.findChild<QLineEdit*>(kEdit + name)) {
            command.SetBoundField(name, edit->text());
        } else if (auto* combo = form.findChild<QComboBox*>(kEdit + name)) {
            command.SetBoundField(name, combo->currentText());
        }
        for (const QString& prefix : {kCheck, kRadio}) {
            if (auto* button = form.findChild<QAbstractButton*>(prefix + name)) {
                command.SetBoundField(name, button->isChecked() ? QStringLiteral("True") : QStringLiteral("False"));
            }
        }
    }
}

TBoundForm::TBoundForm(TDVThreadRunEdit& command, const QString& formClass, const QString& caption, int helpContext,
                       const QString& helpButtonName)
    : TDVForm(formClass, caption, helpContext, nullptr, helpButtonName), command_(command)
{
}

}  // namespace dv
