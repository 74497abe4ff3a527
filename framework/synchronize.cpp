#include "framework/synchronize.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>

#include <exception>

namespace dv {

void Synchronize(const std::function<void()>& work)
{
    QCoreApplication* app = QCoreApplication::instance();
    if (!app || QThread::currentThread() == app->thread()) {
        work();
        return;
    }
    std::exception_ptr failure;
    QMetaObject::invokeMethod(
        app,
        [&] {
            try {
                work();
            } catch (...) {
                failure = std::current_exception();
            }
        },
        Qt::BlockingQueuedConnection);
    if (failure) std::rethrow_exception(failure);
}

}  // namespace dv
