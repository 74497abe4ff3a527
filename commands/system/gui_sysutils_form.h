#pragma once
// TSystemUtilities: the editor dialog of SysUtils.
#include "commands/system/gui_sysutils.h"
#include "framework/forms/commandform.h"

class QButtonGroup;
class QLabel;
class QLineEdit;

namespace dv {

class TSystemUtilities : public TCommandForm<TDVCmdSystemUtilities> {
    Q_OBJECT
public:
    explicit TSystemUtilities(TDVCmdSystemUtilities& command);

protected:
    void Load(const Fields& fields) override;
    void Store(Fields& fields) override;

private:
    // FileCopy names its two texts source and target; the others file name and result variable.
    void Relabel(int subcommand);
    QButtonGroup* commands_;
    QLabel* fileLabel_;
    QLineEdit* fileName_;
    QLabel* resultLabel_;
    QLineEdit* result_;
};

}  // namespace dv
