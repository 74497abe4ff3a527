#pragma once
// ArrayToStr: joins an array of characters or character codes (Windows-1252) into a string variable.
#include "framework/runedit.h"

namespace dv {

struct TDVCmdArrayToStringFields {
    QString str;  // name of the target string variable
    QString arr;  // the array's text
    bool operator==(const TDVCmdArrayToStringFields&) const = default;
};

class TDVCmdArrayToString : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdArrayToStringFields> {
public:
    explicit TDVCmdArrayToString(TDVParser* parser);

    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override { return {QStringLiteral("ArrayToStr")}; }
    QString GetDescription(const QString& name, const TParamList& params) override;
    void Run(TParamList& params) override;

    // The joined text of an array literal; raises the invalid-cast error for any other text.
    static QString Join(const QString& arrayText);
};

}  // namespace dv
