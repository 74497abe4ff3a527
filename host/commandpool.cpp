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

void TCommandPool::Add(std::shared_ptr<TDVThreadRunEdit> command) { added_.push_back(std::move(command)); }

std::vector<TDVThreadRunEdit*> TCommandPool::Available()
{
    std::vector<TDVThreadRunEdit*> all;
    for (const auto& c : added_) all.push_back(c.get());
    for (const TCommandClass& c : CommandClasses()) {
        if (auto* command = dynamic_cast<TDVThreadRunEdit*>(ForClass(QString::fromLatin1(c.commandClass)))) {
            all.push_back(command);
        }
    }
    return all;
}

TDVThreadRunEdit* TCommandPool::ForProcedure(const QString& procedure)
{
    for (const auto& c : added_) {
        if (c->GetID().compare(procedure, Qt::CaseInsensitive) == 0) return c.get();
    }
    const TCatalogueRow* row = FindProcedure(procedure);
    if (!row || row->base == TBaseKind::Edit || !IsAvailable(*row)) return nullptr;
    return dynamic_cast<TDVThreadRunEdit*>(ForClass(QString::fromLatin1(row->commandClass)));
}

}  // namespace dv::host
