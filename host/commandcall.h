#pragma once
// A call of a library command: the arguments become the parameter list the command reads, and the
// command runs on the interpreter's thread (TDVFuncRunEdit) or on a worker thread (TDVThreadRunEdit).
#include "framework/runedit.h"
#include "host/statements.h"

#include <optional>

namespace dv::host {

// A parameter's value when the call leaves it out.
struct TCommandDefault {
    bool present = false;         // false: the parameter reaches the command as absent
    std::optional<TVal> value;    // none for an empty default ("= ;"): an empty text
};

class TCommandCall final : public TStmt {
public:
    TCommandCall(int line, TDVThreadRunEdit& command, std::vector<TBoundArg> args, std::vector<TCommandDefault> defaults)
        : TStmt(line),
          command_(command),
          onThisThread_(dynamic_cast<TDVFuncRunEdit*>(&command)),
          args_(std::move(args)),
          defaults_(std::move(defaults)) {}
    void Exec(TExec& ex) const override;
    // The parameter list of this call as the command gets it; raises for an undeclared var argument.
    TParamList BuildParams(TExec& ex) const;

private:
    TDVThreadRunEdit& command_;
    TDVFuncRunEdit* onThisThread_;  // the command when it runs on the interpreter's thread
    std::vector<TBoundArg> args_;  // one per signature parameter
    std::vector<TCommandDefault> defaults_;
};

// An input parameter's text and value: the evaluated value converted for the parameter's type
// where the script's rules ask for it (an array of codes where a string is expected).
TVal ParamValue(TVal v, const TDVParamDecl& decl);
// Runs the command body: Run on this thread, or RunThreaded on a worker while this thread waits
// (keeping the application's event loop alive so that the worker can synchronise with it).
// onThisThread: the command as a TDVFuncRunEdit, nullptr when it is none.
void RunCommandBody(TDVThreadRunEdit& command, TDVFuncRunEdit* onThisThread, TParamList& params);

}  // namespace dv::host
