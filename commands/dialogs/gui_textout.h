#pragma once
// TextOut: writes one text in a chosen font, size, colour and style to the host's text output.
#include "framework/runedit.h"

#include <span>

namespace dv {

enum class TFontStyle { Bold, Italic, Underline, StrikeOut, Count };

struct TFontStyleRow {
    TFontStyle value;
    const char* keyword;  // looked for in the style text, in any case
    const char* rebuilt;  // the word the font button writes back
    int bit;              // style bit of the output call
};
// Bold, italic, underline, strike-out in this order.
std::span<const TFontStyleRow> FontStyles();

// The style bits of a style text: each keyword found anywhere in it, in any case, adds its bit.
int StyleBits(const QString& styleText);
// The style text the font button writes for a chosen font: the words in reverse order, each with
// its trailing blank, joined by " + " (bold and italic give "Italic  + bold ").
QString BuildStyleText(bool bold, bool italic, bool underline, bool strikeOut);

struct TDVCmdTextOutFields {
    QString text;
    QString font;  // empty: the host's default font
    QString size = QStringLiteral("10");
    QString colour = QStringLiteral("0");  // colour number, 0x00BBGGRR
    QString style;
    bool formFeed = false;  // kept and written back; the output ignores it
    bool operator==(const TDVCmdTextOutFields&) const = default;
};

class TDVCmdTextOut : public TDVFieldsCommand<TDVFuncRunEdit, TDVCmdTextOutFields> {
public:
    explicit TDVCmdTextOut(TDVParser* parser);

    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    QStringList OlderNames() const override { return {QStringLiteral("TextOut")}; }
    bool IsOlderLine(const QString& line) const override;
    QString GetDescription(const QString& name, const TParamList& params) override;
    void Run(TParamList& params) override;
};

}  // namespace dv
