// A Python thread that waits for a search or another long call.
#pragma once

#include "bindings/python/PythonApi.h"

#include "bindings/core/Search.h"

namespace tq::bindings::python {

/// Gives Python's lock away meanwhile, and looks for signals: a handler that raises, such as that
/// of Ctrl-C, ends the search.
class PythonWaiting : public Waiting {
public:
    PythonWaiting() = default;
    ~PythonWaiting() override;

    void letOthersRun() override;
    void stopOthers() override;
    [[nodiscard]] bool isInterrupted() override;

    /// Sets the error that a signal's handler has raised. False if there is none.
    [[nodiscard]] bool restoreError();

private:
    PyThreadState* m_state = nullptr;
    PyObject* m_error[3] = {};
};

/// The interpreter is about to end: threads that wait then never come back.
void endWaiting();
/// An interpreter has begun. True if one ended before it in this process.
[[nodiscard]] bool beginWaiting();

} // namespace tq::bindings::python
