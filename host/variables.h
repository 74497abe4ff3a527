#pragma once
// Script variables: the parse-time scope that resolves names to slots, and the run-time frame that
// holds one variable per slot. Globals live in the program's frame, each procedure call gets its own.
#include "framework/services.h"
#include "host/runtimevalue.h"

#include <QHash>
#include <QString>

#include <deque>
#include <vector>

namespace dv::host {

class TVariable final : public TDVVariable {
public:
    TVariable(QString name, TDVType type);
    QString GetName() const override { return name_; }
    TDVType GetType() const override { return type_; }
    // An array variable hands out its array itself (commands change it in place); any other
    // variable a snapshot of its current value.
    TValue& GetValue() override;

    // Stores a value converted to the variable's type; arrays are copied unless unshared.
    void Assign(TVal v);
    void SetDefault();
    // Lets go of a text's or an array's memory; the value is undefined until the next SetDefault or
    // Assign (a procedure's frame between two calls).
    void Release() noexcept;
    // Invariant: a variable of type Number always holds a number, so reading value.number needs no
    // look at value.kind.
    TVal value;

private:
    QString name_;
    TDVType type_;
    TValuePtr snapshot_;
};

struct TSymbol {
    QString name;  // as declared
    TDVType type;
    bool isVarParam = false;
};

// The names of one procedure (or of the program): parameters first, then its var declarations.
class TScope {
public:
    explicit TScope(const TScope* globals = nullptr) : globals_(globals) {}
    // The new slot, or -1 when the name is already declared in this scope.
    int Declare(const TSymbol& symbol);
    int Find(const QString& name) const;  // -1 when absent
    const TSymbol& Symbol(int slot) const { return symbols_[static_cast<std::size_t>(slot)]; }
    int Size() const { return static_cast<int>(symbols_.size()); }
    const TScope* Globals() const { return globals_; }

private:
    const TScope* globals_;
    std::vector<TSymbol> symbols_;
    QHash<QString, int> index_;  // lower-case name -> slot
};

// The variables of one running scope. A var parameter's slot points at the caller's variable.
// A procedure's frames are made once and used again by later calls (see TProcedure).
class TFrame {
public:
    explicit TFrame(const TScope& scope);
    TFrame(const TFrame&) = delete;
    TFrame& operator=(const TFrame&) = delete;
    const TScope& Scope() const { return scope_; }
    TVariable& Slot(int slot) const { return *slots_[static_cast<std::size_t>(slot)]; }
    TVariable& Own(int slot) { return *own_[static_cast<std::size_t>(slot)]; }
    void Bind(int slot, TVariable& variable) { slots_[static_cast<std::size_t>(slot)] = &variable; }
    // The variable of that name in this frame, or nullptr.
    TVariable* Find(const QString& name) const;
    // After a call: every slot back to its own variable, and no text or array kept alive.
    void Release() noexcept;

private:
    const TScope& scope_;
    std::deque<TVariable> owned_;     // addresses stay valid
    std::vector<TVariable*> own_;     // own_[slot] is &owned_[slot]
    std::vector<TVariable*> slots_;   // own_, or the caller's variable for a var parameter
    std::vector<int> toRelease_;      // var parameters and variables that can hold a text or an array
};

}  // namespace dv::host
