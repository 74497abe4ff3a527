#pragma once
// Exec: starts another program, waits for it with a time-out while watching the run's stop event,
// optionally asks it to close, and writes a number that encodes the outcome.
#include "framework/runedit.h"

#include <cstdint>

namespace dv {

// The wait limit in milliseconds: (timeOut + delay) seconds rounded, as an unsigned 32-bit count;
// a negative sum wraps round to a wait of about 49 days (-1 s gives 4294966296 ms).
std::uint32_t ExecWaitLimitMs(long double timeOutSeconds, long double delaySeconds);
// The result of a program that ended with exitCode: 0 for 0, else exitCode - 65536.
std::int32_t ExecResultOf(int exitCode);
inline constexpr std::int32_t kExecNotEnded = -2;  // time-out or stop event
// The working directory when none is given: the path part of ExePath as written, the quote of a
// quoted ExePath included (the program starts in that folder without it).
QString ExecDefaultWorkDir(const QString& exePath);
// ExePath, and " " + Params when Params is not empty.
QString ExecCommandLine(const QString& exePath, const QString& params);

// The editor's view of a call: Delay is folded into a whole number of seconds.
struct TDVCmdStartEXEFields {
    QString exePath;
    QString params;
    QString workDir;
    QString returnVar;
    bool waitForExit = false;
    int timeOut = 0;  // seconds, -1 to 32000
    bool hide = false;
    bool minimized = false;
    bool kill = false;
    bool operator==(const TDVCmdStartEXEFields&) const = default;
};

class TDVCmdStartEXE : public TDVFieldsCommand<TDVThreadRunEdit, TDVCmdStartEXEFields> {
public:
    explicit TDVCmdStartEXE(TDVParser* parser);

    // A new call starts from the texts of the last one edited.
    void SetDefaults() override {}

    void SetParams(const TParamList& params) override;
    void ReadParams(TParamList& params) override;
    bool DecodeScript(const QString& script, TParamList& params, TDVScriptImporter* importer) override;
    bool IsOlderLine(const QString& line) const override;
    void RunThreaded(TParamList& params) override;

    // The editor's Test button: runs the call the dialog holds and returns "ExitCode = %d" with
    // the last result.
    QString OnEditorTest();
    // The result of the last run in this process.
    static std::int32_t LastResult();
};

}  // namespace dv
