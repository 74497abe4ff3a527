#pragma once
// Dialog rows the system commands share: a labelled edit with a ".." button beside it.
#include <QString>

class QLabel;
class QLineEdit;
class QPushButton;
class QVBoxLayout;
class QWidget;

namespace dv {

struct TBrowseRow {
    QLabel* label;
    QLineEdit* edit;
    QPushButton* button;
};

TBrowseRow AddBrowseRow(QWidget* owner, QVBoxLayout* layout, const QString& editName, const QString& label,
                        const QString& buttonName, const QString& buttonCaption);

}  // namespace dv
