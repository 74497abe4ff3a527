#include "commands/dialogs/gui_meldungsbox_form.h"

#include "framework/catalogue.h"
#include "framework/forms/formbuilder.h"
#include "framework/intconvert.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QVBoxLayout>

namespace dv {

namespace {

QVBoxLayout* Group(QWidget* owner, QVBoxLayout* body, const QString& caption)
{
    auto* group = new QGroupBox(caption, owner);
    auto* layout = new QVBoxLayout(group);
    body->addWidget(group);
    return layout;
}

// The two-digit percent edits.
QLineEdit* PercentEdit(QWidget* owner, QVBoxLayout* layout, const QString& name, const QString& label)
{
    QLineEdit* edit = TFormBuilder(owner, layout).Edit(name, label);
    edit->setInputMask(QStringLiteral("00"));
    return edit;
}

}  // namespace

TMeldungsbox::TMeldungsbox(TDVCmdMeldungsBox& command)
    : TCommandForm(command, QStringLiteral("TMeldungsbox"), _("Meldungsbox"),
                   FindCommandClass(QStringLiteral("TDVCmdMeldungsBox"))->helpContext)
{
    QVBoxLayout* textGroup = Group(this, Body(), _("Meldungstext"));
    text_ = new QLineEdit(textGroup->parentWidget());
    text_->setObjectName(QStringLiteral("DVEdit_Meldung"));
    textGroup->addWidget(text_);

    type_ = TFormBuilder(this, Body()).RadiosOf(_("Meldungstyp"), MessageTypes(), [](const TMsgDlgTypeRow& row) {
        return TFormBuilder::TRadio{row.radio, row.caption, static_cast<int>(row.value)};
    });

    constexpr QStyle::StandardPixmap kIcons[] = {QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxCritical,
                                                  QStyle::SP_MessageBoxInformation, QStyle::SP_MessageBoxQuestion};
    for (const TMsgDlgTypeRow& row : MessageTypes()) {
        const int id = static_cast<int>(row.value);
        type_->button(id)->setIcon(style()->standardIcon(kIcons[id]));
    }

    QVBoxLayout* buttonGroup = Group(this, Body(), _("Buttons"));
    for (const TMsgDlgBtnRow& row : MessageButtons()) {
        if (*row.checkBox == '\0') continue;
        auto* box = new QCheckBox(_(row.caption), buttonGroup->parentWidget());
        box->setObjectName(QLatin1String(row.checkBox));
        buttonGroup->addWidget(box);
        buttons_.emplace_back(row.bit, box);
    }

    QVBoxLayout* position = Group(this, Body(), _("Position"));
    standard_ = new QCheckBox(_("Standard"), position->parentWidget());
    standard_->setObjectName(QStringLiteral("CB_Position"));
    standard_->setChecked(true);
    position->addWidget(standard_);
    x_ = PercentEdit(position->parentWidget(), position, QStringLiteral("DVEdit_x"), _("X (%)"));
    y_ = PercentEdit(position->parentWidget(), position, QStringLiteral("DVEdit_Y"), _("Y (%)"));
    x_->setText(QStringLiteral("0 "));
    y_->setText(QStringLiteral("50"));
    ShowPositionEdits();

    auto* test = new QPushButton(_("Test"), this);
    test->setObjectName(QStringLiteral("BT_Test"));
    test->setAutoDefault(false);
    ButtonRow()->insertWidget(0, test);

    connect(standard_, &QCheckBox::toggled, this, [this] { ShowPositionEdits(); });
    connect(test, &QPushButton::clicked, this, [this] { TestMessage(); });
    AttachVariableEditors();
}

void TMeldungsbox::ShowPositionEdits()
{
    x_->setEnabled(!standard_->isChecked());
    y_->setEnabled(!standard_->isChecked());
}

void TMeldungsbox::Load(const Fields& f)
{
    text_->setText(f.text);
    if (QAbstractButton* radio = type_->button(f.type)) radio->setChecked(true);
    for (auto& [bit, box] : buttons_) box->setChecked(f.buttons & bit);
    standard_->setChecked(f.standardPosition);
    x_->setText(QString::number(f.x));
    y_->setText(QString::number(f.y));
    ShowPositionEdits();
    text_->setFocus();
}

void TMeldungsbox::Store(Fields& f)
{
    f.text = text_->text();
    f.type = type_->checkedId() < 0 ? f.type : type_->checkedId();
    // Abort has no box: a set read from script text keeps it.
    f.buttons &= MessageButtons()[static_cast<std::size_t>(TMsgDlgBtn::Abort)].bit;
    for (const auto& [bit, box] : buttons_) {
        if (box->isChecked()) f.buttons |= bit;
    }
    f.standardPosition = standard_->isChecked();
    f.x = StrToIntDef(x_->text().trimmed(), 0);
    f.y = StrToIntDef(y_->text().trimmed(), 0);
}

void TMeldungsbox::TestMessage()
{
    Fields shown = edited_;
    Store(shown);
    if (IDVOperatorDialogs* dialogs = OperatorDialogs()) dialogs->ShowMessage(MessageRequest(shown));
}

}  // namespace dv
