#pragma once
// The three host services every command reaches the host through. The host installs them before any
// command runs (SetHostServices); a command that finds one missing raises a TDravikException.
#include "framework/values.h"

#include <QString>

#include <atomic>
#include <memory>

class QObject;

namespace dv {

class TDVParser;

// A declared script variable: its type and its current value, changeable in place.
class TDVVariable {
public:
    virtual ~TDVVariable() = default;
    virtual QString GetName() const = 0;
    virtual TDVType GetType() const = 0;
    virtual TValue& GetValue() = 0;
};

class IDVGetParser {
public:
    virtual ~IDVGetParser() = default;
    virtual TDVParser* GetParser() = 0;  // slot 0
};

class IDVVarAccess {
public:
    virtual ~IDVVarAccess() = default;
    // slot 0: assigns the value to the variable of that name; the host owns the value from now on.
    virtual void SetVariable(const QString& name, TValuePtr value) = 0;
    // slot 1: makes an editor's edit control offer the script's variables.
    virtual void AttachVariableEditor(QObject* control) = 0;
    // slot 2: the declared variable of that name, or nullptr.
    virtual TDVVariable* FindVariable(const QString& name) = 0;
    // slot 3: a text naming a variable gives that variable's current value as text; any other
    // text comes back unchanged.
    virtual QString ResolveText(const QString& text) = 0;
};

// The run's stop signal. A worker waits on StopHandle() (a file descriptor that becomes readable
// once the run is to stop) together with its own descriptors, so stopping never needs polling.
class TRunControl {
public:
    TRunControl();
    ~TRunControl();
    TRunControl(const TRunControl&) = delete;
    TRunControl& operator=(const TRunControl&) = delete;

    int StopHandle() const { return fd_; }
    void SignalStop();  // async-signal-safe
    void Reset();
    bool StopRequested() const { return stopped_.load(); }
    // Waits until stop is signalled or the time-out (ms, negative: none) ends; true when stopped.
    bool WaitForStop(int timeoutMs) const;

private:
    int fd_;
    std::atomic<bool> stopped_{false};
};

class IDVTestEnvironment {
public:
    virtual ~IDVTestEnvironment() = default;
    // slot 0: text output in a font; style bits 1 bold, 2 italic, 4 underline, 8 strike-out.
    virtual void WriteOutput(const QString& text, const QString& fontName, int size, int style, int color) = 0;
    // slot 1
    virtual void SetStatusText(const QString& text) = 0;
    // slot 2 is the host's and not used by this library.
    // slot 3: ends the running test.
    virtual void StopTest() = 0;
    // slot 4
    virtual TRunControl& GetRunControl() = 0;
    // slot 5: shows or hides the laboratory view.
    virtual void SetLaborVisible(bool show) = 0;
};

struct THostServices {
    IDVGetParser* parser = nullptr;
    IDVVarAccess* varAccess = nullptr;
    IDVTestEnvironment* testEnvironment = nullptr;
};

void SetHostServices(const THostServices& services);
THostServices HostServices();

IDVGetParser& GetParser();
IDVVarAccess& VarAccess();
IDVTestEnvironment& TestEnvironment();
// The parser, or nullptr when no host is installed.
TDVParser* CurrentParser();

}  // namespace dv
