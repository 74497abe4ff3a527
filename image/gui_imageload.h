#pragma once
// ImageLoad: the current image from a bitmap file. Binds its one parameter File to the dialog by
// name and runs in the interpreter's thread.
#include "framework/runedit.h"

namespace dv {

class TDVCmdImageLoad : public TDVFuncRunEdit {
public:
    explicit TDVCmdImageLoad(TDVParser* parser);
    void Run(TParamList& params) override;
    QString GetDescription(const QString& name, const TParamList& params) override;
};

}  // namespace dv
