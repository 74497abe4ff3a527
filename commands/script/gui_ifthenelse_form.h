#pragma once
// The if-then-else dialog: the condition, which OK accepts only when the host parser reads it.
#include "commands/script/gui_ifthenelse.h"
#include "framework/forms/commandform.h"

class QLineEdit;

namespace dv {

class TIfThenElse : public TCommandForm<TDVCmdIfThenElse> {
public:
    explicit TIfThenElse(TDVCmdIfThenElse& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;
    void OkClicked() override;

private:
    QLineEdit* condition_;
};

}  // namespace dv
