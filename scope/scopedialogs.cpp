#include "scope/scopedialogs.h"

#include "framework/headless.h"
#include "framework/services.h"
#include "framework/systemlog.h"
#include "framework/translate.h"

#include <atomic>

namespace dv::scope {

namespace {
const QString kProcedure = QStringLiteral("Scope");
std::atomic<IScopeDialogs*> g_installed{nullptr};
}  // namespace

TErrorAnswer THeadlessScopeDialogs::ShowExecutionError(const QString& text)
{
    const std::optional<QString> answer = TakeHeadlessAnswer(kProcedure);
    if (answer && answer->compare(QLatin1String("Ignorieren"), Qt::CaseInsensitive) == 0) {
        SystemLog.Warn(text + QStringLiteral(" (Ignorieren)"));
        return TErrorAnswer::Ignore;
    }
    SystemLog.Warn(text + QStringLiteral(" (Abbrechen)"));
    return TErrorAnswer::Cancel;
}

void THeadlessScopeDialogs::ShowDecodeError(const QString& text) { SystemLog.Warn(text); }

void THeadlessScopeDialogs::ShowCancelError(const QString& text) { SystemLog.Warn(text + QStringLiteral(" (Abbrechen)")); }

void THeadlessScopeDialogs::ShowInformation(const QString& text) { SystemLog.Warn(text); }

bool THeadlessScopeDialogs::BeginWait()
{
    const std::optional<QString> answer = TakeHeadlessAnswer(kProcedure);
    if (answer && answer->compare(QLatin1String("Weiter"), Qt::CaseInsensitive) == 0) {
        SystemLog.Warn(_("Scope: Weiter (Antwort ohne Oberfläche)"));
    } else {
        SystemLog.Warn(_("Scope: ohne Oberfläche und ohne Antwort \"Weiter\" wird nicht gewartet"));
    }
    return false;
}

IScopeDialogs& ScopeDialogs()
{
    static THeadlessScopeDialogs headless;
    IScopeDialogs* installed = g_installed.load();
    return installed ? *installed : headless;
}

void SetScopeDialogs(IScopeDialogs* dialogs) { g_installed.store(dialogs); }

TErrorAnswer ReportExecutionFault(const QString& text)
{
    const TErrorAnswer answer = ScopeDialogs().ShowExecutionError(text);
    if (answer == TErrorAnswer::Cancel) TestEnvironment().StopTest();
    return answer;
}

}  // namespace dv::scope
