#pragma once
// The registry through which a host enumerates and constructs the commands that are built.
// Catalogue rows whose command is not built yet are listed as not available, never faked.
#include "framework/catalogue.h"
#include "framework/runedit.h"

#include <QString>

#include <memory>
#include <span>

namespace dv {

class TDVParser;

// The virtual constructor Create(parser) of a command class.
using TCommandFactory = std::unique_ptr<TDVRunEdit> (*)(TDVParser* parser);

struct TCommandClass {
    const char* commandClass;
    TCommandFactory create;
};

// The command classes that are built (defined in commands/commandtable.cpp).
std::span<const TCommandClass> CommandClasses();

bool IsAvailable(const TCatalogueRow& row);
// A new instance of the command class; nullptr when that class is not built.
std::unique_ptr<TDVRunEdit> CreateCommand(const QString& commandClass, TDVParser* parser);

template <class Command>
std::unique_ptr<TDVRunEdit> Construct(TDVParser* parser)
{
    if constexpr (std::is_constructible_v<Command, TDVParser*>) {
        return std::make_unique<Command>(parser);
    } else {
        return std::make_unique<Command>();
    }
}

}  // namespace dv
