// Failures as Python exceptions, and messages for Python's logging.
#pragma once

#include "bindings/python/PythonApi.h"

#include "bindings/core/ScriptError.h"

namespace tq::bindings::python {

/// Makes the exceptions of the package, all derived from `Error`. False with an error.
bool addExceptions(PyObject* module);
/// For a new interpreter, after the one that had them ended.
void forgetExceptions();

/// Sets Python's error. Gives null, for callers to return.
PyObject* raise(const Failure& failure);

/// Hands what the library said in the last calls to the package's logger, whose exceptions are
/// printed. False with an error for one that isn't an `Exception`, such as that of Ctrl-C.
[[nodiscard]] bool deliverMessages();

} // namespace tq::bindings::python
