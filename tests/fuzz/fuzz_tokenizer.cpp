// The tokenizer alone: every token lies inside the text, and each call moves on, error or not.
#include "framework/scanner.h"
#include "framework/typeconversion.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 64 * 1024) return -1;
    dv::TTextEncoding encoding = dv::TTextEncoding::Utf8;
    const QString text = dv::DecodeText(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)), encoding);
    for (const bool dropMarkers : {true, false}) {
        dv::TScanner scanner(text, dropMarkers);
        // A token or an error consumes at least one character, so the text's length bounds the calls.
        for (qsizetype calls = 0; calls <= text.size() + 1; ++calls) {
            try {
                const dv::TToken t = scanner.GetNextToken();
                if (t.offset < 0 || t.length < 0 || t.offset + t.length > text.size()) std::abort();
                if (t.type == dv::TTokenType::EndOfText) break;
            } catch (const dv::TDVSyntaxError& e) {
                if (e.Line() < 1 || e.Column() < 1) std::abort();
            }
            if (calls == text.size() + 1) std::abort();  // no end of text after every character
        }
    }
    return 0;
}
