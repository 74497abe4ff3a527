#pragma once
// Small helpers that turn a dialog into a declaration: labelled edits, check boxes, radio groups,
// each control named once, here, with its objectName.
#include "framework/translate.h"

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

    // A radio group built from a keyword table: radio(row) gives the row's control name, caption
    // and id. The captions are translated.
    struct TRadio {
        const char* objectName;
        const char* caption;
        int id;
    };
    template <class Table, class Radio>
    QButtonGroup* RadiosOf(const QString& groupCaption, const Table& table, Radio radio)
    {
        QStringList names;
        QStringList captions;
        std::vector<int> ids;
        for (const auto& row : table) {
            const TRadio r = radio(row);
            names << QString::fromUtf8(r.objectName);
            captions << _(r.caption);
            ids.push_back(r.id);
        }
        return Radios(groupCaption, names, captions, ids);
    }

private:
    QFormLayout* Rows();
    QWidget* owner_;
    QVBoxLayout* layout_;
    QFormLayout* rows_ = nullptr;
};

}  // namespace dv
