#pragma once
// Script lines of library commands: the current line form written from a signature and a parameter
// list and read back, and the importer that turns lines in a command's older form into current ones.
//
// Current form: Procedure(Name := text, Name := text); every parameter of the list in list order,
// by name, each argument text without surrounding blanks; trailing parameters whose text equals
// their signature default are left out, and reading the line back restores them.
#include "framework/runedit.h"
#include "framework/values.h"
#include "host/scriptlines.h"

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
// and lines already in the current form, are kept byte for byte. A line that cannot be converted,
// and a command call the current grammar cannot read either, is kept with the comment
// "// nicht umgesetzt: <reason>" and a warning "source:line: nicht umgesetzt: <reason>" in
// warnings ("Zeile line: ..." without a source).
QString ConvertScript(const QString& text, TCommandPool& commands, QStringList* warnings = nullptr,
                      const QString& source = {});

}  // namespace dv::host

namespace dv {

// The host's importer, handed to the commands' RecodeScript and DecodeScript. It reads a script in
// two steps: first each structure command recodes its block lines that are in an older form, then
// every command call that the current grammar cannot read (a call spread over several lines is
// read as one) and that has its command's older form goes to that command's DecodeScript, and the
// fields it decoded become the current line.
class TDVScriptImporter {
public:
    explicit TDVScriptImporter(host::TCommandPool& commands, QString source = {})
        : commands_(commands), source_(std::move(source)) {}

    QString Convert(const QString& text);
    // One warning per line the last Convert kept unconverted.
    const QStringList& Warnings() const { return warnings_; }
    // The kind of a variable the script declares (any case); nullopt when it declares none.
    std::optional<TValueKind> DeclaredKind(const QString& name) const;

private:
    struct TConverted {
        std::optional<QString> statement;  // the statement in the current form
        QString reason;                    // else why it cannot be converted
    };
    // Looks at the call on lines first .. first + count - 1; returns how many lines it took.
    qsizetype Examine(QStringList& lines, qsizetype first, qsizetype count, TDVThreadRunEdit& command);
    void Rewrite(QStringList& lines, qsizetype index, TDVThreadRunEdit& command);
    void Keep(QStringList& lines, qsizetype index, const QString& reason);
    TConverted ConvertStatement(const QString& statement, TDVThreadRunEdit& command);
    std::optional<QString> CurrentArgument(const TDVParamDecl& decl, const QString& text, bool evaluated);
    bool VarKindsClash(const QString& statement, TDVThreadRunEdit& command) const;
    // The words of a statement that name variables (all, or only those the script declares);
    // nullopt when the statement cannot even be split into words.
    std::optional<QStringList> VariableWords(const QString& statement, bool declaredOnly) const;
    // The parse error of a statement read after declarations of names, the statement standing on
    // the script's line index line; nullopt when it reads.
    std::optional<QString> ParseError(const QString& statement, const QStringList& names, qsizetype line = 0);
    bool Reads(const QString& statement, bool declaredOnly);
    TDVThreadRunEdit* CommandFor(const QString& statement) const;

    host::TCommandPool& commands_;
    QString source_;
    host::TScriptNames names_;
    QStringList warnings_;
};

}  // namespace dv
