#include "commands/script/gui_ifthenelse_form.h"

#include "framework/catalogue.h"
#include "framework/exceptions.h"
#include "framework/translate.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace dv {

TIfThenElse::TIfThenElse(TDVCmdIfThenElse& command)
    : TCommandForm(command, QStringLiteral("TIfThenElse"), _("Bedingte Ausführung"),
                   FindCommandClass(QStringLiteral("TDVCmdIfThenElse"))->helpContext)
{
    auto* label = new QLabel(_("Geben Sie die Bedingung ein, unter der der IF-Zweig ausgeführt werden soll."), this);
    label->setObjectName(QStringLiteral("Label1"));
    condition_ = new QLineEdit(this);
    condition_->setObjectName(QStringLiteral("Edit_Vergleich1"));
    condition_->setMinimumWidth(360);
    label->setBuddy(condition_);
    Body()->addWidget(label);
    Body()->addWidget(condition_);
    OkButton()->setText(_("OK"));
    AttachVariableEditors();
}

void TIfThenElse::Load(const Fields& fields)
{
    setWindowTitle(_("Bedingte Ausführung"));
    condition_->setText(fields.condition);
    condition_->setFocus();
}

void TIfThenElse::Store(Fields& fields) { fields.condition = condition_->text(); }

// Only the untranslated OK checks the condition; a condition the parser does not read keeps the
// dialog open so that it can be corrected.
void TIfThenElse::OkClicked()
{
    if (OkButton()->text() != QLatin1String("OK")) {
        done(mrOk);
        return;
    }
    setResult(0);
    try {
        if (ConditionParses(condition_->text())) done(mrOk);
    } catch (const TDravikException& e) {
        ShowMessage(e.Message());
    }
}

}  // namespace dv
