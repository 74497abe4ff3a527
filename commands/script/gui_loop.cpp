#include "commands/script/gui_loop.h"

#include "commands/script/scriptlines.h"
#include "framework/dvtools.h"
#include "framework/editorform.h"
#include "framework/scanner.h"
#include "framework/translate.h"

namespace dv {

namespace {

// The source texts of the tokens up to (not including) the next token of type stop, joined
// without separators.
QString JoinTokensUpTo(TScanner& scanner, TTokenType stop)
{
    QString joined;
    while (scanner.LookAhead().type != stop && scanner.LookAhead().type != TTokenType::EndOfText) {
        const TToken t = scanner.GetNextToken();
        joined += scanner.Script().mid(t.offset, t.length);
    }
    return joined;
}

}  // namespace

TDVCmdLoop::TDVCmdLoop() : TDVFieldsCommand(DialogOf("TDVCmdLoop")) {}

void TDVCmdLoop::ParseForLoop(TScanner& scanner)
{
    scanner.Require(TTokenType::kwFor);
    const QString name = scanner.Require(TTokenType::Identifier).text;
    scanner.Require(TTokenType::Assignment);
    const QString start = JoinTokensUpTo(scanner, TTokenType::kwTo);
    scanner.Require(TTokenType::kwTo);
    const QString end = JoinTokensUpTo(scanner, TTokenType::kwDo);
    scanner.Require(TTokenType::kwDo);
    fields_.type = TLoopType::For;
    fields_.loopVarName = name;
    fields_.startValue = start.trimmed();
    fields_.endValue = end.trimmed();
}

void TDVCmdLoop::ParseWhileLoop(const QString& line)
{
    const QString lower = line.toLower();
    const qsizetype doPos = RPos(QStringLiteral("do"), lower) - 1;
    if (doPos < 0) throw TDravikException(_("\"do\" erwartet aber nicht gefunden."));
    const qsizetype afterWhile = lower.indexOf(QLatin1String("while")) + 5;
    fields_.type = TLoopType::While;
    fields_.whileCondition = Cut(line, afterWhile, doPos);
}

void TDVCmdLoop::ParseRepeatLoop(const QString& line)
{
    QString rest = line;
    const qsizetype until = rest.indexOf(QLatin1String("until"), 0, Qt::CaseInsensitive);
    if (until >= 0) rest.remove(until, 5);
    const qsizetype semicolon = rest.lastIndexOf(';');
    if (semicolon >= 0) rest.remove(semicolon, 1);
    fields_.type = TLoopType::Repeat;
    fields_.repeatCondition = rest.trimmed();
}

bool TDVCmdLoop::ParseLine(const QString& line)
{
    TScanner scanner;
    TTokenType first = TTokenType::EndOfText;
    const auto reportingFailures = [](auto parse) {
        try {
            parse();
        } catch (const TDravikException& e) {
            throw TDravikException(Format(_("Die Kommandozeile konnte nicht geparst werden: %s"), {e.Message()}));
        }
    };
    reportingFailures([&] {
        scanner.SetScript(line, 0);
        first = scanner.LookAhead().type;
    });
    if (first == TTokenType::kwEnd) {
        Form().ShowMessage(_("Sie können das Ende einer For- oder While-schleife nicht editieren, editieren Sie "
                             "stattdessen den Schleifenkopf."));
        return false;
    }
    if (first == TTokenType::kwRepeat) {
        Form().ShowMessage(_("Eine Repeat-Anweisung kann nicht editiert werden. Bitte editieren Sie die "
                             "abschliessende Until-Anweisung."));
        return false;
    }
    reportingFailures([&] {
        switch (first) {
        case TTokenType::kwWhile: ParseWhileLoop(line); break;
        case TTokenType::kwUntil: ParseRepeatLoop(line); break;
        case TTokenType::kwFor: ParseForLoop(scanner); break;
        default: throw TDravikException(_("Fehler beim Parsen der Kommandozeile: for, while oder repeat erwartet"));
        }
    });
    return true;
}

bool TDVCmdLoop::EditCommand(int, int, QString&, QString& script)
{
    const bool isNew = IsNewLine(script);
    if (!isNew && !ParseLine(script)) return false;
    if (!Form().ShowModal()) return false;
    script = EncodeScript(isNew);
    return true;
}

QString TDVCmdLoop::RecodeScript(const QString& script, TDVScriptImporter*) { return script.trimmed(); }

QString TDVCmdLoop::EncodeScript(bool isNew) const
{
    switch (fields_.type) {
    case TLoopType::For: {
        const QString head = Format(QStringLiteral("for %s := %s to %s do"), {fields_.loopVarName, fields_.startValue, fields_.endValue});
        return isNew ? head + kLineBreak + QStringLiteral("93:end for") : head;
    }
    case TLoopType::While: {
        const QString head = Format(QStringLiteral("while %s do"), {fields_.whileCondition});
        return isNew ? head + kLineBreak + QStringLiteral("93:end while") : head;
    }
    case TLoopType::Repeat: {
        const QString until = Format(QStringLiteral("until %s;"), {fields_.repeatCondition});
        return isNew ? QStringLiteral("repeat") + kLineBreak + QStringLiteral("93:") + until : until;
    }
    }
    return {};
}

}  // namespace dv
