#include "commands/script/gui_case.h"

#include "commands/script/scriptlines.h"
#include "framework/editorform.h"
#include "framework/translate.h"

namespace dv {

TDVCmdCase::TDVCmdCase() : TDVFieldsCommand(DialogOf("TDVCmdCase")) {}

void TDVCmdCase::ParseCase(const QString& line)
{
    if (FirstToken(line) == TTokenType::kwCase) {
        fields_.selector = Between(line, QLatin1String("case"), QLatin1String("of"));
        fields_.mode = TCaseMode::Head;
    } else {
        fields_.value = Between(line, QLatin1String("select"), QLatin1String(":"));
        fields_.mode = TCaseMode::Branch;
    }
}

QString TDVCmdCase::EncodeScript() const
{
    if (fields_.mode == TCaseMode::Head) return Format(QStringLiteral("case %s of"), {fields_.selector});
    return Format(QStringLiteral("select %s:"), {fields_.value});
}

void TDVCmdCase::DecodeScript(const QString& line)
{
    fields_.mode = TCaseMode::Decoding;
    const QString text = line.trimmed();
    const qsizetype colon = text.indexOf(':');
    if (colon < 0) {
        // The words "case" and "of" around the selector.
        fields_.selector = Cut(text, 4, text.size() - 2).trimmed();
        fields_.mode = TCaseMode::Head;
    } else {
        fields_.value = text.left(colon);
        fields_.mode = TCaseMode::Branch;
    }
}

bool TDVCmdCase::EditCommand(int, int, QString&, QString& script)
{
    const bool isNew = IsNewLine(script);
    if (!isNew) ParseCase(script);
    if (!Form().ShowModal()) return false;
    script = EncodeScript();
    if (isNew && fields_.mode == TCaseMode::Head) script += kLineBreak + QStringLiteral("631:end case");
    return true;
}

QString TDVCmdCase::RecodeScript(const QString& script, TDVScriptImporter*)
{
    DecodeScript(script);
    return EncodeScript();
}

}  // namespace dv
