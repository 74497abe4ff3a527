#include "host/cli.h"

#include "commands/system/platform_process.h"
#include "host/display.h"
#include "framework/artifacts.h"
#include "framework/forms/guiforms.h"
#include "framework/headless.h"
#include "framework/systemlog.h"
#include "framework/translate.h"
#include "host/builtins.h"
#include "framework/typeconversion.h"
#include "host/catalogue_listing.h"
#include "host/importer.h"
#include "host/junit.h"
#include "host/runner.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <atomic>
#include <climits>
#include <cmath>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <memory>
#include <unistd.h>

namespace dv::host {

namespace {

TRunControl* g_runControl = nullptr;
std::atomic<int> g_interrupts{0};  // lock-free, so safe in a signal handler

// Ctrl-C, a CI time-out (SIGTERM) and a closed terminal (SIGHUP) stop a run alike.
constexpr int kStopSignals[] = {SIGINT, SIGTERM, SIGHUP};

// The first stop signal asks the run to stop; a second one ends the process at once.
void OnInterrupt(int)
{
    if (g_interrupts++ > 0 || !g_runControl) _exit(1);
    g_runControl->SignalStop();
}

void PrintTo(std::FILE* stream, const QString& text)
{
    std::fputs(text.toUtf8().constData(), stream);
    std::fputc('\n', stream);
    std::fflush(stream);
}

// Scripts from Windows stations come in UTF-16 or Windows-1252 as well as UTF-8.
std::optional<QString> ReadScript(const QString& path, QString& text, TTextEncoding& encoding)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return Format(_("Die Datei %s kann nicht gelesen werden"), {path});
    text = DecodeText(file.readAll(), encoding);
    return std::nullopt;
}

std::atomic<THost*> g_host{nullptr};  // while a script runs: Qt's own messages go through its output

void QtMessageToHost(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    const QString line = qFormatLogMessage(type, context, message);
    if (THost* host = g_host.load()) host->PrintLine(stderr, line);
    else PrintTo(stderr, line);
}

int Finish(const TRunReport& report, const TCliOptions& options, THost& host)
{
    for (const QString& line : report.errors + report.failedChecks) host.PrintLine(stderr, line);
    if (!options.junit.isEmpty() && !WriteJUnitReport(options.junit, options.script, report, Artifacts())) {
        host.PrintLine(stderr, Format(_("Der Bericht %s kann nicht geschrieben werden"), {options.junit}));
    }
    return report.exitCode;
}

// The application object: a QApplication where windows or pictures are wanted, else a core one.
// Operator dialogs are installed only where a person sees them (RegisterOperatorDialogs).
std::unique_ptr<QCoreApplication> MakeApplication(int& argc, char** argv, const TCliOptions& options, bool needsDialog)
{
    const bool artifacts = !options.artifacts.isEmpty();
    TDisplayChoice display;
    if (needsDialog || artifacts) display = ChooseDisplay();
    if (!display.warning.isEmpty()) PrintTo(stderr, QStringLiteral("dvrun: ") + display.warning);
    if (!display.platform.isEmpty()) qputenv("QT_QPA_PLATFORM", display.platform);
    // Pictures are drawn by the same widgets, offscreen when there is no display.
    if (artifacts && !display.windows) qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!(needsDialog && display.windows) && !artifacts) return std::make_unique<QCoreApplication>(argc, argv);
    auto app = std::make_unique<QApplication>(argc, argv);
    RegisterForms();
    return app;
}

