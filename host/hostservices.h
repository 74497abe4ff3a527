#pragma once
// The host as the commands see it: parser and project environment, variable access and the test
// environment, over the program being run. Constructing a THost installs it for the commands.
#include "framework/parser.h"
#include "framework/services.h"
#include "host/commandpool.h"
#include "host/program.h"

#include <QHash>

#include <cstdio>
#include <functional>
#include <memory>
#include <mutex>

namespace dv::host {

// The placeholder of the project folder in file names: "%PROJEKTPFAD%\bild.bmp".
inline constexpr const char* kProjectPathPlaceholder = "%PROJEKTPFAD%";

struct TFailedCheck {
    int line;
    QString text;
};

class THost final : public IDVGetParser,
                    public IDVVarAccess,
                    public IDVTestEnvironment,
                    public TDVParser,
                    public TDVEnvironment,
                    public IRunHooks {
public:
    using TLineSink = std::function<void(const QString& line)>;

    THost();
    ~THost() override;
    THost(const THost&) = delete;
    THost& operator=(const THost&) = delete;

    TProgram& Program() { return program_; }
    TCommandPool& Commands() { return commands_; }
    // Where text output and Log lines go (stdout), and the log file's lines.
    void SetOutput(TLineSink stdoutSink, TLineSink logSink);
    void SetProjectFolder(const QString& folder) { projectFolder_ = folder; }
    // Makes Random's numbers repeat from run to run (dvrun --seed).
    void SetRandomSeed(quint64 seed) { random_.seed(seed); }
    const QString& ProjectFolder() const { return projectFolder_; }

    // Creates the program's variables (after parsing); defines: starting values by global slot.
    void PrepareRun(QHash<int, TVal> defines);
    // Runs the main block; script errors and TRunStopped propagate with Exec().line set.
    void RunMain();
    TExec& Exec() { return exec_; }

    const std::vector<TFailedCheck>& FailedChecks() const { return failedChecks_; }
    bool StoppedByCommand() const { return stoppedByCommand_; }
    bool LaborVisible() const { return laborVisible_; }
    const QString& StatusText() const { return statusText_; }
    // A line of the log file only.
    void Log(const QString& line);
    // A line of the run that is not the script's output (errors, warnings) on stream: the live
    // status line goes first.
    void PrintLine(std::FILE* stream, const QString& line);

    // IDVGetParser
    TDVParser* GetParser() override { return this; }
    // TDVParser
    TDVAbsyPtr ParseExpression(const QString& text) override;
    TDVAbsyPtr ParseSingleExpression(const QString& text) override;
    TDVEnvironment& GetEnvironment() override { return *this; }
    // TDVEnvironment
    QString ReplaceProjectPath(const QString& path) const override;
    // IDVVarAccess
    void SetVariable(const QString& name, TValuePtr value) override;
    void AttachVariableEditor(QObject* control) override;
    TDVVariable* FindVariable(const QString& name) override;
    QString ResolveText(const QString& text) override;
    // IDVTestEnvironment
    void WriteOutput(const QString& text, const QString& fontName, int size, int style, int color) override;
    void SetStatusText(const QString& text) override;
    void StopTest() override;
    TRunControl& GetRunControl() override { return runControl_; }
    void SetLaborVisible(bool show) override;
    // IRunHooks
    void WriteLog(const QString& text) override;
    void RecordFailedCheck(int line, const QString& text) override;

    // Evaluates a tree the host parser gave, in the running frame; constant: it names no variable,
    // so it can be evaluated before the run too.
    TValuePtr Evaluate(const TExpr& expr, bool constant);

private:
    TVariable* Lookup(const QString& name) const;
    // Removes the live status line from the terminal; callers hold outputMutex_.
    void ClearStatusLine();

    TProgram program_;
    TCommandPool commands_;
    std::unique_ptr<TFrame> globals_;
    TExec exec_;
    QHash<int, TVal> defines_;
    TRunControl runControl_;
    std::mt19937_64 random_{std::random_device{}()};
    QString projectFolder_;
    std::mutex outputMutex_;
    TLineSink stdout_;
    TLineSink log_;
    std::vector<TFailedCheck> failedChecks_;
    bool stoppedByCommand_ = false;
    bool laborVisible_ = false;
    QString statusText_;
    bool statusLineShown_ = false;
};

}  // namespace dv::host
