#pragma once
// ArrayToStr: joins an array of characters or character codes (Windows-1252) into a string variable.
#include "framework/runedit.h"

namespace dv {

class TDVCmdArrayToString : public TDVFuncRunEdit {
public:
    struct TFields {
        QString str;  // name of the target string variable
        QString arr;  // the array's text
        bool operator==(const TFields&) const = default;
    };

    explicit TDVCmdArrayToString(TDVParser* parser);

    const TFields& Fields() const { return fields_; }
    void SetFields(const TFields& fields) { fields_ = fields; }

    void SetDefaults() override { fields_ = TFields{}; }
    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override { return {QStringLiteral("ArrayToStr")}; }
    QString GetDescription(const QString& name, const TParamList& params) override;
    void Run(TParamList& params) override;

    // The joined text of an array literal; raises the invalid-cast error for any other text.
    static QString Join(const QString& arrayText);

private:
    TFields fields_;
};

}  // namespace dv
