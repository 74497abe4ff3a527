#pragma once
// The parameterless commands ShowLabor and HideLabor.
#include "framework/runedit.h"

namespace dv {

// "procedure " + name + ";"
QString ToProcDef(const QString& name);

// A command with a fixed signature, no dialog, no parameters and no description of its own.
class TDVSimpleCommand : public TDVFuncRunEdit {
public:
    explicit TDVSimpleCommand(const QString& signature);
    void SetDefaults() override {}
};

class TDVShowLaborCommand : public TDVSimpleCommand {
public:
    TDVShowLaborCommand();
    void Run(TParamList& params) override;
};

class TDVHideLaborCommand : public TDVSimpleCommand {
public:
    TDVHideLaborCommand();
    void Run(TParamList& params) override;
};

}  // namespace dv
