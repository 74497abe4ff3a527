#include "framework/forms/formbuilder.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

namespace dv {

TFormBuilder::TFormBuilder(QWidget* owner, QVBoxLayout* layout) : owner_(owner), layout_(layout) {}

QFormLayout* TFormBuilder::Rows()
{
    if (!rows_) {
        rows_ = new QFormLayout;
        layout_->addLayout(rows_);
    }
    return rows_;
}

QLineEdit* TFormBuilder::Edit(const QString& objectName, const QString& label, const QString& text)
{
    auto* edit = new QLineEdit(text, owner_);
    edit->setObjectName(objectName);
    auto* caption = new QLabel(label, owner_);
    caption->setBuddy(edit);
    Rows()->addRow(caption, edit);
    return edit;
}

QComboBox* TFormBuilder::Combo(const QString& objectName, const QString& label, const QStringList& items, bool editable)
{
    auto* combo = new QComboBox(owner_);
    combo->setObjectName(objectName);
    combo->setEditable(editable);
    combo->addItems(items);
    auto* caption = new QLabel(label, owner_);
    caption->setBuddy(combo);
    Rows()->addRow(caption, combo);
    return combo;
}

QCheckBox* TFormBuilder::Check(const QString& objectName, const QString& caption, bool checked)
{
    auto* box = new QCheckBox(caption, owner_);
    box->setObjectName(objectName);
    box->setChecked(checked);
    Rows()->addRow(box);
    return box;
}

QLabel* TFormBuilder::Label(const QString& text, const QString& objectName)
{
    auto* label = new QLabel(text, owner_);
    if (!objectName.isEmpty()) label->setObjectName(objectName);
    Rows()->addRow(label);
    return label;
}

QButtonGroup* TFormBuilder::Radios(const QString& groupCaption, const QStringList& objectNames,
                                   const QStringList& captions, const std::vector<int>& ids)
{
    auto* box = new QGroupBox(groupCaption, owner_);
    auto* column = new QVBoxLayout(box);
    auto* group = new QButtonGroup(box);
    for (qsizetype i = 0; i < objectNames.size(); ++i) {
        auto* radio = new QRadioButton(i < captions.size() ? captions[i] : QString(), box);
        radio->setObjectName(objectNames[i]);
        column->addWidget(radio);
        group->addButton(radio, i < static_cast<qsizetype>(ids.size()) ? ids[static_cast<std::size_t>(i)] : static_cast<int>(i));
    }
    rows_ = nullptr;  // rows after a group start a new block below it
    layout_->addWidget(box);
    return group;
}

}  // namespace dv
