#include "commands/system/gui_exec.h"

#include "commands/system/platform_process.h"
#include "framework/intconvert.h"
#include "framework/olderline.h"
#include "framework/parser.h"
#include "framework/systemlog.h"
#include "framework/dvtools.h"
#include "framework/exceptions.h"
#include "framework/services.h"
#include "framework/synchronize.h"
#include "framework/translate.h"

#include <QDir>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPointer>
#include <QWindow>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <vector>

namespace dv {

namespace {

const QString kExePath = QStringLiteral("ExePath");
const QString kParams = QStringLiteral("Params");
const QString kWorkDir = QStringLiteral("WorkDir");
const QString kReturn = QStringLiteral("Return");
const QString kTimeOut = QStringLiteral("TimeOut");
const QString kHide = QStringLiteral("Hide");
const QString kDelay = QStringLiteral("Delay");
const QString kMinimized = QStringLiteral("Minimized");
const QString kKill = QStringLiteral("Kill");

std::atomic<std::int32_t> g_lastResult{0};

QString BoolText(bool b) { return b ? QStringLiteral("True") : QStringLiteral("False"); }

// A number parameter; an absent one takes its default 0, any value but a number is refused.
long double NumberParam(const TParamList& params, const QString& name)
{
    if (!params.Contains(name)) return 0;
    const TValuePtr value = params.GetValue(name);
    const auto* number = dynamic_cast<const TNumberValue*>(value.get());
    if (!number) throw TDVRuntimeException(Format(_("Ungültige Typumwandlung: %s ist keine Zahl"), {name}));
    return number->GetVal();
}

// Minimises the host's windows for the time of a run and restores them afterwards, also when the
// run ends by an exception. Does nothing without a GUI.
class THostHider {
public:
    explicit THostHider(bool active)
    {
        if (!active || !qobject_cast<QGuiApplication*>(QCoreApplication::instance())) return;
        Synchronize([this] {
            for (QWindow* w : QGuiApplication::topLevelWindows()) {
                if (!w->isVisible() || w->windowState() == Qt::WindowMinimized) continue;
                w->showMinimized();
                hidden_.emplace_back(w);
            }
        });
    }
    ~THostHider()
    {
        if (hidden_.empty()) return;
        try {
            Synchronize([this] {
                for (const QPointer<QWindow>& w : hidden_) {
                    if (w) w->showNormal();
                }
            });
        } catch (...) {
            // Restoring is best effort; the run's own outcome matters more.
        }
    }
    THostHider(const THostHider&) = delete;
    THostHider& operator=(const THostHider&) = delete;

private:
    std::vector<QPointer<QWindow>> hidden_;
};

// What a failed start names: the command line, the program as it was looked for and the working
// directory it was to run in.
struct TStartAttempt {
    QString commandLine;
    QString program;
    QString workDir;
};

[[noreturn]] void StartFailed(const TStartAttempt& attempt, const QString& error)
{
    const QString dir = attempt.workDir.isEmpty() ? QDir::currentPath() : attempt.workDir;
    throw TDVRuntimeException(Format(_("Das Programm konnte nicht gestartet werden.\nBefehlszeile: %s\nProgramm: %s\n"
                                       "Arbeitsverzeichnis: %s\nFehler: %s"),
                                     {attempt.commandLine, attempt.program, dir, error}));
}

}  // namespace

std::uint32_t ExecWaitLimitMs(long double timeOutSeconds, long double delaySeconds)
{
    const long double ms = std::nearbyint((timeOutSeconds + delaySeconds) * 1000.0L);  // half to even
    if (!std::isfinite(ms)) return 0xFFFFFFFFu;
    const long double bounded = std::clamp(ms, -9.2e18L, 9.2e18L);
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(bounded));
}

std::int32_t ExecResultOf(int exitCode) { return exitCode == 0 ? 0 : exitCode - 65536; }

QString ExecDefaultWorkDir(const QString& exePath) { return exePath.left(exePath.lastIndexOf('/') + 1); }

QString ExecCommandLine(const QString& exePath, const QString& params)
{
    return params.isEmpty() ? exePath : exePath + ' ' + params;
}

TDVCmdStartEXE::TDVCmdStartEXE(TDVParser* parser) : TDVFieldsCommand("TDVCmdStartEXE", parser) {}

std::int32_t TDVCmdStartEXE::LastResult() { return g_lastResult.load(); }

void TDVCmdStartEXE::SetParams(const TParamList& params)
{
    fields_.exePath = params.GetString(kExePath);
    fields_.params = params.GetString(kParams);
    fields_.workDir = params.GetString(kWorkDir);
    fields_.returnVar = params.GetString(kReturn);
    const int seconds = TryStrToInt(params.GetString(kTimeOut)).value_or(0) + TryStrToInt(params.GetString(kDelay)).value_or(0);
    fields_.timeOut = std::clamp(seconds, -1, 32000);
    fields_.waitForExit = seconds != 0;
    fields_.hide = StrToBoolEx(params.GetString(kHide), false);
    fields_.minimized = StrToBoolEx(params.GetString(kMinimized), false);
    fields_.kill = StrToBoolEx(params.GetString(kKill), false);
}

