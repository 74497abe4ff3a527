// The text helpers commands parse their arguments with. Each result is checked against what it
// must be: a part lies inside its source, binary digits read back to their value, a number text
// that reads reads the same once written.
#include "framework/dvtools.h"
#include "framework/exceptions.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

QString Text(FuzzedDataProvider& in, std::size_t max) { return QString::fromStdString(in.ConsumeRandomLengthString(max)); }

void CheckParts(FuzzedDataProvider& in)
{
    const QString start = Text(in, 8), stop = Text(in, 8), source = Text(in, 512);
    const int index = in.ConsumeIntegralInRange(-2, 8);
    const QString part = dv::GetStrPart(start, stop, source, index);
    if (!source.contains(part)) std::abort();
    const QString separator = Text(in, 4);
    const int n = in.ConsumeIntegralInRange(-2, 40);
    const QString piece = dv::Segment(source, separator, n);
    if (!source.contains(piece)) std::abort();
    if (!separator.isEmpty() && piece.contains(separator)) std::abort();
}

void CheckNumbers(FuzzedDataProvider& in)
{
    const std::uint64_t value = in.ConsumeIntegral<std::uint64_t>();
    const int digits = in.ConsumeIntegralInRange(-1, 80);
    const QString bits = dv::IntToBin(value, digits);
    if (bits.size() < digits || bits.size() > std::max(digits, 64)) std::abort();
    if (bits.size() <= 64 && static_cast<std::uint64_t>(dv::BinToInt(bits)) != value) std::abort();

    const QString text = Text(in, 64);
    (void)dv::StrToBoolEx(text, in.ConsumeBool());
    try {
        const std::int64_t read = dv::BinToInt(text);
        if (dv::BinToInt(dv::IntToBin(static_cast<std::uint64_t>(read), 0)) != read) std::abort();
    } catch (const dv::TDVRuntimeException&) {
    }
    try {
        const long double x = dv::DVStrToFloat(text);
        // Written with 15 significant digits, a normal number reads back that close.
        if (std::isnormal(x) && std::fabs(dv::DVStrToFloat(dv::DVFloatToStr(x)) - x) > 1e-14L * std::fabs(x)) std::abort();
    } catch (const dv::TDVRuntimeException&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 4 * 1024) return -1;
    FuzzedDataProvider in(data, size);
    if (in.ConsumeBool()) CheckParts(in);
    else CheckNumbers(in);
    return 0;
}
