#include "commands/dialogs/operatordialogs.h"

#include "framework/exceptions.h"
#include "framework/headless.h"
#include "framework/services.h"
#include "framework/translate.h"

#include <atomic>

namespace dv {

namespace {
std::atomic<IDVOperatorDialogs*> g_dialogs{nullptr};
}  // namespace

void SetOperatorDialogs(IDVOperatorDialogs* dialogs) { g_dialogs = dialogs; }

IDVOperatorDialogs* OperatorDialogs() { return HasGui() ? g_dialogs.load() : nullptr; }

void RequireTextVariable(const QString& procedure, const QString& parameter, const QString& name)
{
    TDVVariable* variable = VarAccess().FindVariable(name);
    if (!variable) throw TDVRuntimeException(Format(_("Der Bezeichner \"%s\" wurde nicht als Variable deklariert!"), {name}));
    const TValueKind kind = variable->GetType().kind;
    if (kind == TValueKind::String || kind == TValueKind::Misc) return;
    const char* typeName = kind == TValueKind::Number ? "Number" : kind == TValueKind::Boolean ? "Boolean" : "Array";
    throw TDVRuntimeException(Format(_("%s: %s: die Variable \"%s\" vom Typ %s nimmt keinen Text auf"),
                                     {procedure, parameter, variable->GetName(), QLatin1String(typeName)}));
}

QString RequiredHeadlessAnswer(const QString& procedure, const QString& example)
{
    if (std::optional<QString> answer = TakeHeadlessAnswer(procedure)) return *answer;
    throw TDravikException(Format(_("%s: ohne Oberfläche braucht der Befehl eine Antwort: dvrun --answer %s=%s"),
                                  {procedure, procedure, example}));
}

}  // namespace dv
