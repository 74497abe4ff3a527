// dvrun: runs test scripts that call the library's commands.
#include "host/catalogue_listing.h"

#include <QCoreApplication>
#include <QStringList>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const QStringList args = app.arguments().mid(1);
    if (args.contains(QStringLiteral("--list"))) {
        std::fputs(qPrintable(dv::CatalogueListing(args.contains(QStringLiteral("--all")))), stdout);
        return 0;
    }
    std::fputs("usage: dvrun --list [--all]\n", stderr);
    return 2;
}
