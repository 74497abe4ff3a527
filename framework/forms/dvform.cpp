#include "framework/forms/dvform.h"

#include "framework/services.h"
#include "framework/translate.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QMessageBox>
#include <QVBoxLayout>

namespace dv {

TDVHelpButton::TDVHelpButton(int helpContext, QWidget* parent, const QString& objectName)
    : QPushButton(_("&Hilfe"), parent), helpContext_(helpContext)
{
    setObjectName(objectName);
    setAutoDefault(false);
    setToolTip(Format(_("Hilfe-Kontext %d"), {QString::number(helpContext)}));
}

TDVForm::TDVForm(const QString& formClass, const QString& caption, int helpContext, QWidget* parent,
                 const QString& helpButtonName)
    : QDialog(parent)
{
    setObjectName(formClass);
    setWindowTitle(caption);
    auto* outer = new QVBoxLayout(this);
    body_ = new QVBoxLayout;
    outer->addLayout(body_);
    buttons_ = new QHBoxLayout;
    outer->addLayout(buttons_);

    ok_ = new QPushButton(QStringLiteral("OK"), this);
    ok_->setObjectName(QStringLiteral("BT_OK"));
    ok_->setDefault(true);
    cancel_ = new QPushButton(_("Abbrechen"), this);
    cancel_->setObjectName(QStringLiteral("BT_Cancel"));
    cancel_->setAutoDefault(false);
    buttons_->addStretch();
    buttons_->addWidget(ok_);
    buttons_->addWidget(cancel_);
    buttons_->addWidget(new TDVHelpButton(helpContext, this, helpButtonName));

    connect(ok_, &QPushButton::clicked, this, [this] { OkClicked(); });
    connect(cancel_, &QPushButton::clicked, this, [this] { done(mrCancel); });
}

bool TDVForm::ShowModal()
{
    LoadFields();
    // QDialog's Escape handling ends with reject() (result 0): any result but OK is a cancel.
    if (exec() != mrOk) {
        Cancelled();
        return false;
    }
    StoreFields();
    return true;
}

void TDVForm::ShowMessage(const QString& text)
{
    QMessageBox box(QMessageBox::Information, windowTitle(), text, QMessageBox::Ok, this);
    box.setObjectName(QStringLiteral("MessageDlg"));
    box.exec();
}

void TDVForm::AttachVariableEditors()
{
    IDVVarAccess* access = HostServices().varAccess;
    if (!access) return;
    for (QLineEdit* edit : findChildren<QLineEdit*>()) access->AttachVariableEditor(edit);
}

}  // namespace dv
