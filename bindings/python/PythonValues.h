// Values between Python and the library.
#pragma once

#include "bindings/python/PythonApi.h"

#include <optional>
#include <string>
#include <string_view>

#include "bindings/core/ClassInfo.h"

namespace tq::bindings::python {

/// A Python object as a value of the wanted type; none with a TypeError if it is no such value.
/// `name` is the parameter's, for the message.
[[nodiscard]] std::optional<Value> fromPython(PyObject* object, const Type& type, const char* name);

/// A new reference; null with an error.
[[nodiscard]] PyObject* toPython(const Value& value);

/// Bytes that aren't UTF-8 become surrogates, as in file names.
[[nodiscard]] PyObject* newText(std::string_view text);

} // namespace tq::bindings::python
