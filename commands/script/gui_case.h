#pragma once
// The case command: writes the head of a case statement ("case <selector> of", a new one with its
// closing line) or one branch line ("select <value>:"), and rewrites the older forms of both.
#include "framework/runedit.h"

namespace dv {

enum class TCaseMode {
    Decoding = 0,  // only while an older line is read
    Head = 1,      // "Anweisung": the case head
    Branch = 2,    // "Fall": a branch line
};

struct TDVCmdCaseFields {
    QString selector;
    QString value;
    TCaseMode mode = TCaseMode::Head;
    bool operator==(const TDVCmdCaseFields&) const = default;
};

class TDVCmdCase : public TDVFieldsCommand<TDVRunEdit, TDVCmdCaseFields> {
public:
    TDVCmdCase();

    bool EditCommand(int x, int y, QString& text, QString& script) override;
    // An older head or branch line in the current form.
    QString RecodeScript(const QString& script, TDVScriptImporter* importer) override;
    // A new line starts as a head; selector and value keep their last texts.
    void SetDefaults() override { fields_.mode = TCaseMode::Head; }

    // A current line into the fields: a line beginning with "case" is a head, any other a branch.
    void ParseCase(const QString& line);
    // "case <selector> of" for a head, "select <value>:" otherwise.
    QString EncodeScript() const;
    // An older line into the fields: without ":" a head "case <selector> of", else a branch
    // "<value>:".
    void DecodeScript(const QString& line);
};

}  // namespace dv
