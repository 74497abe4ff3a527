#pragma once
// The default binding by control name: a dialog whose controls are named DVEdit_<param>,
// DVCheckBox_<param> or DVRadioButton_<param> needs no code to move its parameters.
#include "framework/forms/dvform.h"

namespace dv {

class TDVThreadRunEdit;

// Copies the command's bound fields into the form's controls of those names, and back
// (booleans as "True"/"False").
void LoadBoundControls(QWidget& form, const TDVThreadRunEdit& command);
void StoreBoundControls(const QWidget& form, TDVThreadRunEdit& command);

// A dialog that moves its parameters only through the default binding.
class TBoundForm : public TDVForm {
    Q_OBJECT
public:
    TBoundForm(TDVThreadRunEdit& command, const QString& formClass, const QString& caption, int helpContext,
               const QString& helpButtonName = TDVHelpButton::kDefaultName);

protected:
    void LoadFields() override { LoadBoundControls(*this, command_); }
    void StoreFields() override { StoreBoundControls(*this, command_); }
    TDVThreadRunEdit& Command() const { return command_; }

private:
    TDVThreadRunEdit& command_;
};

}  // namespace dv
