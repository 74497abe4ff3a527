#pragma once
// Script lines of library commands: the current line form written from a signature and a parameter
// list and read back, and the importer that turns lines in a command's older form into current ones.
//
// Current form: Procedure(Name := text, Name := text); every parameter of the list in list order,
// by name, each argument text without surrounding blanks; trailing parameters whose text equals
// their signature default are left out, and reading the line back restores them.
#include "framework/runedit.h"
#include "framework/values.h"

#include <QHash>

#include <optional>

namespace dv::host {

class TCommandPool;

QString WriteCommandLine(const TDVSignature& sig, const TParamList& params);
// The arguments of a current-form line (named or positional) into the list, then the defaults of
// the parameters it leaves out; false when the line is no call of sig's procedure.
bool ReadCommandLine(const QString& line, const TDVSignature& sig, TParamList& params);
// The argument texts between a call's parentheses, split at the commas outside quotes and brackets.
QStringList SplitArguments(const QString& text);
// A script with every line in a command's older form rewritten in the current form; other lines,
// and lines already in the current form, are kept byte for byte. A line that cannot be converted
// is kept with the comment "// nicht umgesetzt: <reason>" and a warning in warnings.
QString ConvertScript(const QString& text, TCommandPool& commands, QStringList* warnings = nullptr);

}  // namespace dv::host

namespace dv {

// The host's importer, handed to the commands' RecodeScript and DecodeScript. It reads a script in
// two steps: first each structure command recodes the whole text (its block lines), then every
// line that the current grammar cannot read and whose first word is a command's name or older name
// goes to that command's DecodeScript, and the fields it decoded become the current line.
class TDVScriptImporter {
public:
    explicit TDVScriptImporter(host::TCommandPool& commands) : commands_(commands) {}

    QString Convert(const QString& text);
    // One "Zeile N: nicht umgesetzt: reason" per line the last Convert kept unconverted.
    const QStringList& Warnings() const { return warnings_; }
    // The kind of a variable the script declares (any case); nullopt when it declares none.
    std::optional<TValueKind> DeclaredKind(const QString& name) const;

private:
    struct TConverted {
        std::optional<QString> statement;  // the statement in the current form
        QString reason;                    // else why it cannot be converted
    };
    TConverted ConvertStatement(const QString& statement, TDVThreadRunEdit& command);
    std::optional<QString> CurrentArgument(const TDVParamDecl& decl, const QString& text) const;
    bool IsOlderLine(const QString& statement, TDVThreadRunEdit& command);
    bool VarKindsClash(const QString& statement, TDVThreadRunEdit& command) const;
    // The parse error of a statement read after declarations of names, or nullopt when it reads.
    std::optional<QString> ParseError(const QString& statement, const QStringList& names);
    TDVThreadRunEdit* CommandFor(const QString& word);

    host::TCommandPool& commands_;
    QHash<QString, TValueKind> declared_;  // by lower-case name
    QStringList warnings_;
};

}  // namespace dv
