#pragma once
// The syntax tree the interpreter runs: expression nodes evaluate, statement nodes execute. Names are
// resolved to slots while parsing, so running a node looks nothing up by name.
#include "framework/services.h"
#include "host/runtimevalue.h"
#include "host/variables.h"

#include <QHash>
#include <QString>

#include <memory>
#include <random>
#include <vector>

namespace dv::host {

// What a running script reaches outside the tree.
class IRunHooks {
public:
    virtual ~IRunHooks() = default;
    virtual void WriteLog(const QString& text) = 0;
    virtual void RecordFailedCheck(int line, const QString& text) = 0;
};

struct TExec;

// Told of each statement before it runs, on the interpreter's thread (a host that shows the running
// line or the live variables); it must return quickly.
class IStatementObserver {
public:
    virtual ~IStatementObserver() = default;
    virtual void BeforeStatement(const TExec& ex, int line) = 0;
};

// Raised when the run's stop event is set; ends the run without being a script error.
struct TRunStopped {};

// What a script may allocate; crossing a limit is a runtime error raised before the memory is taken.
struct TLimits {
    qsizetype maxArray = 100'000'000;      // elements of one array
    qsizetype maxString = 1'000'000'000;   // characters of one text
};

// The state of one run: the frames, the line being executed (for error reports) and the hooks.
struct TExec {
    TFrame* globals = nullptr;
    TFrame* frame = nullptr;
    int line = 0;
    int depth = 0;  // procedure call depth
    const TRunControl* runControl = nullptr;
    IRunHooks* hooks = nullptr;
    IStatementObserver* observer = nullptr;  // nullptr: nobody watches (dvrun)
    // Starting values given on the command line, by global slot; they replace a declaration's own.
    const QHash<int, TVal>* defines = nullptr;
    TLimits limits;
    std::mt19937_64* random = nullptr;  // Random's numbers; nullptr outside a run
    // The lowest stack address a procedure call may start at; nullptr: not checked.
    const char* stackLimit = nullptr;
    // Stop checks (loop rounds, command calls) left before the run stops as if stopped; negative:
    // no limit. Bounds the runs of untrusted scripts, as under the fuzzer.
    mutable long long stopChecksLeft = -1;

    bool StopRequested() const { return runControl && runControl->StopRequested(); }
    void CheckStop() const
    {
        if (StopRequested()) throw TRunStopped{};
        if (stopChecksLeft >= 0) {
            if (stopChecksLeft == 0) throw TRunStopped{};
            --stopChecksLeft;
        }
    }
};

class TExpr {
public:
    TExpr(int line, int column) : line_(line), column_(column) {}
    virtual ~TExpr() = default;
    virtual void Eval(TExec& ex, TVal& out) const = 0;
    // Fast paths; the defaults evaluate and check the kind.
    virtual long double Num(TExec& ex) const;
    virtual bool Bool(TExec& ex) const;
    // The kind every evaluation gives, Misc when it is known only at run time.
    virtual TValueKind StaticKind() const { return TValueKind::Misc; }
    int Line() const { return line_; }
    int Column() const { return column_; }

private:
    int line_;
    int column_;
};
using TExprPtr = std::unique_ptr<TExpr>;

class TStmt {
public:
    explicit TStmt(int line) : line_(line) {}
    virtual ~TStmt() = default;
    virtual void Exec(TExec& ex) const = 0;
    int Line() const { return line_; }

private:
    int line_;
};
using TStmtPtr = std::unique_ptr<TStmt>;

struct TBlock {
    std::vector<TStmtPtr> statements;
    void Exec(TExec& ex) const
    {
        if (ex.observer) {
            ExecObserved(ex);
            return;
        }
        for (const TStmtPtr& s : statements) {
            if (ex.StopRequested()) [[unlikely]] Stopped(ex, *s);
            s->Exec(ex);
        }
    }

private:
    // The same with the observer told of each statement; the observer is set before a run starts.
    void ExecObserved(TExec& ex) const
    {
        for (const TStmtPtr& s : statements) {
            ex.observer->BeforeStatement(ex, s->Line());
            if (ex.StopRequested()) Stopped(ex, *s);
            s->Exec(ex);
        }
    }
    [[noreturn]] static void Stopped(TExec& ex, const TStmt& s)
    {
        ex.line = s.Line();  // a stop names the statement it did not run
        throw TRunStopped{};
    }
};

}  // namespace dv::host
