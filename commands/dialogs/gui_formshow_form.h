#pragma once
// The editor dialogs of FormShow and FormResult; their controls bind to the parameters by name.
#include "commands/dialogs/gui_formshow.h"
#include "framework/forms/boundform.h"

namespace dv {

class TFormFormShow : public TBoundForm {
    Q_OBJECT
public:
    explicit TFormFormShow(TDVCmdFormShow& command);
};

class TFormFormResult : public TBoundForm {
    Q_OBJECT
public:
    explicit TFormFormResult(TDVCmdFormResult& command);
};

}  // namespace dv