int RunScript(int& argc, char** argv, const TCliOptions& options, const QString& text)
{
    QFile logFile(options.log);
    if (!options.log.isEmpty() && !logFile.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text)) {
        PrintTo(stderr, Format(_("Die Protokolldatei %s kann nicht geschrieben werden"), {options.log}));
        return 2;
    }
    auto logLine = [&logFile](const QString& line) {
        if (!logFile.isOpen()) return;
        logFile.write(line.toUtf8() + '\n');
        logFile.flush();
    };
    THost host;
    if (options.maxArray) host.Exec().limits.maxArray = *options.maxArray;
    if (options.maxString) host.Exec().limits.maxString = *options.maxString;
    if (options.seed) host.SetRandomSeed(static_cast<quint64>(*options.seed));
    host.SetOutput([](const QString& line) { PrintTo(stdout, line); }, logLine);
    SystemLog.SetSink([&](const QString& level, const QString& line) {
        host.PrintLine(stderr, level + QStringLiteral(": ") + line);
        host.Log(level.toUpper() + ' ' + line);
    });
    // A form's address is a line of the run's log like any other.
    SetOperatorLineSink([&host](const QString& line) { host.WriteLog(line); });
    const QString folder = options.project.isEmpty() ? QFileInfo(options.script).absolutePath() : options.project;
    host.SetProjectFolder(QDir::cleanPath(QDir(folder).absolutePath()));
    SetProgramOutputFolder(QFileInfo(options.log.isEmpty() ? options.script : options.log).absolutePath());
    if (!options.artifacts.isEmpty()) {
        QDir().mkpath(options.artifacts);
        SetArtifactsFolder(QDir(options.artifacts).absolutePath());
    }
    SetHeadlessAnswers(options.answers);

    TScriptRun run(options.script, host);
    bool ok = run.Load(text);
    for (const QString& d : options.defines) {
        if (!ok) break;
        ok = run.Define(d.section('=', 0, 0).trimmed(), d.section('=', 1));
    }
    auto done = [&] {
        SetOperatorLineSink({});
        SystemLog.SetSink({});
        return Finish(run.Report(), options, host);
    };
    if (!ok) return done();

    const std::unique_ptr<QCoreApplication> app = MakeApplication(argc, argv, options, run.NeedsDialog());
    std::setlocale(LC_NUMERIC, "C");  // the application object takes the user's locale
    g_runControl = &host.GetRunControl();
    g_host.store(&host);
    qInstallMessageHandler(QtMessageToHost);
    for (int s : kStopSignals) std::signal(s, OnInterrupt);
    run.Run();
    for (int s : kStopSignals) std::signal(s, SIG_DFL);
    for (const QString& procedure : UnaskedHeadlessAnswers()) {
        SystemLog.Warn(Format(_("--answer %s: kein Befehl hat nach dieser Antwort gefragt"), {procedure}));
    }
    qInstallMessageHandler(nullptr);
    g_host.store(nullptr);
    g_runControl = nullptr;
    return done();
}

}  // namespace

QString UsageText()
{
    return QStringLiteral(
        "Aufruf: dvrun [Optionen] SKRIPT\n"
        "  --define NAME=WERT   Startwert der deklarierten Variablen NAME (mehrfach möglich)\n"
        "  --project ORDNER     Projektordner (PROJEKTPFAD); Vorgabe: der Ordner des Skripts\n"
        "  --junit DATEI        JUnit-Bericht des Laufs schreiben\n"
        "  --log DATEI          Protokoll des Laufs schreiben\n"
        "  --artifacts ORDNER   Bilder des Laufs (Scope, Bildvergleiche) in ORDNER ablegen, im JUnit-Bericht genannt\n"
        "  --answer BEFEHL=TEXT Antwort eines Dialogbefehls ohne Oberfläche (mehrfach möglich)\n"
        "  --max-array N        höchstens N Elemente je Array (Vorgabe 100000000)\n"
        "  --max-string N       höchstens N Zeichen je Text (Vorgabe 1000000000)\n"
        "  --seed N             Random liefert bei gleichem N dieselben Zahlen\n"
        "  --list               Befehlskatalog ausgeben (Prozedur und Signatur)\n"
        "  --list --all         auch die Befehle, die in diesem Build nicht verfügbar sind\n"
        "  --list --builtins    die eingebauten Prozeduren und Funktionen ausgeben\n"
        "  --convert            Skript mit älteren Befehlszeilen in die aktuelle Form umschreiben\n"
        "  --help               diese Hilfe\n"
        "Rückgabe: 0 bestanden, 1 Laufzeitfehler, fehlgeschlagene Prüfung oder Abbruch,\n"
        "          2 Aufruf- oder Syntaxfehler\n");
}

namespace {

// A count option's value: a whole number from 0 to `largest`, also written as 1e8.
std::optional<QString> ReadCount(const QString& option, const QString& text, qint64 largest, std::optional<qint64>& target)
{
    bool ok = false;
    const double value = text.toDouble(&ok);
    if (!ok || value < 0 || value > static_cast<double>(largest) || value != std::floor(value)) {
        return Format(_("%s erwartet eine ganze Zahl von 0 bis %s, nicht \"%s\""), {option, QString::number(largest), text});
    }
    target = static_cast<qint64>(value);
    return std::nullopt;
}

}  // namespace

