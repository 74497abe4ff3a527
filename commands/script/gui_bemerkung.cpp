#include "commands/script/gui_bemerkung.h"

#include "commands/script/scriptlines.h"
#include "framework/editorform.h"

namespace dv {

QString CommentText(const QString& line)
{
    const qsizetype block = line.indexOf(QLatin1String("(*"));
    if (block >= 0) {
        const QString rest = line.mid(block + 2);
        return Cut(rest, 0, rest.indexOf(QLatin1String("*)"))).trimmed();
    }
    // Without "//" indexOf gives -1 and the text starts one character in.
    return line.mid(line.indexOf(QLatin1String("//")) + 2).trimmed();
}

TDVCmdComment::TDVCmdComment() : TDVFieldsCommand(DialogOf("TDVCmdComment")) {}

bool TDVCmdComment::EditCommand(int, int, QString&, QString& script)
{
    fields_.text = CommentText(script);
    if (!Form().ShowModal()) return false;
    script = QStringLiteral("// ") + fields_.text;
    return true;
}

QString TDVCmdComment::RecodeScript(const QString& script, TDVScriptImporter*) { return script.trimmed(); }

}  // namespace dv
