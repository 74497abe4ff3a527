#pragma once
// The host's instances of the library's commands: one per command class, created on first use
// through the registry and kept for the host's life.
#include "framework/catalogue.h"
#include "framework/runedit.h"

#include <QHash>

#include <memory>
#include <vector>

namespace dv::host {

class TCommandPool {
public:
    explicit TCommandPool(TDVParser* parser) : parser_(parser) {}
    // The command of a script procedure, or nullptr when the catalogue has none or it is not built.
    TDVThreadRunEdit* ForProcedure(const QString& procedure);
    // The command of a class name, or nullptr.
    TDVRunEdit* ForClass(const QString& commandClass);
    // Every command a script can call: the registry's built ones and those added here.
    std::vector<TDVThreadRunEdit*> Available();
    // Adds a command under its procedure name, ahead of the catalogue (tests, host extensions).
    void Add(std::shared_ptr<TDVThreadRunEdit> command);

private:
    TDVParser* parser_;
    QHash<QString, std::shared_ptr<TDVRunEdit>> commands_;  // by class name
    std::vector<std::shared_ptr<TDVThreadRunEdit>> added_;
};

}  // namespace dv::host
