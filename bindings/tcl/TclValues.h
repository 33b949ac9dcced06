// Values between Tcl and the library.
#pragma once

#include <tcl.h>

#include <optional>

#include "bindings/core/ClassInfo.h"

namespace tq::bindings::tcl {

/// A Tcl value as one of the wanted type; none with a message in the interpreter if it is no such
/// value. `name` is the parameter's, for the message.
[[nodiscard]] std::optional<Value> fromTcl(Tcl_Interp* interp, Tcl_Obj* value, const Type& type,
                                           const char* name);

/// A new Tcl value: lists and dictionaries in Tcl's own form, none as the empty text.
[[nodiscard]] Tcl_Obj* toTcl(const Value& value);

/// Text of the library as Tcl keeps it, and back.
[[nodiscard]] Tcl_Obj* newText(std::string_view text);
[[nodiscard]] std::string textOf(Tcl_Obj* value);

/// A finding as a dictionary.
[[nodiscard]] Tcl_Obj* newFinding(const Diagnostic& finding);

/// Makes the failure the interpreter's error, with the list {TQ KIND ?file line column id?} as its
/// error code. Gives TCL_ERROR.
int raise(Tcl_Interp* interp, const Failure& failure);

} // namespace tq::bindings::tcl
