#pragma once
// The editor dialog of ArrayToStr: the array text and the target string variable.
#include "commands/text/gui_arraytostr.h"
#include "framework/forms/commandform.h"

class QLineEdit;

namespace dv {

class TFRM_ArrayToString : public TCommandForm<TDVCmdArrayToString> {
public:
    explicit TFRM_ArrayToString(TDVCmdArrayToString& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    QLineEdit* arr_;
    QLineEdit* str_;
};

}  // namespace dv
