#include "scope/scopeedit.h"

#include "framework/editorform.h"
#include "framework/exceptions.h"
#include "framework/translate.h"
#include "scope/gui_scope.h"

namespace dv::scope {

namespace {

std::function<void(const TDecodedSettings&)> g_fillHook;

bool IsQuoted(const QString& text) { return text.size() >= 2 && text.startsWith('"') && text.endsWith('"'); }

// One string literal: inside its outer quotes every quote is doubled.
bool IsStringLiteral(const QString& text)
{
    if (!IsQuoted(text)) return false;
    for (qsizetype i = 1; i < text.size() - 1; ++i) {
        if (text[i] != '"') continue;
        if (i + 1 >= text.size() - 1 || text[i + 1] != '"') return false;
        ++i;
    }
    return true;
}

}  // namespace

void SetEditorFillHook(std::function<void(const TDecodedSettings&)> hook) { g_fillHook = std::move(hook); }

void FillEditor(const TDecodedSettings& settings)
{
    if (g_fillHook) g_fillHook(settings);
}

QString ArgumentText(const QString& argument)
{
    const QString text = argument.trimmed();
    if (IsStringLiteral(text)) return text.mid(1, text.size() - 2).replace(QStringLiteral("\"\""), QStringLiteral("\""));
    if (IsQuoted(text)) return text.mid(1, text.size() - 2);
    return text;
}

QString ArgumentOf(const QString& text, const QString& formerArgument)
{
    const QString former = formerArgument.trimmed();
    if (IsQuoted(former) && !IsStringLiteral(former)) return '"' + text + '"';
    return '"' + QString(text).replace('"', QStringLiteral("\"\"")) + '"';
}

QString CommandTags(const QString& command)
{
    QString tags = command;
    if (tags.startsWith(QLatin1String("Scope("))) tags.remove(0, 6);
    if (tags.endsWith(QLatin1String(");"))) tags.chop(2);
    return tags;
}

}  // namespace dv::scope

namespace dv {

bool TDVCmdScope::EditCommand(int, int, QString& text, QString& script)
{
    auto* editor = dynamic_cast<scope::IScopeEditor*>(&Form());
    if (!editor) throw TDravikException(Format(_("Für diesen Befehl gibt es keinen Dialog %s"), {FormClass()}));
    return editor->Edit(script, text);
}

bool TDVCmdScope::Edit(TParamList& params)
{
    const QString commandArgument = params.GetString(QStringLiteral("Command"));
    const QString specialArgument = params.GetString(QStringLiteral("Special"));
    QString command = scope::ArgumentText(commandArgument);
    QString special = scope::ArgumentText(specialArgument);
    if (!EditCommand(0, 0, special, command)) return false;
    params.Clear();
    params.AddString(QStringLiteral("Command"), scope::ArgumentOf(scope::CommandTags(command), commandArgument));
    params.AddString(QStringLiteral("Special"), scope::ArgumentOf(special, specialArgument));
    return true;
}

void TDVCmdScope::SetDefaults()
{
    // A new call opens on an editor at the reset values; the scope's kept colours and scales stay.
    scope::TDecodedSettings fresh = scope::ScopeSettings();
    fresh.ResetForDecode();
    scope::FillEditor(fresh);
}

}  // namespace dv
