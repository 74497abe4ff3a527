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
    bool IsOlderLine(const QString& line) const override;
    QString GetDescription(const QString& name, const TParamList& params) override;
    void Run(TParamList& params) override;

    // The joined text of an array's elements 1..N: a string element its text, a number the
    // Windows-1252 character of its rounded code, anything else nothing. Raises the invalid-cast
    // error for a value that is no array.
    static QString Join(const TValue& array);
};

}  // namespace dv
