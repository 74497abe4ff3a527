#pragma once
// The editor dialog of OpenSaveDlg: open or save, the variable, directory, title and extension.
#include "commands/dialogs/gui_opensavedlg.h"
#include "framework/forms/commandform.h"

class QLineEdit;
class QRadioButton;

namespace dv {

class TFRM_OpenSave : public TCommandForm<TDVCmdOpenSave> {
public:
    explicit TFRM_OpenSave(TDVCmdOpenSave& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    QRadioButton* open_;
    QRadioButton* save_;
    QLineEdit* fileName_;
    QLineEdit* initDir_;
    QLineEdit* caption_;
    QLineEdit* extension_;
};

}  // namespace dv
