// Handles in the library's own tables of script objects (scripting/).
#pragma once

#include "bindings/core/Registry.h"

class HBSCdoSequenceWrapper;

namespace hbs_clocking {
class HBSClockingAlgo;
class HBSPeripheral;
class HBSPll;
} // namespace hbs_clocking

namespace tq::bindings {

extern const ScriptTables kTreeTables;
extern const ScriptTables kPeripheralTables;
extern const ScriptTables kPllTables;
extern const ScriptTables kSequenceTables;

/// Puts the callbacks of a language in front of those that the process has, which go on to get what
/// isn't ours. For the first user of the language; each `leaveRuntime` takes one away, and the last
/// one brings back what was there, unless somebody has come in front of ours.
TQ_BINDINGS_EXPORT void enterRuntime(bool isPython);
TQ_BINDINGS_EXPORT void leaveRuntime(bool isPython) noexcept;

} // namespace tq::bindings
