// What a native object does about its script objects when it dies. Only a type whose destructor
// calls `invalidate` has this; the library's other cached types leave their bindings in place.
#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <vector>

#include "scripting/native_cache.h"
#include "scripting/py_native_cache.h"

namespace scripting {

template <class NativeToScript>
[[nodiscard]] bool isBound(const NativeToScript& nativeToScript,
                           const typename NativeToScript::key_type& native,
                           const typename NativeToScript::mapped_type& script) {
    const auto [first, last] = nativeToScript.equal_range(native);
    return std::any_of(first, last, [&](const auto& entry) { return entry.second == script; });
}

/// The script object at that position of the table's range, or null after its end.
template <class NativeToScript>
[[nodiscard]] typename NativeToScript::mapped_type
scriptAt(const NativeToScript& nativeToScript, const typename NativeToScript::key_type& native,
         std::size_t position) {
    auto [entry, last] = nativeToScript.equal_range(native);
    while (entry != last && position-- > 0)
        ++entry;
    return entry == last ? nullptr : entry->second;
}

/// Ends every binding of `native`: takes each of its script objects out of `scriptToNative` and
/// hands it to `release`, in table order, and empties its range in `nativeToScript` at the end. A
/// script object that only `nativeToScript` knows goes to `corrupt`, which must not return; the
/// range then stays. One that a release before it has unbound from both tables is passed over.
template <class NativeToScript, class ScriptToNative, class Release, class Corrupt>
void endBindings(NativeToScript& nativeToScript, ScriptToNative& scriptToNative,
                 const typename NativeToScript::key_type& native, Release release,
                 Corrupt corrupt) {
    // A copy, as the script side may run code of its own that binds and unbinds other objects.
    // Without memory for it each object is looked for in the table: no binding may stay.
    const std::size_t count = nativeToScript.count(native);
    std::vector<typename NativeToScript::mapped_type> scripts;
    try {
        scripts.reserve(count);
        const auto [first, last] = nativeToScript.equal_range(native);
        for (auto entry = first; entry != last; ++entry)
            scripts.push_back(entry->second);
    } catch (const std::bad_alloc&) { // the copy is empty then
    }
    for (std::size_t i = 0; i < count; ++i) {
        const auto script = scripts.empty() ? scriptAt(nativeToScript, native, i) : scripts[i];
        if (scriptToNative.erase(script) == 0) {
            if (!isBound(nativeToScript, native, script))
                continue;
            corrupt();
        }
        release(script);
    }
    nativeToScript.erase(native);
}

} // namespace scripting

namespace hdi::tcltasks {

/// Marks the Tcl objects of `native` as invalid and releases them.
template <class T>
void invalidate(const T* native) {
    using Cache = native_cache<T*>;
    if (!Cache::observers())
        return;
    // Fetching asks whether Tcl is exiting; kept, so that from the second time on only the test
    // above does.
    static auto& nativeToTcl = Cache::get_n2t_cache();
    static auto& tclToNative = Cache::get_t2n_cache();
    scripting::endBindings(
        nativeToTcl, tclToNative, native,
        [](Tcl_Obj* script) {
            Cache::mark_invalid(script);
            Cache::decr_refcount(script);
        },
        [] { Cache::error("native_cache<> corrupt"); });
}

} // namespace hdi::tcltasks

namespace hdi::pyinfra {

/// Marks the Python objects of `native` as invalid; their references stay with the Python layer.
template <class T>
void invalidate(const T* native) {
    using Cache = py_native_cache<T*>;
    if (!Cache::observers())
        return;
    static auto& nativeToPython = Cache::get_n2py_cache();
    static auto& pythonToNative = Cache::get_py2n_cache();
    scripting::endBindings(
        nativeToPython, pythonToNative, native,
        [](_object* script) { Cache::mark_invalid(script); },
        [] { Cache::error("py_native_cache<> corrupt"); });
}

} // namespace hdi::pyinfra
