#pragma once
// StrToArray: splits a string into an existing array variable, one element per character, as
// characters or as Windows-1252 codes depending on the array's element type.
#include "framework/runedit.h"

namespace dv {

struct TDVCmdStringToArrayFields {
    QString str;  // the string's text
    QString arr;  // name of the target array variable
    bool operator==(const TDVCmdStringToArrayFields&) const = default;
};

class TDVCmdStringToArray : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdStringToArrayFields> {
public:
    explicit TDVCmdStringToArray(TDVParser* parser);

    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override { return {QStringLiteral("StrToArray")}; }
    bool IsOlderLine(const QString& line) const override;
    void Run(TParamList& params) override;

private:
    void Start();
};

}  // namespace dv
