// The script parser on any bytes, read as dvrun reads a script file: every malformed text is
// reported as parse errors, nothing escapes.
#include "framework/typeconversion.h"
#include "host/hostservices.h"
#include "host/scriptparser.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 64 * 1024) return -1;
    dv::TTextEncoding encoding = dv::TTextEncoding::Utf8;
    const QString text = dv::DecodeText(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)), encoding);
    dv::host::THost host;
    dv::host::TScriptParser parser(host.Program(), host.Commands());
    parser.ParseProgram(text);
    return 0;
}
