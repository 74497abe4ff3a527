#include "framework/registry.h"

namespace dv {

bool IsAvailable(const TCatalogueRow& row)
{
    for (const TCommandClass& c : CommandClasses()) {
        if (QLatin1String(c.commandClass) == QLatin1String(row.commandClass)) return true;
    }
    return false;
}

std::unique_ptr<TDVRunEdit> CreateCommand(const QString& commandClass, TDVParser* parser)
{
    for (const TCommandClass& c : CommandClasses()) {
        if (commandClass == QLatin1String(c.commandClass)) return c.create(parser);
    }
    return nullptr;
}

}  // namespace dv
