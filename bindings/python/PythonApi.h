// Python's C interface, as far as it stays the same from 3.11 on.
#pragma once

#define Py_LIMITED_API 0x030B0000
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include <memory>

namespace tq::bindings::python {

struct DropReference {
    void operator()(PyObject* object) const { Py_DECREF(object); }
};
/// A reference of one's own; null where a call has set Python's error.
using Owned = std::unique_ptr<PyObject, DropReference>;

} // namespace tq::bindings::python
