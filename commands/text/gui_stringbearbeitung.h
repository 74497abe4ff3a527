#pragma once
// StringBearbeitung: one input string through a fixed chain of optional steps (upper case, search,
// length, fragment, segment, rounding, trimming, overwriting, counting) into a string or number
// variable. Also reads the older "FormatStr(" line.
#include "framework/runedit.h"

#include <span>

namespace dv {

// Where a fragment is cut or deleted.
enum class TFragPosition { fpLeft, fpRight, fpCenter, Count };

struct TFragPositionRow {
    TFragPosition value;
    const char* keyword;       // written quoted into the FragPos parameter
    const char* olderKeyword;  // marker of the anchor in a "FormatStr(" line
    const char* caption;
    const char* control;
};
std::span<const TFragPositionRow> FragPositions();

// "CENTER" and "RIGHT" in any case and without quotes; anything else, empty included, is Left.
TFragPosition ParamToPosition(const QString& text);
// "\"Left\"", "\"Right\"", "\"Center\"", the double quotes part of the text.
QString GetPositionParam(TFragPosition position);

// Trim modes 1..3; 0 and any other code trims nothing.
enum class TTrimMode { None, Both, Left, Right, Count };

struct TTrimModeRow {
    TTrimMode value;
    int code;  // the TrimMode parameter
    const char* caption;
    const char* control;
};
// The modes that trim, in dialog order.
std::span<const TTrimModeRow> TrimModes();

// Which value the Output variable receives: the last step that chose one decides.
enum class TOutputKind { Number = 0, String = 1, Unset = 3 };

struct TStringResult {
    QString text;
    TOutputKind kind = TOutputKind::Unset;
};

struct TDVCmdStringConversionFields {
    QString separator;
    QString search;
    bool searchFlag = false;  // "Position": report where Search starts
    QString input;
    QString output;  // name of the target variable
    bool upperCase = false;
    bool strLen = false;
    bool fragment = false;
    bool cut = true;  // false: delete the fragment instead of keeping it
    QString pos = QStringLiteral("0");
    QString length = QStringLiteral("0");
    TFragPosition fragPos = TFragPosition::fpLeft;
    bool segment = false;
    QString part = QStringLiteral("0");
    bool convert = false;  // result as a number (a Boolean although the signature says Number)
    bool round = false;
    bool trim = false;
    int trimMode = 0;
    QString replaceWith;
    QString replacePos;
    bool replace = false;
    QString count;  // the characters to count
    bool countFlag = false;
    bool operator==(const TDVCmdStringConversionFields&) const = default;
};

class TDVCmdStringConversion : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdStringConversionFields> {
public:
    explicit TDVCmdStringConversion(TDVParser* parser);

    void SetDefaults() override;
    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override { return {QStringLiteral("FormatStr")}; }
    bool IsOlderLine(const QString& line) const override;
    QString GetDescription(const QString& name, const TParamList& params) override;
    void Run(TParamList& params) override;
    QString OnEditorTest() override;

    // Steps 1 and 3 to 12 of the run on the given fields; writes nothing.
    static TStringResult Process(const TFields& fields);

private:
    void Start();
};

}  // namespace dv
