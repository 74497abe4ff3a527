#pragma once
// A dialog over a command whose fields are one value struct (Command::TFields, read with Fields()
// and committed with SetFields()): the dialog edits a copy and commits it in one call on OK.
#include "framework/editorform.h"
#include "framework/forms/dvform.h"
#include "framework/runedit.h"

#include <memory>

namespace dv {

template <class Command>
class TCommandForm : public TDVForm {
public:
    using Fields = typename Command::TFields;

    TCommandForm(Command& command, const QString& formClass, const QString& caption, int helpContext)
        : TDVForm(formClass, caption, helpContext), command_(command)
    {
    }

protected:
    virtual void Load(const Fields& fields) = 0;
    virtual void Store(Fields& fields) = 0;

    void LoadFields() final
    {
        edited_ = command_.Fields();
        Load(edited_);
    }
    void StoreFields() final
    {
        Store(edited_);
        command_.SetFields(edited_);
    }

    Command& command_;
    Fields edited_{};
};

// Registers Form as the editor dialog of Command under the dialog's class name.
template <class Form, class Command>
void RegisterForm(const QString& formClass)
{
    RegisterEditorForm(formClass, [](TDVRunEdit& command) -> std::unique_ptr<TDVEditorForm> {
        return std::make_unique<Form>(static_cast<Command&>(command));
    });
}

}  // namespace dv
