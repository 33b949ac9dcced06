// What a connectivity file has in the wrong form: values of wrong types, things that come twice or
// are missing, misspelt members.
#pragma once

#include "diagnostics/Diagnostic.h"
#include "handoff/HWHConnectivity.h"

namespace hwh {

/// Goes through the file once, in its order. Missing sections are errors, as the document isn't
/// complete then; all else is a warning:
///
/// - "missing-section", "wrong-type", "duplicate-key" (scalars, parameters, sections)
/// - "duplicate-instance", "duplicate-port", "duplicate-connection": the later replaces the earlier
/// - "missing-sdkname", "shared-sdkname", "lost-contents": a module's ports and parameters are
///   those of the last instance of its "SDKNAME". An "_EXT" and an "_INT" instance may share one.
/// - "missing-name", "missing-end", "reserved-key", "misplaced-key"
/// - "unknown-key": a name that isn't read but is close to a known one that is missing. Other names
///   may be anything.
/// - "letter-case": a value that counts only in capital letters
///
/// The time grows with the file. `file` was read with a sink.
void checkShape(const ConnectivityFile& file, const tq::DiagnosticSink& sink);

} // namespace hwh
