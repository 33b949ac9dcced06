// Allocation functions of the test process that fail on demand.
#pragma once

#include <cstdint>

namespace memory {

/// While it lives, allocation number `number` of the process (counted from 1, over all threads)
/// fails: `malloc`, `calloc`, `realloc` and their relatives return null, `operator new` throws.
/// With `andAllLater` every allocation after it fails too. Number 0 fails none.
///
/// What the Tcl library allocates, itself or through the C library, is neither counted nor failed:
/// Tcl ends the process where an allocation fails, and the C library does where it reads the
/// system's list of users for Tcl's first interpreter.
class FailingAllocation {
public:
    explicit FailingAllocation(std::uint64_t number, bool andAllLater = false);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;
};

/// Whether the allocation of the last `FailingAllocation` was reached.
bool hasFailed();

/// Blocks of memory that are allocated and not freed yet, without those of the Tcl library.
std::int64_t liveAllocations();

} // namespace memory
