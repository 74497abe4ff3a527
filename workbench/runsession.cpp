#include "workbench/runsession.h"

#include "framework/systemlog.h"

#include <algorithm>

namespace dv::workbench {

namespace {

QString ValueText(const TVariableCopy& copy)
{
    QString text = host::ValText(copy.value);
    if (copy.value.kind == TValueKind::Array && copy.arraySize > TVariableCopy::kArrayHead) {
        return text + QStringLiteral("… (%1 Elemente)").arg(copy.arraySize);
    }
    if (text.size() > kMaxValueText) text = text.left(kMaxValueText) + QStringLiteral("…");
    return text;
}

}  // namespace

QList<TVariableRow> FormatVariables(const std::vector<TVariableCopy>& copies)
{
    QList<TVariableRow> rows;
    rows.reserve(static_cast<qsizetype>(copies.size()));
    for (const TVariableCopy& c : copies) rows.push_back({c.name, host::TypeName(c.type), ValueText(c)});
    return rows;
}

TRunSession::TRunSession(const QString& fileName, const QString& projectFolder, QStringListModel* names)
    : services_(host_, names), run_(fileName, host_)
{
    services_.Install();
    host_.SetProjectFolder(projectFolder);
    host_.SetOutput({}, [this](const QString& line) {
        TLogLine entry{QTime::currentTime(), RunningLine(), line};
        const std::lock_guard lock(batchMutex_);
        batch_.log.push_back(std::move(entry));
        if (static_cast<qsizetype>(batch_.log.size()) > kMaxPendingLog) {
            batch_.log.pop_front();
            ++batch_.droppedLog;
        }
    });
    // Emitted on the run's threads; taken here directly and handed on with the next batch.
    const auto status = [this](const QString& text) {
        const std::lock_guard lock(batchMutex_);
        batch_.status = text;
    };
    const auto output = [this](const QString& text, const QString& font, int size, int style, int color) {
        const std::lock_guard lock(batchMutex_);
        batch_.output.push_back({text, font, size, style, color});
    };
    connect(&services_, &TGuiServices::StatusTextChanged, this, status, Qt::DirectConnection);
    connect(&services_, &TGuiServices::OutputWritten, this, output, Qt::DirectConnection);
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
        finalVariables_ = Copy(host_.Exec());
        running_ = false;
        emit Finished();
    });
}

void TRunSession::Stop() { host_.GetRunControl().SignalStop(); }

void TRunSession::Wait()
{
    if (worker_.joinable()) worker_.join();
}

TRunSession::TBatch TRunSession::TakeBatch()
{
    TBatch taken;
    const std::lock_guard lock(batchMutex_);
    std::swap(taken, batch_);
    return taken;
}

void TRunSession::BeforeStatement(const host::TExec& ex, int line)
{
    // A relaxed store and a relaxed load is all a statement pays while nobody asks for the
    // variables; the GUI polls the line at its own pace.
    line_.store(line, std::memory_order_relaxed);
    if (!variablesWanted_.load(std::memory_order_relaxed)) return;
    variablesWanted_.store(false, std::memory_order_relaxed);
    std::vector<TVariableCopy> copies = Copy(ex);
    const std::lock_guard lock(batchMutex_);
    batch_.variables = std::move(copies);
}

std::vector<TVariableCopy> TRunSession::Copy(const host::TExec& ex)
{
    std::vector<TVariableCopy> copies;
    auto add = [&copies](const host::TFrame& frame) {
        for (int slot = 0; slot < frame.Scope().Size(); ++slot) {
            const host::TSymbol& symbol = frame.Scope().Symbol(slot);
            const host::TVal& value = frame.Slot(slot).value;
            TVariableCopy copy{symbol.name, symbol.type, {}, 0};
            if (value.kind == TValueKind::Array && value.array) {
                const TArrayValue& array = *value.array;
                auto head = std::make_shared<TArrayValue>(array.GetElementKind());
                copy.arraySize = array.GetSize();
                const int n = std::min(copy.arraySize, TVariableCopy::kArrayHead);
                for (int i = 1; i <= n; ++i) head->SetVal(i, array.GetVal(i).Clone());
                copy.value = host::TVal::Array(std::move(head));
            } else {
                copy.value = value;  // a text is shared, not copied
            }
            copies.push_back(std::move(copy));
        }
    };
    if (ex.globals) add(*ex.globals);
    if (ex.frame && ex.frame != ex.globals) add(*ex.frame);
    return copies;
}

}  // namespace dv::workbench
