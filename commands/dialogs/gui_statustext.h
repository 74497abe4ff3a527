#pragma once
// StatusText: hands one text to the host's status line.
#include "framework/runedit.h"

namespace dv {

struct TDVCmdStatusBarFields {
    QString text;
    bool operator==(const TDVCmdStatusBarFields&) const = default;
};

class TDVCmdStatusBar : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdStatusBarFields> {
public:
    explicit TDVCmdStatusBar(TDVParser* parser);

    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override { return {QStringLiteral("StatusBar")}; }
    bool IsOlderLine(const QString& line) const override;
    QString GetDescription(const QString& name, const TParamList& params) override;
    void Run(TParamList& params) override;
    // The test handler: runs the body on the fields; the text the status line got.
    QString OnEditorTest() override;

private:
    QString result_;  // the text last handed to the status line
};

// The dialog's own script writer: "StatusBar(" + text + ");", nothing for an empty text. The
// procedure itself is called StatusText; both names stay as the scripts know them.
QString StatusBarLine(const QString& text);

}  // namespace dv
