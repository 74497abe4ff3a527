#pragma once
// Dialog helpers of the structure commands.
#include <QString>

class QLabel;
class QWidget;

namespace dv {

// Names the label that the form builder put in front of control.
QLabel* NameLabelOf(QWidget& form, const QWidget* control, const QString& objectName);

}  // namespace dv
