#pragma once
// The loop command: writes a counting, pre-tested or post-tested loop, a new one with its closing
// line, and re-reads the head (or until line) of an existing one. The loop itself is the
// interpreter's.
#include "framework/runedit.h"

namespace dv {

class TScanner;

// The three loop kinds, valued as the tags of their radio buttons.
enum class TLoopType {
    For = 1,     // for <var> := <start> to <end> do .. end for
    While = 2,   // while <condition> do .. end while
    Repeat = 3,  // repeat .. until <condition>;
};

struct TDVCmdLoopFields {
    TLoopType type = TLoopType::For;
    QString loopVarName;
    QString startValue;
    QString endValue;
    QString whileCondition;
    QString repeatCondition;
    bool operator==(const TDVCmdLoopFields&) const = default;
};

class TDVCmdLoop : public TDVFieldsCommand<TDVRunEdit, TDVCmdLoopFields> {
public:
    TDVCmdLoop();

    // script: the edited line in, the new line(s) out. The closing "end" line and the "repeat" line
    // of a loop are refused with a message; a line that is no loop head raises TDravikException.
    bool EditCommand(int x, int y, QString& text, QString& script) override;
    QString RecodeScript(const QString& script, TDVScriptImporter* importer) override;

    // The line of the selected kind; isNew adds the loop's other line after (or before) it.
    QString EncodeScript(bool isNew) const;
    // for <name> := <tokens> to <tokens> do: the tokens of each bound joined without blanks.
    void ParseForLoop(TScanner& scanner);
    // The condition between the first "while" and the last "do", blanks kept.
    void ParseWhileLoop(const QString& line);
    // The line without its first "until" and its last ";".
    void ParseRepeatLoop(const QString& line);

private:
    // Reads an existing line into the fields; false when it is refused (a message was shown).
    bool ParseLine(const QString& line);
};

}  // namespace dv
