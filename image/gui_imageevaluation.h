#pragma once
// ImageEval: judges the current image against a reference picture (RMS or worst-pixel difference
// after a search for its displacement) or by itself (coverage), and writes 0..100 into the
// Result variable. Its parameters are bound to the dialog by name; SetParams writes a Rect of
// four numbers in the form the dialog shows.
#include "framework/runedit.h"

namespace dv {

class TDVCmdImageEvaluation : public TDVFuncRunEdit {
public:
    explicit TDVCmdImageEvaluation(TDVParser* parser);
    void SetDefaults() override;
    void SetParams(const TParamList& params) override;
    void Run(TParamList& params) override;
    QString GetDescription(const QString& name, const TParamList& params) override;
};

// A rectangle as the dialog shows the Rect parameter: "[left, top, width, height]".
QString RectText(int left, int top, int width, int height);

}  // namespace dv
