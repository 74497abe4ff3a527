#pragma once
// Entry point of the dialog layer: a host that has created its QApplication registers the editor
// dialogs, after which a command's Edit shows its dialog.
namespace dv {

void RegisterForms();  // defined by the dialog table, commands/commandtable_form.cpp

}  // namespace dv
