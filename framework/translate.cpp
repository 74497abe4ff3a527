#include "framework/translate.h"

#include <QCoreApplication>
#include <QStringList>

namespace dv {

namespace {
constexpr const char* kContext = "dvcommands";
}

QString _(const char* german) { return QCoreApplication::translate(kContext, german); }

QString _(const QString& german) { return _(german.toUtf8().constData()); }

QString Format(const QString& pattern, const QStringList& args)
{
    QString out;
    qsizetype next = 0;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar c = pattern[i];
        if (c == '%' && i + 1 < pattern.size()) {
            const QChar conversion = pattern[i + 1];
            if (conversion == '%') {
                out += '%';
                ++i;
                continue;
            }
            if (conversion == 's' || conversion == 'd') {
                if (next < args.size()) out += args[next];
                ++next;
                ++i;
                continue;
            }
        }
        out += c;
    }
    return out;
}

}  // namespace dv
