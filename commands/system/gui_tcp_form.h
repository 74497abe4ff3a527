#pragma once
// The editor of TCP: five edits bound to the parameters by name.
#include "commands/system/gui_tcp.h"
#include "framework/forms/boundform.h"

namespace dv {

class TFormTCP : public TBoundForm {
    Q_OBJECT
public:
    explicit TFormTCP(TDVCmdTCP& command);
};

}  // namespace dv
