#pragma once
// The command's view of its editor dialog. Dialogs live in the dialog layer, which registers one
// factory per dialog class when the host has a GUI; without one, Form() reports that clearly.
#include <QString>

#include <functional>
#include <memory>

namespace dv {

class TDVRunEdit;

class TDVEditorForm {
public:
    virtual ~TDVEditorForm() = default;
    // Shows the dialog modally on the command's current fields; true when closed with OK, after
    // which the command's fields hold the edited texts. Any other close changes nothing.
    virtual bool ShowModal() = 0;
    // Tells the user something over the dialog's place and waits until it is acknowledged.
    virtual void ShowMessage(const QString& text) = 0;
};

using TEditorFormFactory = std::function<std::unique_ptr<TDVEditorForm>(TDVRunEdit& command)>;

void RegisterEditorForm(const QString& formClass, TEditorFormFactory factory);
void UnregisterEditorForms();
bool HasEditorForm(const QString& formClass);
std::unique_ptr<TDVEditorForm> CreateEditorForm(const QString& formClass, TDVRunEdit& command);

}  // namespace dv
