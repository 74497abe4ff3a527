// Parse and run: a script that parses runs with a budget of stop checks, so that endless loops
// end. Only scripts calling commands without effects outside the process run (no files, processes,
// sockets or windows). Script run-time errors and the stop are the expected ends of a run.
#include "framework/typeconversion.h"
#include "host/hostservices.h"
#include "host/scriptparser.h"

#include <QCoreApplication>

#include <array>
#include <cstddef>
#include <cstdint>

namespace {
constexpr std::array kContainedCommands{"ArrayToStr", "StrToArray", "StringBearbeitung", "NumberConvert", "TextOut",
                                        "StatusText"};
constexpr long long kStopChecks = 2000;

bool CallsOnlyContainedCommands(const QStringList& called)
{
    for (const QString& name : called) {
        bool contained = false;
        for (const char* c : kContainedCommands) contained = contained || name.compare(QLatin1String(c), Qt::CaseInsensitive) == 0;
        if (!contained) return false;
    }
    return true;
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 4 * 1024) return -1;
    dv::TTextEncoding encoding = dv::TTextEncoding::Utf8;
    const QString text = dv::DecodeText(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)), encoding);
    dv::host::THost host;
    host.SetOutput([](const QString&) {}, [](const QString&) {});
    host.SetProjectFolder(QStringLiteral("/nonexistent/fuzz"));
    dv::host::TScriptParser parser(host.Program(), host.Commands());
    parser.ParseProgram(text);
    if (!host.Program().errors.empty() || !CallsOnlyContainedCommands(host.Program().calledCommands)) return 0;
    host.PrepareRun({});
    host.Exec().stopChecksLeft = kStopChecks;
    try {
        host.RunMain();
    } catch (const dv::host::TRunStopped&) {
    } catch (const dv::TDravikException&) {
    }
    return 0;
}
