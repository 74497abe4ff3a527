#pragma once
// ImageChange: sets the mean brightness (linear light, percent) of an area of the current image,
// optionally turning it grey first. Parameters bound to the dialog by name.
#include "framework/runedit.h"

namespace dv {

class TDVCmdImageChange : public TDVFuncRunEdit {
public:
    explicit TDVCmdImageChange(TDVParser* parser);
    void SetDefaults() override;
    void Run(TParamList& params) override;
    QString GetDescription(const QString& name, const TParamList& params) override;
};

}  // namespace dv
