#pragma once
// OpenSaveDlg: an open or save file dialog whose confirmed path goes into a string variable; a
// cancelled dialog writes nothing.
#include "commands/dialogs/operatordialogs.h"
#include "framework/runedit.h"

namespace dv {

struct TDVCmdOpenSaveFields {
    bool openDialog = true;
    QString fileName;  // the name of the variable: its value is proposed, and it gets the choice
    QString initDir;
    QString caption;
    QString extension;  // appended when the chosen name has none
    bool operator==(const TDVCmdOpenSaveFields&) const = default;
};

class TDVCmdOpenSave : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdOpenSaveFields> {
public:
    explicit TDVCmdOpenSave(TDVParser* parser);

    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override { return {QStringLiteral("OpenSaveDlg")}; }
    bool IsOlderLine(const QString& line) const override;
    QString GetDescription(const QString& name, const TParamList& params) override;
    void Run(TParamList& params) override;
};

// The headless answer that stands for the dialog's cancel button.
inline constexpr const char* kCancelAnswer = "Abbrechen";

// path with the default extension appended when its file name has none, as the dialog does.
QString WithDefaultExtension(const QString& path, const QString& extension);

}  // namespace dv
