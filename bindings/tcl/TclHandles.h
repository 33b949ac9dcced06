// Handles as Tcl values: their own type of Tcl object, and nothing registered for any of them.
#pragma once

#include <tcl.h>

#include "bindings/core/Object.h"

namespace tq::bindings::tcl {

/// A value whose text is "CLASS#NUMBER": the same for every value of the same native object, as
/// long as any of them lives.
[[nodiscard]] Tcl_Obj* newHandle(const ObjectRef& object);

/// The handle of a value, or none with a message in the interpreter. The text of a handle counts as
/// the handle as long as some value, of any interpreter, still is it.
[[nodiscard]] ObjectRef handleOf(Tcl_Interp* interp, Tcl_Obj* value, const ClassInfo* type);

/// Lets go of values that have been made into something else (a list, say) while their text lived
/// on: the last of them are kept, so that the text is still understood.
void forgetTexts();

} // namespace tq::bindings::tcl
