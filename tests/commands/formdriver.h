#pragma once
// Drives a modal dialog from inside its own event loop: once the active modal widget carries the
// given objectName, act runs on it (and must close it).
#include <QAbstractButton>
#include <QCheckBox>
#include <QRadioButton>
#include <QStyle>
#include <QStyleOptionButton>
#include <QApplication>
#include <QLineEdit>
#include <QMessageBox>
#include <QTimer>
#include <QtTest/QTest>

#include <functional>

namespace dv::test {

inline void OnModal(const QString& objectName, std::function<void(QWidget&)> act)
{
    // Owned by the application too: a dialog that closes inside a nested event loop may leave the
    // timer's deferred deletion to a loop that never runs again.
    auto* timer = new QTimer(QCoreApplication::instance());
    timer->setInterval(5);
    QObject::connect(timer, &QTimer::timeout, [timer, objectName, act] {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible() || modal->objectName() != objectName) return;
        timer->stop();
        timer->deleteLater();
        act(*modal);
    });
    timer->start();
}

// Accepts the next message box named objectName; its text goes to *shown.
inline void OnMessage(const QString& objectName, QString* shown)
{
    OnModal(objectName, [shown](QWidget& box) {
        *shown = static_cast<QMessageBox&>(box).text();
        static_cast<QMessageBox&>(box).accept();
    });
}

template <class Widget>
Widget& Find(QWidget& dialog, const char* name)
{
    auto* widget = dialog.findChild<Widget*>(QString::fromLatin1(name));
    if (!widget) throw std::runtime_error(std::string("no control ") + name);
    return *widget;
}

inline void Type(QWidget& dialog, const char* name, const QString& text)
{
    auto& edit = Find<QLineEdit>(dialog, name);
    edit.clear();
    // Qt Test types only ASCII key by key; other characters go in as an input method would.
    bool ascii = true;
    for (QChar c : text) ascii = ascii && c.unicode() < 128;
    if (ascii) {
        QTest::keyClicks(&edit, text);
    } else {
        edit.insert(text);
    }
}

// Clicks where the user would: a check box or radio button reacts only on its indicator and text,
// which in a stretched row is not the widget's centre.
inline void Click(QWidget& dialog, const char* name)
{
    auto& button = Find<QAbstractButton>(dialog, name);
    QPoint at = button.rect().center();
    QStyleOptionButton option;
    option.initFrom(&button);
    if (qobject_cast<QCheckBox*>(&button)) {
        at = button.style()->subElementRect(QStyle::SE_CheckBoxClickRect, &option, &button).center();
    } else if (qobject_cast<QRadioButton*>(&button)) {
        at = button.style()->subElementRect(QStyle::SE_RadioButtonClickRect, &option, &button).center();
    }
    QTest::mouseClick(&button, Qt::LeftButton, {}, at);
}

}  // namespace dv::test
