#include "host/runner.h"

#include "framework/scanner.h"
#include "framework/translate.h"
#include "host/scriptparser.h"

#include <QElapsedTimer>

#include <array>

namespace dv::host {

namespace {
// Library procedures that open windows while they run.
constexpr std::array kDialogProcedures{"MeldungsBox", "OpenSaveDlg", "Scope", "FormShow", "FormResult"};
}  // namespace

QString TRunReport::FailureText() const { return (errors + failedChecks).join('\n'); }

bool TScriptRun::Load(const QString& text)
{
    TScriptParser parser(host_.Program(), host_.Commands());
    std::vector<TParseError>& errors = host_.Program().errors;
    // The parser reports its own errors; these catch what would otherwise end the process.
    try {
        parser.ParseProgram(text);
    } catch (const TDVSyntaxError& e) {
        errors.push_back({e.Line(), e.Column(), e.Message()});
    } catch (const std::exception& e) {
        errors.push_back({parser.Line(), 1, QString::fromUtf8(e.what())});
    }
    for (const TParseError& e : errors) {
        report_.errors << QStringLiteral("%1:%2:%3: %4").arg(fileName_).arg(e.line).arg(e.column).arg(e.message);
    }
    if (report_.errors.isEmpty()) return true;
    report_.exitCode = 2;
    return false;
}

bool TScriptRun::Define(const QString& name, const QString& valueText)
{
    const TScope& globals = host_.Program().globals;
    const int slot = globals.Find(name);
    if (slot < 0 || slot == host_.Program().projectPathSlot) {
        report_.errors << Format(_("--define: %s ist keine deklarierte Variable des Skripts"), {name});
        report_.exitCode = 2;
        return false;
    }
    const TDVType type = globals.Symbol(slot).type;
    try {
        TVal value = TVal::String(valueText);
        if (type.kind != TValueKind::String) {
            try {
                TScriptParser parser(host_.Program(), host_.Commands());
                TExec constants;
                parser.ParseExpressionText(valueText, nullptr)->Eval(constants, value);
            } catch (const TDVSyntaxError&) {
                // Not an expression: taken as text, which Misc variables keep as it is.
            }
        }
        TVariable check(name, type);
        check.Assign(value);
        defines_.insert(slot, check.value);
        return true;
    } catch (const TDravikException& e) {
        report_.errors << Format(_("--define %s: %s"), {name, e.Message()});
        report_.exitCode = 2;
        return false;
    }
}

bool TScriptRun::NeedsDialog() const
{
    for (const char* p : kDialogProcedures) {
        if (host_.Program().calledCommands.contains(QLatin1String(p), Qt::CaseInsensitive)) return true;
    }
    return false;
}

void TScriptRun::Run()
{
    QElapsedTimer timer;
    timer.start();
    host_.PrepareRun(defines_);
    TExec& ex = host_.Exec();
    auto fail = [&](const QString& message) {
        report_.errors << QStringLiteral("%1:%2: %3").arg(fileName_).arg(ex.line).arg(message);
    };
    const auto stopped = [&] { return host_.StoppedByCommand() ? _("Test durch einen Befehl beendet") : _("Test abgebrochen"); };
    try {
        host_.RunMain();
    } catch (const TRunStopped&) {
        fail(stopped());
    } catch (const TDravikException& e) {
        // A command that the stop ended early may fail for it (a pipe not reached in time): the
        // run was stopped, and that is what it reports.
        fail(host_.GetRunControl().StopRequested() ? stopped() : e.Message());
    } catch (const std::exception& e) {
        fail(QString::fromLocal8Bit(e.what()));
    } catch (...) {
        fail(_("Unbekannter Fehler"));
    }
    ex.frame = ex.globals;  // a procedure's frame may be gone after an error
    for (const TFailedCheck& c : host_.FailedChecks()) {
        const QString text = c.text.isEmpty() ? _("Prüfung fehlgeschlagen") : _("Prüfung fehlgeschlagen: ") + c.text;
        report_.failedChecks << QStringLiteral("%1:%2: %3").arg(fileName_).arg(c.line).arg(text);
    }
    report_.exitCode = report_.errors.isEmpty() && report_.failedChecks.isEmpty() ? 0 : 1;
    report_.seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    for (const QString& line : report_.errors + report_.failedChecks) host_.Log(QStringLiteral("FEHLER ") + line);
    host_.Log(report_.exitCode == 0 ? QStringLiteral("ERGEBNIS bestanden") : QStringLiteral("ERGEBNIS fehlgeschlagen"));
}

}  // namespace dv::host
