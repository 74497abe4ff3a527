#pragma once
// TIni_Files: the editor dialog of IniFile.
#include "commands/system/gui_inifile.h"
#include "framework/forms/commandform.h"

class QButtonGroup;
class QLineEdit;

namespace dv {

class TIni_Files : public TCommandForm<TDVCmdIniFiles> {
    Q_OBJECT
public:
    explicit TIni_Files(TDVCmdIniFiles& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    // Enables the edits the mode uses (mode 0: none of the four).
    void EnableFor(int mode);
    QLineEdit* fileName_;
    QLineEdit* section_;
    QLineEdit* ident_;
    QLineEdit* value_;
    QLineEdit* result_;
    QButtonGroup* modes_;
};

}  // namespace dv
