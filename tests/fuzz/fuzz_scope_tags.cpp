// Scope(Command, Special): the tag decoder and the curve sources its slots name. A decode fault is
// the command's failure; settings whose texts hold no tag characters are written and read back to
// the same strings; every slot's source either draws into its curve or raises the command's
// failure, and no curve grows past what its source can give.
#include "analysis/curvestore.h"
#include "scope/curvesource.h"
#include "scope/scopetags.h"
#include "tests/support/testhost.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

// Small letters, digits, '.', '-' and blanks: no text that the tag search could take for a tag, a
// function keyword or a field delimiter.
bool IsPlain(const QString& s)
{
    return std::all_of(s.begin(), s.end(), [](QChar c) { return c.isLower() || c.isDigit() || c == '.' || c == '-' || c == ' '; });
}

// Settings that the writer's text gives back. "[OUT:" and "[CLIP:" are read only beside an "[FX:"
// tag, which the writer leaves out for a function keyword it does not know.
bool WritesBack(const dv::scope::TDecodedSettings& s)
{
    if (s.FxFunction == dv::scope::TScopeFnc::None && !(s.ResultVar + s.ClipStart + s.ClipStop).isEmpty()) return false;
    for (const QString& t : s.CurveSource) if (!IsPlain(t)) return false;
    for (const QString& t : s.FxArg) if (!IsPlain(t)) return false;
    for (const QString& t : s.FxSinadArg) if (!IsPlain(t)) return false;
    for (const QString& t : s.ScaleFields) if (!IsPlain(t)) return false;
    for (const QString* t : {&s.FxChannel, &s.FxOrder, &s.FxRmsOffset, &s.ResultVar, &s.ClipStart, &s.ClipStop, &s.WaitVar,
                             &s.UnitTextX, &s.UnitTextY}) {
        if (!IsPlain(*t)) return false;
    }
    return true;
}

}  // namespace

namespace {
// The curve file k.csv in the project folder, which sources reach as "%PROJEKTPFAD%/k.csv".
QString ProjectFolder()
{
    static const QString folder = [] {
        const QString f = QDir::temp().filePath(QStringLiteral("dv-fuzz-scope-%1").arg(QCoreApplication::applicationPid()));
        QDir().mkpath(f);
        QFile file(QDir(f).filePath(QStringLiteral("k.csv")));
        if (!file.open(QIODevice::WriteOnly) || file.write("0;1\n0.5;2\n1;-1\n") < 0) std::abort();
        return f;
    }();
    return folder;
}
}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv)
{
    static QCoreApplication app(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 4096) return -1;
    // Variables a source may name: an array A of three numbers, numbers X and Y.
    static dv::test::TTestHost host;
    static const bool declared = [] {
        host.projectPath = ProjectFolder();
        auto& a = host.Declare(QStringLiteral("A"), {dv::TValueKind::Array, dv::TValueKind::Number});
        for (int i = 1; i <= 3; ++i) dynamic_cast<dv::TArrayValue&>(a.GetValue()).SetNumber(i, i * 0.5L);
        host.Declare(QStringLiteral("X"), {dv::TValueKind::Number});
        host.Declare(QStringLiteral("Y"), {dv::TValueKind::Number});
        return true;
    }();
    (void)declared;

    FuzzedDataProvider in(data, size);
    const QString command = QString::fromStdString(in.ConsumeRandomLengthString(size));
    const QString special = QString::fromStdString(in.ConsumeRemainingBytesAsString());

    dv::scope::TDecodedSettings settings;
    try {
        dv::scope::DecodeTags(command, special, settings);
    } catch (const dv::scope::TScopeDecodeFault&) {
        return 0;
    }
    const dv::scope::TScopeScript written = dv::scope::WriteScript(settings);
    if (written.Command.size() + written.Special.size() > 100 * static_cast<qsizetype>(size) + 512) std::abort();
    if (WritesBack(settings)) {
        dv::scope::TDecodedSettings again = settings;
        dv::scope::DecodeTags(written.Command, written.Special, again);
        if (dv::scope::WriteScript(again) != written) std::abort();
    }

    dv::analysis::TCurveStore store;
    for (int slot = 1; slot <= dv::scope::kCurveSlots; ++slot) {
        const QString& text = settings.CurveSource[static_cast<std::size_t>(slot - 1)];
        QString name;
        try {
            dv::scope::DrawCurve(store, slot, text, name);
        } catch (const dv::TDravikException&) {
            continue;
        }
        // At most the file's three rows, the array's three elements or one point per slot.
        if (store.CurveValuesCount(slot) > 3) std::abort();
    }
    return 0;
}
