#pragma once
// One run of the editor's script: its own host, the interpreter on a worker thread, and what the
// windows show while it runs. Dialogs and the scope reach the GUI thread through Synchronize, so
// the GUI thread must keep its event loop running until Finished.
#include "host/runner.h"
#include "workbench/guiservices.h"
#include "workbench/runlog.h"

#include <QList>
#include <QObject>

#include <atomic>
#include <memory>
#include <thread>

class QStringListModel;

namespace dv::workbench {

struct TVariableRow {
    QString name;
    QString type;
    QString value;
    bool operator==(const TVariableRow&) const = default;
};

class TRunSession final : public QObject, private host::IStatementObserver {
    Q_OBJECT
public:
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
    // Asks for a variables snapshot at the interpreter's next statement.
    void RequestVariables() { variablesWanted_.store(true, std::memory_order_relaxed); }
    // The variables as the run left them (after Finished).
    QList<TVariableRow> FinalVariables() const { return finalVariables_; }

signals:
    void VariablesChanged(const QList<dv::workbench::TVariableRow>& rows);
    void Logged(const dv::workbench::TLogEntry& entry);
    void Finished();

private:
    void BeforeStatement(const host::TExec& ex, int line) override;
    QList<TVariableRow> Snapshot(const host::TExec& ex) const;

    host::THost host_;
    TGuiServices services_;
    host::TScriptRun run_;
    std::thread worker_;
    std::atomic<int> line_{0};
    std::atomic<bool> variablesWanted_{false};
    std::atomic<bool> running_{false};
    QList<TVariableRow> finalVariables_;
};

}  // namespace dv::workbench

Q_DECLARE_METATYPE(dv::workbench::TVariableRow)
