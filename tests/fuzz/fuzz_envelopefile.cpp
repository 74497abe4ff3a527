// Envelope file load from any file content: a fault is raised as the command's failure, and no
// envelope holds more points than a file may declare (missing points read as 0, so a short file
// may declare many).
#include "analysis/curvestore.h"
#include "scope/envelopefile.h"

#include <QFile>
#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 64 * 1024) return -1;
    static const QString path = QStringLiteral("/tmp/dv-fuzz-envelope-%1.HKV").arg(getpid());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) std::abort();
    file.write(reinterpret_cast<const char*>(data), static_cast<qint64>(size));
    file.close();
    dv::analysis::TCurveStore store;
    try {
        dv::scope::LoadHK(store, path);
    } catch (const dv::TDravikException&) {
    }
    for (const int curve : {dv::analysis::kUpperEnvelope, dv::analysis::kLowerEnvelope}) {
        if (store.X(curve).size() > static_cast<std::size_t>(dv::scope::kMaxEnvelopePoints)) std::abort();
    }
    return 0;
}
