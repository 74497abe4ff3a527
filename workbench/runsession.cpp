#include "workbench/runsession.h"

#include "framework/systemlog.h"

namespace dv::workbench {

TRunSession::TRunSession(const QString& fileName, const QString& projectFolder, QStringListModel* names)
    : services_(host_, names), run_(fileName, host_)
{
    services_.Install();
    host_.SetProjectFolder(projectFolder);
    host_.SetOutput({}, [this](const QString& line) { emit Logged(MakeLogEntry(line, RunningLine())); });
}

TRunSession::~TRunSession()
{
    Stop();
    Wait();
    SystemLog.SetSink({});
}

bool TRunSession::Load(const QString& text) { return run_.Load(text); }

void TRunSession::Start()
{
    SystemLog.SetSink([this](const QString& level, const QString& line) { host_.Log(level.toUpper() + ' ' + line); });
    host_.Exec().observer = this;
    running_ = true;
    worker_ = std::thread([this] {
        run_.Run();
        finalVariables_ = Snapshot(host_.Exec());
        running_ = false;
        emit Finished();
    });
}

void TRunSession::Stop() { host_.GetRunControl().SignalStop(); }

void TRunSession::Wait()
{
    if (worker_.joinable()) worker_.join();
}

void TRunSession::BeforeStatement(const host::TExec& ex, int line)
{
    // Two relaxed atomics per statement keep a watched run as fast as an unwatched one; the GUI
    // polls the line and asks for variables at its own pace.
    line_.store(line, std::memory_order_relaxed);
    if (!variablesWanted_.load(std::memory_order_relaxed)) return;
    variablesWanted_.store(false, std::memory_order_relaxed);
    emit VariablesChanged(Snapshot(ex));
}

QList<TVariableRow> TRunSession::Snapshot(const host::TExec& ex) const
{
    QList<TVariableRow> rows;
    auto add = [&rows](const host::TFrame& frame) {
        for (int slot = 0; slot < frame.Scope().Size(); ++slot) {
            const host::TSymbol& symbol = frame.Scope().Symbol(slot);
            rows.push_back({symbol.name, host::TypeName(symbol.type), host::ValText(frame.Slot(slot).value)});
        }
    };
    if (ex.globals) add(*ex.globals);
    if (ex.frame && ex.frame != ex.globals) add(*ex.frame);
    return rows;
}

}  // namespace dv::workbench
