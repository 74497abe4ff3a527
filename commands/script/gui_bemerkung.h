#pragma once
// The comment command: turns a script line into the text of a one-line comment and back. It has no
// signature and no run-time body; it only writes the line in the editor.
#include "framework/runedit.h"

namespace dv {

struct TDVCmdCommentFields {
    QString text;
    bool operator==(const TDVCmdCommentFields&) const = default;
};

// The comment text of a script line: inside the first "(* .. *)" (empty when it is not closed),
// else after the first "//". A line without "//" is read from its second character on, as the
// editor always did.
QString CommentText(const QString& line);

class TDVCmdComment : public TDVFieldsCommand<TDVRunEdit, TDVCmdCommentFields> {
public:
    TDVCmdComment();

    // script: the line in, "// " + the confirmed text out; unchanged when cancelled.
    bool EditCommand(int x, int y, QString& text, QString& script) override;
    QString RecodeScript(const QString& script, TDVScriptImporter* importer) override;
};

}  // namespace dv
