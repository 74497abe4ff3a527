#pragma once
// The editor of CallNamedPipe: three bound edits and a Test button that runs one transaction.
#include "commands/system/gui_callnamedpipe.h"
#include "framework/forms/boundform.h"

namespace dv {

class TFormCallNamedPipe : public TBoundForm {
    Q_OBJECT
public:
    explicit TFormCallNamedPipe(TDVCmdCallNamedPipe& command);

private:
    // Sends the current Call to the current Name and shows "Ergebnis = <reply>" or the failure.
    void TestCall();
    TDVCmdCallNamedPipe& command_;
};

}  // namespace dv
