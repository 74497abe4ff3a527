#pragma once
// ImageSave: the current image into a bitmap file. Binds its one parameter File to the dialog by
// name and runs in the interpreter's thread.
#include "framework/runedit.h"

namespace dv {

class TDVCmdImageSave : public TDVFuncRunEdit {
public:
    explicit TDVCmdImageSave(TDVParser* parser);
    void Run(TParamList& params) override;
    QString GetDescription(const QString& name, const TParamList& params) override;
};

}  // namespace dv
