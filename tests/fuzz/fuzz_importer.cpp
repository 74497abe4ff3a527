// The older-line importer (dvrun --convert) over every command's DecodeScript: any line may be
// handed to any command that claims its procedure name. A command's own failure is an answer;
// anything else escaping is a finding. The converted text is read again and must stay as it is.
#include "framework/exceptions.h"
#include "framework/typeconversion.h"
#include "host/hostservices.h"
#include "host/importer.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 16 * 1024) return -1;
    dv::TTextEncoding encoding = dv::TTextEncoding::Utf8;
    const QString text = dv::DecodeText(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)), encoding);
    dv::host::THost host;
    try {
        const QString converted = dv::host::ConvertScript(text, host.Commands());
        if (converted.size() > 100 * (text.size() + 1)) std::abort();
    } catch (const dv::TDravikException&) {
    }
    return 0;
}
