#pragma once
// The editor dialog of StrToArray: the string and the target array variable.
#include "commands/text/gui_strtoarray.h"
#include "framework/forms/commandform.h"

class QLineEdit;

namespace dv {

class TFRM_StringIntoArrayString : public TCommandForm<TDVCmdStringToArray> {
public:
    explicit TFRM_StringIntoArrayString(TDVCmdStringToArray& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    QLineEdit* string_;
    QLineEdit* array_;
};

}  // namespace dv
