// The Scope command against its own parts, measured in the same run:
// 1. a Scope call with a 1e6-element array source and RMS, against converting the array into a
//    curve and running the RMS kernel alone (target: at most 2x);
// 2. a FILE: source of 1e6 rows "x;y", against pandas.read_csv on the same file (target: at
//    least as fast), both the file reader alone and a whole Scope call that draws the file into
//    curve 1. Prints the first call and the best of the repeats, and the ratios.
#include "analysis/curvestore.h"
#include "analysis/kernels.h"
#include "framework/paramlist.h"
#include "framework/services.h"
#include "scope/curvefile.h"
#include "scope/gui_scope.h"

#include <QTemporaryDir>

#include <chrono>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <string>

namespace {

using namespace dv;
using Clock = std::chrono::steady_clock;

constexpr int kSamples = 1'000'000;
constexpr int kRepeats = 5;

struct TTiming {
    double first;
    double best;
};

TTiming Measure(const std::function<void()>& work)
{
    TTiming t{0, 1e30};
    for (int i = 0; i <= kRepeats; ++i) {
        const auto start = Clock::now();
        work();
        const double secs = std::chrono::duration<double>(Clock::now() - start).count();
        if (i == 0) t.first = secs;
        else t.best = std::min(t.best, secs);
    }
    return t;
}

class TBenchVariable final : public TDVVariable {
public:
    TBenchVariable(QString name, TValuePtr value) : name_(std::move(name)), value_(std::move(value)) {}
    QString GetName() const override { return name_; }
    TDVType GetType() const override { return value_->GetType(); }
    TValue& GetValue() override { return *value_; }

private:
    QString name_;
    TValuePtr value_;
};

// Just enough host for one Scope call: the array A and the result R.
class TBenchHost final : public IDVVarAccess, public IDVTestEnvironment {
public:
    TBenchHost()
    {
        auto array = std::make_unique<TArrayValue>(TValueKind::Number);
        for (int i = 1; i <= kSamples; ++i) array->SetVal(i, std::make_unique<TNumberValue>(std::sin(i * 0.001) + 0.25));
        a = std::make_unique<TBenchVariable>("A", std::move(array));
        SetHostServices({nullptr, this, this});
    }
    ~TBenchHost() override { SetHostServices({}); }
    void SetVariable(const QString&, TValuePtr value) override { result = std::move(value); }
    void AttachVariableEditor(QObject*) override {}
    TDVVariable* FindVariable(const QString& name) override { return name == "A" ? a.get() : nullptr; }
    QString ResolveText(const QString& text) override { return text; }
    void WriteOutput(const QString&, const QString&, int, int, int) override {}
    void SetStatusText(const QString&) override {}
    void StopTest() override { std::fprintf(stderr, "StopTest\n"); }
    TRunControl& GetRunControl() override { return runControl; }
    void SetLaborVisible(bool) override {}

    std::unique_ptr<TBenchVariable> a;
    TValuePtr result;
    TRunControl runControl;
};

double ReferenceRms(const TArrayValue& array)
{
    // The conversion every array source needs, then the kernel.
    std::vector<double> x(static_cast<std::size_t>(array.GetSize()));
    std::vector<double> y(x.size());
    for (int i = 1; i <= array.GetSize(); ++i) {
        y[static_cast<std::size_t>(i - 1)] = static_cast<double>(array.GetNumber(i));
        x[static_cast<std::size_t>(i - 1)] = (i - 1) / 1e6;
    }
    const int last = static_cast<int>(y.size()) - 1;
    return std::sqrt(analysis::kernels::SumOfSquares(y, 0, last, 0) / (last + 1)) + x[1] * 0;
}

// First call and best repeat of pandas.read_csv, from scope_pandas.py.
TTiming Pandas(const std::string& path)
{
    const std::string command = "/usr/bin/python3 " DV_BENCH_DIR "/scope_pandas.py " + path;
    TTiming t{-1, -1};
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return t;
    if (std::fscanf(pipe, "%lf %lf", &t.first, &t.best) != 2) t = {-1, -1};
    pclose(pipe);
    return t;
}

}  // namespace

int main()
{
    TBenchHost host;
    TDVCmdScope scope(nullptr);
    TParamList params;
    params.AddString("Command", "[HIDE],1:[ARRAY:A,FREQ:1000000],[FX:RMS:1:OFS:0:1],[OUT:R]");
    params.AddString("Special", "");
    const auto& array = dynamic_cast<const TArrayValue&>(host.a->GetValue());
    double reference = 0;
    const TTiming kernel = Measure([&] { reference = ReferenceRms(array); });
    const TTiming call = Measure([&] { scope.RunThreaded(params); });
    std::printf("array+RMS   reference %8.2f ms first %8.2f ms repeat   Scope %8.2f ms first %8.2f ms repeat\n",
                kernel.first * 1e3, kernel.best * 1e3, call.first * 1e3, call.best * 1e3);
    std::printf("array+RMS   values %.12g (reference) %s (Scope)\n", reference, qPrintable(host.result->AsText()));
    std::printf("RATIO scope_array_rms Scope / (conversion + kernel) = %.2f first, %.2f repeat (target <= 2)\n",
                call.first / kernel.first, call.best / kernel.best);

    QTemporaryDir dir;
    const std::string path = dir.filePath("kurve.txt").toStdString();
    {
        std::ofstream out(path);
        for (int i = 0; i < kSamples; ++i) out << i * 1e-6 << ';' << std::sin(i * 0.001) << '\n';
    }
    std::size_t rows = 0;
    const TTiming file = Measure([&] { rows = scope::ReadCurveFile(QString::fromStdString(path), ';').y.size(); });
    const TTiming pandas = Pandas(path);
    std::printf("FILE: %zu rows   ours %8.2f ms first %8.2f ms repeat   pandas.read_csv %8.2f ms first %8.2f ms repeat\n",
                rows, file.first * 1e3, file.best * 1e3, pandas.first * 1e3, pandas.best * 1e3);
    std::printf("RATIO scope_file pandas.read_csv / ours = %.2f first, %.2f repeat (target >= 1)\n", pandas.first / file.first,
                pandas.best / file.best);

    TParamList fileParams;
    fileParams.AddString("Command", "[HIDE],1:[FILE:" + QString::fromStdString(path) + ",SEP:59]");
    fileParams.AddString("Special", "");
    const TTiming fileCall = Measure([&] { scope.RunThreaded(fileParams); });
    std::printf("FILE: %d points in curve 1   Scope %8.2f ms first %8.2f ms repeat\n",
                analysis::ScopeStore().CurveValuesCount(1), fileCall.first * 1e3, fileCall.best * 1e3);
    std::printf("RATIO scope_file_call pandas.read_csv / Scope FILE: call = %.2f first, %.2f repeat (target >= 1)\n",
                pandas.first / fileCall.first, pandas.best / fileCall.best);
    return 0;
}
