#pragma once
// The one way a worker thread reaches the GUI thread: the call runs there and the worker waits.
#include <functional>

namespace dv {

// Runs work on the application's main thread and returns when it is done; runs it directly when
// already there or when no application object exists. Exceptions travel back to the caller.
void Synchronize(const std::function<void()>& work);

}  // namespace dv
