#pragma once
// The loop dialog: the loop kind, and the group of boxes of that kind (the other two are hidden).
#include "commands/script/gui_loop.h"
#include "framework/forms/commandform.h"

class QButtonGroup;
class QGroupBox;
class QLineEdit;

namespace dv {

class TDVGUILoop : public TCommandForm<TDVCmdLoop> {
public:
    explicit TDVGUILoop(TDVCmdLoop& command);

    // The radio buttons' handler: shows the group of the sender's tag, hides the others, and makes
    // the dialog as high as the type group and that group together, plus 75.
    void OnTypeSelect(const QObject& sender);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    void SelectType(TLoopType type);
    QGroupBox* GroupOf(TLoopType type) const;

    QButtonGroup* types_;
    QGroupBox* typeGroup_;
    QGroupBox* forGroup_;
    QGroupBox* whileGroup_;
    QGroupBox* repeatGroup_;
    QLineEdit* loopVarName_;
    QLineEdit* startValue_;
    QLineEdit* endValue_;
    QLineEdit* whileCondition_;
    QLineEdit* repeatCondition_;
};

}  // namespace dv
