#include "host/catalogue_listing.h"

#include "framework/catalogue.h"
#include "framework/registry.h"

namespace dv {

QString CatalogueListing(bool includeUnavailable)
{
    QString out = QString::fromLatin1(kPackageDescription) + '\n';
    for (const TCatalogueRow& row : Catalogue()) {
        const bool available = IsAvailable(row);
        if (!available && !includeUnavailable) continue;
        out += QStringLiteral("%1%2\t%3\n")
                   .arg(available ? QString() : QStringLiteral("(nicht verfügbar) "), QString::fromLatin1(row.procedure),
                        QString::fromLatin1(row.signature));
    }
    return out;
}

}  // namespace dv
