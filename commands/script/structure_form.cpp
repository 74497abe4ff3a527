#include "commands/script/structure_form.h"

#include <QLabel>

namespace dv {

QLabel* NameLabelOf(QWidget& form, const QWidget* control, const QString& objectName)
{
    for (QLabel* label : form.findChildren<QLabel*>()) {
        if (label->buddy() == control) {
            label->setObjectName(objectName);
            return label;
        }
    }
    return nullptr;
}

}  // namespace dv
