#pragma once
// Small helpers that turn a dialog into a declaration: labelled edits, check boxes, radio groups,
// each control named once, here, with its objectName.
#include <QString>
#include <QStringList>

#include <vector>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QFormLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QRadioButton;
class QVBoxLayout;
class QWidget;

namespace dv {

class TFormBuilder {
public:
    // Builds into layout; controls are children of owner.
    TFormBuilder(QWidget* owner, QVBoxLayout* layout);

    QLineEdit* Edit(const QString& objectName, const QString& label, const QString& text = {});
    QComboBox* Combo(const QString& objectName, const QString& label, const QStringList& items, bool editable = true);
    QCheckBox* Check(const QString& objectName, const QString& caption, bool checked = false);
    QLabel* Label(const QString& text, const QString& objectName = {});
    // A group of radio buttons; button i gets id i (or ids[i] when given).
    QButtonGroup* Radios(const QString& groupCaption, const QStringList& objectNames, const QStringList& captions,
                         const std::vector<int>& ids = {});

private:
    QFormLayout* Rows();
    QWidget* owner_;
    QVBoxLayout* layout_;
    QFormLayout* rows_ = nullptr;
};

}  // namespace dv
