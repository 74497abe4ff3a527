#pragma once
// Acting on a modal dialog from a test: the action runs once the dialog's event loop has started.
#include <QApplication>
#include <QDialog>
#include <QTimer>

#include <functional>

namespace dv::test {

// Schedules action(dialog) for the next modal dialog that opens; the action must close it.
inline void WhenModal(std::function<void(QDialog&)> action)
{
    QTimer::singleShot(0, [action = std::move(action)] {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (dialog) action(*dialog);
    });
}

template <class Widget>
Widget& Child(QWidget& parent, const char* objectName)
{
    auto* w = parent.findChild<Widget*>(QString::fromLatin1(objectName));
    if (!w) throw std::runtime_error(std::string("no control ") + objectName);
    return *w;
}

}  // namespace dv::test
