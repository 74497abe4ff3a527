// NumberConvert: every operation on any input and digit count. A conversion either writes its
// result or raises the command's failure; a string result stays within 100 times the input.
#include "commands/text/gui_numberconvert.h"
#include "framework/exceptions.h"
#include "tests/support/testhost.h"

#include <fuzzer/FuzzedDataProvider.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 4 * 1024) return -1;
    FuzzedDataProvider in(data, size);
    const auto operations = dv::NumberOperations();
    const auto& row = operations[in.ConsumeIntegralInRange<std::size_t>(0, operations.size() - 1)];
    const QString digits = QString::fromStdString(in.ConsumeRandomLengthString(8));
    const std::string inputBytes = in.ConsumeRemainingBytesAsString();
    const QString input = QString::fromUtf8(inputBytes.data(), static_cast<qsizetype>(inputBytes.size()));

    dv::test::TTestHost host;
    host.Declare(QStringLiteral("Out"), row.stringResult ? dv::g_StringType : dv::g_NumberType);
    dv::TDVCmdNumberConversion command(&host);
    dv::TParamList params;
    params.AddString(QStringLiteral("Operation"), QString::fromLatin1(row.keyword));
    params.AddString(QStringLiteral("Input"), input);
    params.AddString(QStringLiteral("Output"), QStringLiteral("Out"));
    params.AddString(QStringLiteral("Stellen"), digits);
    try {
        command.Run(params);
    } catch (const dv::TDravikException&) {
        return 0;
    }
    // Stellen is kept in 8 bits, so a result has at most 255 digits beyond what the input gives.
    if (host.ValueText(QStringLiteral("Out")).size() > 100 * (input.size() + 1) + 255) std::abort();
    return 0;
}
