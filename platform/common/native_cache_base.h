// What the Tcl layer does for the tables that tie native objects to Tcl objects: base of
// `hdi::tcltasks::native_cache`.
#pragma once

#include <functional>

#include "tq_export.h"

struct Tcl_Obj;

namespace hdi::tcltasks {

/// The Tcl layer hands its callbacks over once, before it fills a table:
///
///     native_cache_base::setRuntime({.tcl_exiting = ..., .mark_invalid = ...,
///                                    .decr_refcount = ..., .error = ...});
///
/// A callback that isn't set falls back: nothing is exiting, marking and releasing do nothing, and
/// an error raises `HEXError`. Not guarded: one thread at a time, and no callback may call
/// `setRuntime`.
class TQ_EXPORT native_cache_base {
public:
    /// The callbacks; empty ones fall back.
    struct Runtime {
        std::function<bool()> tcl_exiting; ///< true once Tcl is shutting down
        std::function<void(Tcl_Obj*)> mark_invalid;
        std::function<void(Tcl_Obj*)> decr_refcount;
        std::function<void(const char*)> error; ///< gets a sentence; may throw
    };

    /// Puts the callbacks in place and gives back the previous ones.
    static Runtime setRuntime(Runtime runtime);

    /// True once the Tcl side is shutting down.
    [[nodiscard]] static bool tcl_exiting();
    /// Marks a Tcl object as one whose native object is gone.
    static void mark_invalid(Tcl_Obj* script);
    /// Gives up the table's own reference to a Tcl object.
    static void decr_refcount(Tcl_Obj* script);
    /// Reports a corrupt table. Never returns: where the callback does, `HEXError` is raised.
    [[noreturn]] static void error(const char* text);
};

} // namespace hdi::tcltasks
