#include "host/commandcall.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>

#include <exception>
#include <thread>

namespace dv::host {

TVal ParamValue(TVal v, const TDVParamDecl& decl)
{
    if (decl.type.kind == TValueKind::String && v.kind == TValueKind::Array) return TVal::String(ArrayToChars(*v.array));
    return v;
}

TParamList TCommandCall::BuildParams(TExec& ex) const
{
    const TDVSignature& sig = command_.Signature();
    TParamList params(static_cast<unsigned>(sig.params.size()));
    for (std::size_t i = 0; i < sig.params.size(); ++i) {
        const TDVParamDecl& decl = sig.params[i];
        const TBoundArg& arg = args_[i];
        if (arg.present && decl.isVar) {
            if (!arg.ref) Undeclared(arg.name);
            params.AddString(decl.name, arg.name);
        } else if (arg.present) {
            TVal v;
            arg.value->Eval(ex, v);
            v = ParamValue(std::move(v), decl);
            params.AddValue(decl.name, ToValue(v));
        } else if (defaults_[i].present) {
            if (defaults_[i].value) {
                params.AddValue(decl.name, ToValue(*defaults_[i].value));
            } else {
                params.AddString(decl.name, QString());
            }
        }
    }
    return params;
}

void TCommandCall::Exec(TExec& ex) const
{
    ex.line = Line();
    ex.CheckStop();
    TParamList params = BuildParams(ex);
    RunCommandBody(command_, onThisThread_, params);
    ex.line = Line();
    ex.CheckStop();
}

void RunCommandBody(TDVThreadRunEdit& command, TDVFuncRunEdit* onThisThread, TParamList& params)
{
    if (onThisThread) {
        onThisThread->Run(params);
        return;
    }
    std::exception_ptr failure;
    auto body = [&] {
        try {
            command.RunThreaded(params);
        } catch (...) {
            failure = std::current_exception();
        }
    };
    QCoreApplication* app = QCoreApplication::instance();
    if (app && QThread::currentThread() == app->thread()) {
        QEventLoop loop;
        std::thread worker([&] {
            body();
            QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
        });
        loop.exec();
        worker.join();
    } else {
        std::thread worker(body);
        worker.join();
    }
    if (failure) std::rethrow_exception(failure);
}

}  // namespace dv::host
