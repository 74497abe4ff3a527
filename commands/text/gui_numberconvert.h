#pragma once
// NumberConvert: one input through one of thirteen conversions (binary, hexadecimal, random,
// character codes, array size and sum, byte halves, rounding, 4-byte hex to float) into a variable.
#include "framework/runedit.h"

#include <cstdint>
#include <span>

namespace dv {

// Operation numbers as the dialog and the older lines count them; 14 stands for an older keyword
// that matched none and runs nothing.
enum class TNumberOperation : int {
    ccBinToInt = 1,
    ccIntToBin,
    ccIntToHex,
    ccHexToInt,
    ccRandom,
    ccOrd,
    ccASCII,
    ccMaxArrayEntry,
    ccHigh,
    ccLow,
    ccRound,
    cc4ByteHexToFloat,
    ccSumOfArray,
    ccUnknown,
};

struct TNumberOperationRow {
    TNumberOperation value;
    const char* keyword;       // the Operation parameter
    const char* olderKeyword;  // procedure name of the older line
    const char* caption;       // radio button
    bool stringResult;
    bool usesDigits;  // shows the Stellen controls
};
// Operations 1..13 in order.
std::span<const TNumberOperationRow> NumberOperations();
const TNumberOperationRow& OperationRow(int operation);  // limited to 1..13

// Keyword (exact, case-sensitive) to operation; no match is ccBinToInt.
int SetOperation(const QString& keyword);
QString GetOperationString(int operation);

struct TDVCmdNumberConversionFields {
    int operation = 1;
    QString input;
    QString output;  // name of the target variable
    std::uint8_t digits = 2;  // Stellen, kept in 8 bits as the dialog always kept it
    bool operator==(const TDVCmdNumberConversionFields&) const = default;
};

class TDVCmdNumberConversion : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdNumberConversionFields> {
public:
    explicit TDVCmdNumberConversion(TDVParser* parser);

    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override;
    bool IsOlderLine(const QString& line) const override;
    bool EvaluatesText(const TParamList& params, const QString& name) const override;
    QString GetDescription(const QString& name, const TParamList& params) override;
    void Run(TParamList& params) override;

    // The result of the operation on the fields; "Input" is evaluated from params for the array
    // operations. nullptr for an operation outside 1..13.
    static TValuePtr Convert(const TFields& fields, const TParamList& params);
};

}  // namespace dv
