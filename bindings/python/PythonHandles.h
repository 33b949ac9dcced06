// Handles as Python objects, of classes made from the description of the interface.
#pragma once

#include "bindings/python/PythonApi.h"

#include "bindings/core/ClassInfo.h"

namespace tq::bindings::python {

/// Makes the class and adds it to the module. False with an error.
bool addClass(PyObject* module, const ClassInfo& info);
/// Adds the functions of an island, and those of this layer. False with an error.
bool addFunctions(PyObject* module, const Island& island);
bool addOwnFunctions(PyObject* module);

/// The one Python object of a handle: a new reference, null with an error.
[[nodiscard]] PyObject* newHandle(const ObjectRef& object);
/// The handle behind a Python object of that class; none, without an error, for anything else.
[[nodiscard]] ObjectRef handleOf(PyObject* object, const ClassInfo& type);

/// "name(a, b=True)": how a member is called.
[[nodiscard]] std::string signatureOf(const Member& member, const char* first);

} // namespace tq::bindings::python