void TDVCmdStartEXE::ReadParams(TParamList& params)
{
    params.AddString(kExePath, fields_.exePath);
    params.AddString(kParams, fields_.params);
    params.AddString(kWorkDir, fields_.workDir);
    params.AddString(kReturn, fields_.returnVar);
    if (fields_.waitForExit) params.AddString(kTimeOut, QString::number(fields_.timeOut));
    params.AddString(kHide, BoolText(fields_.hide));
    params.AddString(kMinimized, BoolText(fields_.minimized));
    params.AddString(kKill, BoolText(fields_.kill));
}

// Exec(prog,Param:args,Pfad:dir,Result:R,TimeOut:5,V:False);delay;
bool TDVCmdStartEXE::IsOlderLine(const QString& line) const
{
    return BeginsWithCall(line, {QStringLiteral("Exec")}) &&
           ContainsAny(OutsideStrings(line), {",Param:", ",Pfad:", ",Result:", ",TimeOut:", ",V:"});
}

bool TDVCmdStartEXE::DecodeScript(const QString& script, TParamList& params, TDVScriptImporter*)
{
    const auto part = [&script](const char* start, const char* stop) {
        return GetStrPart(QLatin1String(start), QLatin1String(stop), script);
    };
    params.AddString(kExePath, part("(", ","));
    params.AddString(kParams, part(",Param:", ","));
    params.AddString(kWorkDir, part(",Pfad:", ","));
    params.AddString(kReturn, part(",Result:", ","));
    if (const QString t = part(",TimeOut:", ","); !t.isEmpty()) params.AddString(kTimeOut, t);
    params.AddString(kHide, part(",V:", ")"));
    if (const QString d = part(");", ";"); !d.isEmpty()) params.AddString(kDelay, d);
    SetParams(params);
    return true;
}

void TDVCmdStartEXE::RunThreaded(TParamList& params)
{
    const QString exePath = ResolveProjectPath(params.GetString(kExePath));
    QString workDir = ResolveProjectPath(params.GetString(kWorkDir));
    const bool hide = StrToBoolEx(params.GetString(kHide), false);
    // Minimized has no counterpart: a started program opens its windows as it likes.
    const bool kill = StrToBoolEx(params.GetString(kKill), false);
    const std::uint32_t limitMs = ExecWaitLimitMs(NumberParam(params, kTimeOut), NumberParam(params, kDelay));
    if (workDir.isEmpty()) {
        workDir = ExecDefaultWorkDir(exePath);
        // The path part of a quoted ExePath begins with its quote, which belongs to the program's
        // name, not to the folder.
        if (workDir.startsWith('"')) workDir.remove(0, 1);
    }
    TStartAttempt attempt{ExecCommandLine(exePath, params.GetString(kParams)), {}, workDir};

    const THostHider hider(hide);
    QStringList argv = SplitCommandLine(attempt.commandLine, IsProgramFile);
    if (argv.isEmpty()) StartFailed(attempt, _("Keine Anwendung angegeben"));
    argv.front() = attempt.program = ResolveProgramPath(argv.front());
    if (!workDir.isEmpty() && !QFileInfo(workDir).isDir()) StartFailed(attempt, _("Das Arbeitsverzeichnis existiert nicht"));
    const TProgramOutput output;
    if (output.Fd() < 0) StartFailed(attempt, Format(_("Ausgabedatei %s: %s"), {ProgramOutputPath(), output.Error()}));
    if (!output.Warning().isEmpty()) SystemLog.Warn(output.Warning());
    TChildProcess child;
    if (const QString error = child.Start(argv, workDir, output.Fd()); !error.isEmpty()) StartFailed(attempt, error);
    SystemLog.Debug(Format(_("Ausgabe von %s (PID %d): %s"), {attempt.program, QString::number(child.Pid()), output.Path()}));

    std::int32_t result = kExecNotEnded;
    if (child.Wait(&TestEnvironment().GetRunControl(), limitMs) == TChildWait::Exited) {
        result = ExecResultOf(child.ExitCode());
    } else if (kill) {
        child.AskToTerminate();
    }
    g_lastResult = result;
    const QString returnVar = params.GetString(kReturn);
    if (!returnVar.isEmpty()) VarAccess().SetVariable(returnVar, std::make_unique<TNumberValue>(result));
}

QString TDVCmdStartEXE::OnEditorTest()
{
    TParamList params;
    AddDefaults(params);
    ReadParams(params);
    // The editor has no running script whose variable could take the result.
    params.AddString(kReturn, QString());
    EvaluateParams(params);
    RunThreaded(params);
    return Format(_("ExitCode = %d"), {QString::number(LastResult())});
}

}  // namespace dv
