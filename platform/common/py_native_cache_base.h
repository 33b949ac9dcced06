// What the Python layer does for the tables that tie native objects to Python objects: base of
// `hdi::pyinfra::py_native_cache`.
#pragma once

#include <functional>

#include "tq_export.h"

/// Python's own name of its object type, so that nothing here includes or links Python.
struct _object; // NOLINT(bugprone-reserved-identifier)

namespace hdi::pyinfra {

/// The Python layer hands its callbacks over once, before it fills a table:
///
///     py_native_cache_base::setRuntime({.py_exiting = ..., .mark_invalid = ..., .error = ...});
///
/// A callback that isn't set falls back: nothing is exiting, marking does nothing, and an error
/// raises `HEXError`. There is no release: the table's reference to a Python object stays with the
/// layer. Not guarded: one thread at a time, and no callback may call `setRuntime`.
class TQ_EXPORT py_native_cache_base {
public:
    /// The callbacks; empty ones fall back.
    struct Runtime {
        std::function<bool()> py_exiting;
        std::function<void(_object*)> mark_invalid;
        std::function<void(const char*)> error;
    };

    /// Puts the callbacks in place and gives back the previous ones.
    static Runtime setRuntime(Runtime runtime);

    /// True once the Python side is shutting down.
    [[nodiscard]] static bool py_exiting();
    /// Marks a Python object as one whose native object is gone.
    static void mark_invalid(_object* script);
    /// Reports a corrupt table. Never returns: where the callback does, `HEXError` is raised.
    [[noreturn]] static void error(const char* text);
};

} // namespace hdi::pyinfra
