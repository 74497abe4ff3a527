#pragma once
// Older command lines converted on request: the converter that dvrun --convert uses, its result
// shown line by line before anything in the editor changes.
#include <QDialog>

namespace dv::host {
class TCommandPool;
}

namespace dv::workbench {

class TConvertPreview final : public QDialog {
    Q_OBJECT
public:
    TConvertPreview(const QString& script, host::TCommandPool& commands, QWidget* parent = nullptr);
    const QString& Converted() const { return converted_; }
    int ChangedLines() const { return changed_; }

private:
    QString converted_;
    int changed_ = 0;
};

}  // namespace dv::workbench
