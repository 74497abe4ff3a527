#pragma once
// One run of the editor's script: its own host, the interpreter on a worker thread, and what the
// windows show while it runs. Dialogs and the scope reach the GUI thread through Synchronize, so
// the GUI thread must keep its event loop running until Finished.
//
// Nothing the run writes is sent to the GUI thread line by line: log lines, the status text and
// text output collect here and the window takes them in one batch at its own pace (TakeBatch),
// so a script that logs in a tight loop cannot flood the event loop.
#include "host/runner.h"
#include "workbench/guiservices.h"
#include "workbench/logmodel.h"

#include <QList>
#include <QObject>

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

class QStringListModel;

namespace dv::workbench {

struct TVariableRow {
    QString name;
    QString type;
    QString value;
    bool operator==(const TVariableRow&) const = default;
};

// A variable as the interpreter's thread copies it: numbers, booleans and (shared) texts whole,
// arrays as their size and their first kArrayHead elements. Formatting is left to the GUI thread.
struct TVariableCopy {
    static constexpr int kArrayHead = 20;
    QString name;
    TDVType type;
    host::TVal value;   // an array: a new array of its first elements
    int arraySize = 0;  // the whole array's size
};
// The rows of the variables view; a text longer than kMaxValueText characters is cut.
QList<TVariableRow> FormatVariables(const std::vector<TVariableCopy>& copies);
inline constexpr int kMaxValueText = 200;

// A call of the text output command.
struct TOutputLine {
    QString text;
    QString fontName;
    int size = 0;
    int style = 0;
    int color = 0;
};

class TRunSession final : public QObject, private host::IStatementObserver {
    Q_OBJECT
public:
    // Log lines kept between two batches; older ones are counted as dropped.
    static constexpr qsizetype kMaxPendingLog = TLogModel::kDefaultCapacity;

    // What the run wrote since the last batch.
    struct TBatch {
        std::deque<TLogLine> log;
        qsizetype droppedLog = 0;
        std::optional<QString> status;  // the latest status text, when it changed
        std::vector<TOutputLine> output;
        std::optional<std::vector<TVariableCopy>> variables;  // when asked for and copied since
    };

    TRunSession(const QString& fileName, const QString& projectFolder, QStringListModel* names);
    ~TRunSession() override;

    // Reads the script; false when it has syntax errors (then Report() holds them and nothing runs).
    bool Load(const QString& text);
    void Start();
    // Asks the run to stop: the interpreter stops before its next statement, a command's wait ends.
    void Stop();
    bool IsRunning() const { return running_.load(); }
    // Joins the worker once Finished was emitted.
    void Wait();
    const host::TRunReport& Report() const { return run_.Report(); }
    TGuiServices& Services() { return services_; }
    int RunningLine() const { return line_.load(std::memory_order_relaxed); }
    // Asks for a copy of the variables at the interpreter's next statement (it comes with a later batch).
    void RequestVariables() { variablesWanted_.store(true, std::memory_order_relaxed); }
    TBatch TakeBatch();
    // The variables as the run left them (after Finished).
    const std::vector<TVariableCopy>& FinalVariables() const { return finalVariables_; }

signals:
    void Finished();

private:
    void BeforeStatement(const host::TExec& ex, int line) override;
    static std::vector<TVariableCopy> Copy(const host::TExec& ex);

    host::THost host_;
    TGuiServices services_;
    host::TScriptRun run_;
    std::thread worker_;
    // The interpreter's side: written before every statement, on a cache line of their own.
    alignas(64) std::atomic<int> line_{0};
    std::atomic<bool> variablesWanted_{false};
    alignas(64) std::atomic<bool> running_{false};
    std::mutex batchMutex_;
    TBatch batch_;
    std::vector<TVariableCopy> finalVariables_;
};

}  // namespace dv::workbench

Q_DECLARE_METATYPE(dv::workbench::TVariableRow)
