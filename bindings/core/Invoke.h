// Calls from scripts into the library.
#pragma once

#include <vector>

#include "bindings/core/ClassInfo.h"
#include "bindings/core/Search.h"

namespace tq::bindings {

/// Calls a member; the call has all its arguments, converted to the types of its parameters, gets
/// the result, and has no object for functions. Raises what the library raises. Only members that
/// aren't `Mode::Quick` let other threads of the language run meanwhile, and only those may leave
/// messages.
TQ_BINDINGS_EXPORT void invoke(const Member& member, Call& call, Waiting& waiting);
/// Sets a property.
TQ_BINDINGS_EXPORT void assign(const Member& property, Object& self, const Value& value);

/// What the library sent or printed in the calls of this thread since the last time: its messages,
/// the findings of its readers, and each line that it would have printed.
[[nodiscard]] TQ_BINDINGS_EXPORT std::vector<Diagnostic> takeMessages();

/// A sink for the findings of a call, which go with its messages.
[[nodiscard]] DiagnosticSink messageSink();

} // namespace tq::bindings
