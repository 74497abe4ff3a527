#include "commands/dialogs/operatordialogs.h"

#include "framework/exceptions.h"
#include "framework/headless.h"
#include "framework/translate.h"

#include <atomic>

namespace dv {

namespace {
std::atomic<IDVOperatorDialogs*> g_dialogs{nullptr};
}  // namespace

void SetOperatorDialogs(IDVOperatorDialogs* dialogs) { g_dialogs = dialogs; }

IDVOperatorDialogs* OperatorDialogs() { return HasGui() ? g_dialogs.load() : nullptr; }

QString RequiredHeadlessAnswer(const QString& procedure, const QString& example)
{
    if (std::optional<QString> answer = TakeHeadlessAnswer(procedure)) return *answer;
    throw TDravikException(Format(_("%s: ohne Oberfläche braucht der Befehl eine Antwort: dvrun --answer %s=%s"),
                                  {procedure, procedure, example}));
}

}  // namespace dv
