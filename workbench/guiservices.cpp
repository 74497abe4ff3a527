#include "workbench/guiservices.h"

#include <QApplication>
#include <QCompleter>
#include <QLineEdit>
#include <QStringListModel>

namespace dv::workbench {

TGuiServices::TGuiServices(host::THost& host, QStringListModel* names) : host_(host), names_(names) {}

void TGuiServices::Install() { SetHostServices({this, this, this}); }

void TGuiServices::AttachVariableEditor(QObject* control)
{
    // A dialog is built once and kept, so its edit boxes share the live list of names rather than
    // a copy of the names declared when it was built.
    auto* edit = qobject_cast<QLineEdit*>(control);
    if (!edit || !names_ || !qobject_cast<QApplication*>(QCoreApplication::instance())) {
        host_.AttachVariableEditor(control);
        return;
    }
    auto* completer = new QCompleter(names_, edit);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    edit->setCompleter(completer);
}

void TGuiServices::WriteOutput(const QString& text, const QString& fontName, int size, int style, int color)
{
    host_.WriteOutput(text, fontName, size, style, color);
    emit OutputWritten(text, fontName, size, style, color);
}

void TGuiServices::SetStatusText(const QString& text)
{
    host_.SetStatusText(text);
    emit StatusTextChanged(text);
}

void TGuiServices::StopTest()
{
    host_.StopTest();
    emit TestStopped();
}

void TGuiServices::SetLaborVisible(bool show)
{
    host_.SetLaborVisible(show);
    emit LaborVisibilityChanged(show);
}

}  // namespace dv::workbench
