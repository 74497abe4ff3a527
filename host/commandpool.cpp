#include "host/commandpool.h"

#include "framework/registry.h"

namespace dv::host {

TDVRunEdit* TCommandPool::ForClass(const QString& commandClass)
{
    auto it = commands_.find(commandClass);
    if (it == commands_.end()) {
        std::shared_ptr<TDVRunEdit> command = CreateCommand(commandClass, parser_);
        if (!command) return nullptr;
        it = commands_.insert(commandClass, std::move(command));
    }
    return it.value().get();
}

TDVThreadRunEdit* TCommandPool::ForProcedure(const QString& procedure)
{
    const TCatalogueRow* row = FindProcedure(procedure);
    if (!row || row->base == TBaseKind::Edit || !IsAvailable(*row)) return nullptr;
    return dynamic_cast<TDVThreadRunEdit*>(ForClass(QString::fromLatin1(row->commandClass)));
}

}  // namespace dv::host
