#pragma once
// The comment command's dialog: one line of comment text.
#include "commands/script/gui_bemerkung.h"
#include "framework/forms/commandform.h"

class QLabel;
class QLineEdit;

namespace dv {

class TBemerkung : public TCommandForm<TDVCmdComment> {
public:
    explicit TBemerkung(TDVCmdComment& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    QLabel* label_;
    QLineEdit* text_;
};

}  // namespace dv
