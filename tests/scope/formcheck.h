#pragma once
// For the scope and image dialog tests: what named controls show, compared in one list, and the
// answer to the next message box.
#include "tests/support/modal.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QSpinBox>

#include <gtest/gtest.h>

namespace dv::formcheck {

// An edit's, combo box's or label's text, a spin box's value, a check box's or radio button's "on"
// or "off".
inline QString ShownBy(QWidget* w)
{
    if (auto* edit = qobject_cast<QLineEdit*>(w)) return edit->text();
    if (auto* box = qobject_cast<QComboBox*>(w)) return box->currentText();
    if (auto* label = qobject_cast<QLabel*>(w)) return label->text();
    if (auto* spin = qobject_cast<QSpinBox*>(w)) return QString::number(spin->value());
    if (auto* button = qobject_cast<QAbstractButton*>(w)) return button->isChecked() ? "on" : "off";
    return w ? "(not shown)" : "(no control)";
}

// Whether the controls show what the "name=shown" entries say.
inline testing::AssertionResult Shows(QWidget& parent, const QStringList& expected)
{
    QStringList shown;
    for (const QString& entry : expected) {
        const QString name = entry.section('=', 0, 0);
        shown << name + '=' + ShownBy(parent.findChild<QWidget*>(name));
    }
    if (shown == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << "shown: " << shown.join(" | ").toStdString() << "\nwanted: " << expected.join(" | ").toStdString();
}

inline QStringList Items(const QComboBox& box)
{
    QStringList items;
    for (int i = 0; i < box.count(); ++i) items << box.itemText(i);
    return items;
}

struct TBoxSeen {
    QString text;
    QMessageBox::StandardButtons buttons;
};

// Presses button in the next modal message box; what it said and offered goes to seen.
inline void Press(QMessageBox::StandardButton button, TBoxSeen& seen)
{
    test::WhenModal([&seen, button](QDialog& d) {
        auto& box = dynamic_cast<QMessageBox&>(d);
        seen = {box.text(), box.standardButtons()};
        box.button(button)->click();
    });
}

}  // namespace dv::formcheck
