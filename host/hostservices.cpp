#include "host/hostservices.h"

#include "framework/exceptions.h"
#include "framework/translate.h"
#include "host/scriptparser.h"

#include <QApplication>
#include <QCompleter>
#include <QLineEdit>
#include <QRegularExpression>

#include <pthread.h>
#include <cstdio>
#include <unistd.h>

namespace dv::host {

namespace {

// A node of the host's tree handed to a command; it evaluates in the frame running at the time.
class THostNode final : public TDVAbsy {
public:
    THostNode(THost& host, TExprPtr expr, bool constant) : host_(host), expr_(std::move(expr)), constant_(constant) {}
    TValuePtr Evaluate() const override { return host_.Evaluate(*expr_, constant_); }

private:
    THost& host_;
    TExprPtr expr_;
    bool constant_;  // names no variable
};

// The address below which no procedure call may start: a quarter of this thread's stack (at least
// 1 MB) stays free for what the deepest call still runs (a command, the error report).
const char* StackLimitOfThisThread()
{
    pthread_attr_t attr;
    if (pthread_getattr_np(pthread_self(), &attr) != 0) return nullptr;
    void* bottom = nullptr;
    std::size_t size = 0;
    const bool known = pthread_attr_getstack(&attr, &bottom, &size) == 0;
    pthread_attr_destroy(&attr);
    const std::size_t reserve = std::max<std::size_t>(size / 4, std::size_t{1} << 20);
    if (!known || size <= reserve) return nullptr;
    return static_cast<const char*>(bottom) + reserve;
}

// On a terminal the status text also stands in a live line on stderr until the next output.
bool StatusLineWanted()
{
    static const bool terminal = ::isatty(STDERR_FILENO) != 0;
    return terminal;
}

}  // namespace

THost::THost() : commands_(this)
{
    exec_.runControl = &runControl_;
    exec_.hooks = this;
    exec_.random = &random_;
    SetHostServices({this, this, this});
}

THost::~THost()
{
    ClearStatusLine();
    SetHostServices({});
}

void THost::ClearStatusLine()
{
    if (!statusLineShown_) return;
    std::fputs("\r\033[K", stderr);
    std::fflush(stderr);
    statusLineShown_ = false;
}

void THost::SetOutput(TLineSink stdoutSink, TLineSink logSink)
{
    stdout_ = std::move(stdoutSink);
    log_ = std::move(logSink);
}

void THost::PrepareRun(QHash<int, TVal> defines)
{
    defines_ = std::move(defines);
    globals_ = std::make_unique<TFrame>(program_.globals);
    globals_->Slot(program_.projectPathSlot).Assign(TVal::String(projectFolder_));
    exec_.globals = globals_.get();
    exec_.frame = globals_.get();
    exec_.defines = &defines_;
    exec_.depth = 0;
}

void THost::RunMain()
{
    exec_.stackLimit = StackLimitOfThisThread();
    program_.main.Exec(exec_);
}

void THost::Log(const QString& line)
{
    std::lock_guard lock(outputMutex_);
    if (log_) log_(line);
}

void THost::PrintLine(std::FILE* stream, const QString& line)
{
    std::lock_guard lock(outputMutex_);
    ClearStatusLine();
    std::fputs((line + '\n').toUtf8().constData(), stream);
    std::fflush(stream);
}

TValuePtr THost::Evaluate(const TExpr& expr, bool constant)
{
    TExec constants;
    if (!exec_.frame && !constant) {
        // Before the run the variables do not exist yet.
        throw TDVRuntimeException(_("Variablen haben erst während des Testlaufs einen Wert"));
    }
    TExec& ex = exec_.frame ? exec_ : constants;
    TVal v;
    expr.Eval(ex, v);
    return ToValue(v);
}

TDVAbsyPtr THost::ParseExpression(const QString& text)
{
    TScriptParser parser(program_, commands_);
    TExprPtr expr;
    bool constant = true;
    if (exec_.frame) {
        expr = parser.ParseExpressionText(text, &exec_.frame->Scope());
    } else {
        // Before the run: a text naming a global parses, but only a constant one can be evaluated.
        try {
            expr = parser.ParseExpressionText(text, nullptr);
        } catch (const TDVSyntaxError&) {
            expr = parser.ParseExpressionText(text, &program_.globals);
            constant = false;
        }
    }
    if (auto* array = dynamic_cast<TArrayLiteral*>(expr.get())) {
        std::vector<TDVAbsyPtr> elements;
        for (TExprPtr& e : array->Elements()) elements.push_back(std::make_unique<THostNode>(*this, std::move(e), constant));
        return std::make_unique<TDVAbsyArray>(std::move(elements));
    }
    return std::make_unique<THostNode>(*this, std::move(expr), constant);
}

TDVAbsyPtr THost::ParseSingleExpression(const QString& text)
{
    try {
        return ParseExpression(text);
    } catch (const TDravikException&) {
        return nullptr;
    }
}

QString THost::ReplaceProjectPath(const QString& path) const
{
    QString out = path;
    return out.replace(QLatin1String(kProjectPathPlaceholder), projectFolder_, Qt::CaseInsensitive);
}

TVariable* THost::Lookup(const QString& name) const
{
    if (!exec_.frame) return nullptr;
    if (TVariable* v = exec_.frame->Find(name)) return v;
    return exec_.globals->Find(name);
}

void THost::SetVariable(const QString& name, TValuePtr value)
{
    const QString trimmed = name.trimmed();
    if (trimmed.isEmpty()) return;  // a var parameter the call left out writes nowhere
    static const QRegularExpression element(QStringLiteral("^(\\w+)\\{(\\d+)\\}$"));
    const QRegularExpressionMatch m = element.match(trimmed);
    TVariable* var = Lookup(m.hasMatch() ? m.captured(1) : trimmed);
    if (!var) Undeclared(m.hasMatch() ? m.captured(1) : trimmed);
    if (!m.hasMatch()) {
        var->Assign(FromValue(*value));
        return;
    }
    if (var->value.kind != TValueKind::Array) {
        throw TDVRuntimeException(Format(_("Die Variable \"%s\" ist kein Array."), {var->GetName()}));
    }
    TArrayValue& array = *var->value.array;
    const TDVType elementType{array.GetElementKind(), TValueKind::Misc};
    const long double index = m.captured(2).toDouble();
    MakeRoomFor(exec_, var->GetName(), array, index);
    StoreElement(array, static_cast<int>(index), Coerce(FromValue(*value), elementType));
}

void THost::AttachVariableEditor(QObject* control)
{
    // Only a dialog's line edit can offer names; without a GUI there is nothing to attach to.
    auto* edit = qobject_cast<QLineEdit*>(control);
    if (!edit || !qobject_cast<QApplication*>(QCoreApplication::instance())) return;
    QStringList names;
    for (int slot = 0; slot < program_.globals.Size(); ++slot) names << program_.globals.Symbol(slot).name;
    auto* completer = new QCompleter(names, edit);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    edit->setCompleter(completer);
}

TDVVariable* THost::FindVariable(const QString& name) { return Lookup(name.trimmed()); }

QString THost::ResolveText(const QString& text)
{
    const TVariable* var = Lookup(text.trimmed());
    return var ? ValText(var->value) : text;
}

void THost::WriteOutput(const QString& text, const QString& fontName, int size, int style, int color)
{
    std::lock_guard lock(outputMutex_);
    ClearStatusLine();
    if (stdout_) stdout_(text);
    if (log_) {
        log_(QStringLiteral("AUSGABE %1 [Schrift=%2; Größe=%3; Stil=%4; Farbe=%5]")
                 .arg(text, fontName, QString::number(size), QString::number(style), QString::number(color)));
    }
}

void THost::SetStatusText(const QString& text)
{
    statusText_ = text;
    Log(QStringLiteral("STATUS ") + text);
    if (!StatusLineWanted()) return;
    std::lock_guard lock(outputMutex_);
    std::fputs((QStringLiteral("\r\033[K") + text).toUtf8().constData(), stderr);
    std::fflush(stderr);
    statusLineShown_ = true;
}

void THost::StopTest()
{
    stoppedByCommand_ = true;
    runControl_.SignalStop();
    Log(QStringLiteral("STOP"));
}

void THost::SetLaborVisible(bool show)
{
    laborVisible_ = show;
    Log(show ? QStringLiteral("LABOR sichtbar") : QStringLiteral("LABOR verborgen"));
}

void THost::WriteLog(const QString& text)
{
    std::lock_guard lock(outputMutex_);
    ClearStatusLine();
    if (stdout_) stdout_(text);
    if (log_) log_(QStringLiteral("LOG ") + text);
}

void THost::RecordFailedCheck(int line, const QString& text)
{
    failedChecks_.push_back({line, text});
    Log(QStringLiteral("PRÜFUNG FEHLGESCHLAGEN Zeile %1: %2").arg(line).arg(text));
}

}  // namespace dv::host