std::optional<QString> ParseOptions(const QStringList& args, TCliOptions& options)
{
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString& a = args[i];
        auto value = [&](QString& target) -> std::optional<QString> {
            if (i + 1 >= args.size()) return Format(_("Die Option %s braucht einen Wert"), {a});
            target = args[++i];
            return std::nullopt;
        };
        std::optional<QString> error;
        QString text;
        if (a == "--help" || a == "-h") options.help = true;
        else if (a == "--list") options.list = true;
        else if (a == "--builtins") options.builtins = true;
        else if (a == "--all") options.all = true;
        else if (a == "--convert") options.convert = true;
        else if (a == "--project") error = value(options.project);
        else if (a == "--junit") error = value(options.junit);
        else if (a == "--log") error = value(options.log);
        else if (a == "--max-array" || a == "--max-string") {
            const bool array = a == "--max-array";
            error = value(text);
            if (!error) error = ReadCount(a, text, array ? INT_MAX - 1 : qint64{1} << 40, array ? options.maxArray : options.maxString);
        } else if (a == "--seed") {
            error = value(text);
            if (!error) error = ReadCount(a, text, qint64{1} << 53, options.seed);
        } else if (a == "--artifacts") {
            error = value(options.artifacts);
            // A folder, existing or to be made; pictures cannot go into nothing or into a file.
            const QFileInfo folder(options.artifacts);
            if (!error && (options.artifacts.isEmpty() || (folder.exists() && !folder.isDir()))) {
                error = Format(_("--artifacts erwartet einen Ordner, nicht \"%s\""), {options.artifacts});
            }
        }
        else if (a == "--define" || a == "--answer") {
            error = value(text);
            if (!error && !text.contains('=')) error = Format(_("%s erwartet NAME=WERT, nicht \"%s\""), {a, text});
            (a == "--define" ? options.defines : options.answers) << text;
        } else if (a.startsWith('-') && a != "-") error = Format(_("Unbekannte Option %s"), {a});
        else if (!options.script.isEmpty()) error = _("Nur ein Skript pro Aufruf");
        else options.script = a;
        if (error) return error;
    }
    if (options.all && !options.list) return _("--all gilt nur zusammen mit --list");
    if (!options.help && !options.list && options.script.isEmpty()) return _("Kein Skript angegeben");
    return std::nullopt;
}

namespace {

int RunOptions(int& argc, char** argv, const TCliOptions& options)
{
    QString text;
    TTextEncoding encoding = TTextEncoding::Utf8;
    if (const std::optional<QString> error = ReadScript(options.script, text, encoding)) {
        PrintTo(stderr, QStringLiteral("dvrun: ") + *error);
        return 2;
    }
    if (options.convert) {
        THost host;
        QStringList warnings;
        // Written back as the file was stored, so that a script without older lines comes out
        // byte for byte.
        const QByteArray converted = EncodeText(ConvertScript(text, host.Commands(), &warnings, options.script), encoding);
        std::fwrite(converted.constData(), 1, static_cast<std::size_t>(converted.size()), stdout);
        std::fflush(stdout);
        for (const QString& w : warnings) PrintTo(stderr, w);
        return 0;
    }
    return RunScript(argc, argv, options, text);
}

}  // namespace

int RunDvrun(int& argc, char** argv)
{
    QStringList args;
    for (int i = 1; i < argc; ++i) args << QString::fromLocal8Bit(argv[i]);
    TCliOptions options;
    if (const std::optional<QString> error = ParseOptions(args, options)) {
        PrintTo(stderr, QStringLiteral("dvrun: ") + *error);
        std::fputs(UsageText().toUtf8().constData(), stderr);
        return 2;
    }
    if (options.help) {
        std::fputs(UsageText().toUtf8().constData(), stdout);
        return 0;
    }
    if (options.list) {
        std::fputs((options.builtins ? BuiltinListing() : CatalogueListing(options.all)).toUtf8().constData(), stdout);
        return 0;
    }
    // The script run reports its own errors; whatever still escapes ends the process with a
    // message instead of an abort.
    try {
        return RunOptions(argc, argv, options);
    } catch (const TDVSyntaxError& e) {
        PrintTo(stderr, QStringLiteral("%1:%2:%3: %4").arg(options.script).arg(e.Line()).arg(e.Column()).arg(e.Message()));
        return 2;
    } catch (const std::exception& e) {
        PrintTo(stderr, QStringLiteral("%1: %2").arg(options.script, QString::fromUtf8(e.what())));
    } catch (...) {
        PrintTo(stderr, QStringLiteral("%1: %2").arg(options.script, _("Unbekannter Fehler")));
    }
    return 1;
}

}  // namespace dv::host
