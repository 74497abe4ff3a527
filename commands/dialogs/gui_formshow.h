#pragma once
// FormShow and FormResult: an HTML form shown to the operator, in a browser window of our own or,
// without a display, at a URL written to stdout; FormResult waits for what the form submits.
#include "commands/dialogs/htmlform.h"
#include "framework/runedit.h"

#include <memory>

namespace dv {

// FormShow(File, Fullscreen): serves the file and the files beside it and opens it.
class TDVCmdFormShow : public TDVFuncRunEdit {
public:
    explicit TDVCmdFormShow(TDVParser* parser);
    void Run(TParamList& params) override;
};

// FormResult(Close, Timeout, Result, Unpack): waits on the host's worker thread for the shown
// form's submission, the time-out or the test's stop.
class TDVCmdFormResult : public TDVThreadRunEdit {
public:
    explicit TDVCmdFormResult(TDVParser* parser);
    void RunThreaded(TParamList& params) override;
};

// The form FormShow showed last, or nullptr; CloseShownForm closes its window and stops serving.
std::shared_ptr<THtmlForm> ShownForm();
void CloseShownForm();

}  // namespace dv
