#include "commands/system/systemrows_form.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace dv {

TBrowseRow AddBrowseRow(QWidget* owner, QVBoxLayout* layout, const QString& editName, const QString& label,
                        const QString& buttonName, const QString& buttonCaption)
{
    auto* caption = new QLabel(label, owner);
    auto* edit = new QLineEdit(owner);
    edit->setObjectName(editName);
    caption->setBuddy(edit);
    auto* button = new QPushButton(buttonCaption, owner);
    button->setObjectName(buttonName);
    button->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->addWidget(edit, 1);
    row->addWidget(button);
    layout->addWidget(caption);
    layout->addLayout(row);
    return {caption, edit, button};
}

}  // namespace dv
