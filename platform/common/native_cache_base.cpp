#include "native_cache_base.h"

#include <utility>

#include "HEXError.h"

namespace hdi::tcltasks {

namespace {

/// Never destroyed: native objects may die after the statics of this library.
native_cache_base::Runtime& current() {
    static auto* const runtime = new native_cache_base::Runtime;
    return *runtime;
}

} // namespace

native_cache_base::Runtime native_cache_base::setRuntime(Runtime runtime) {
    return std::exchange(current(), std::move(runtime));
}

bool native_cache_base::tcl_exiting() {
    return current().tcl_exiting && current().tcl_exiting();
}

void native_cache_base::mark_invalid(Tcl_Obj* script) {
    if (current().mark_invalid)
        current().mark_invalid(script);
}

void native_cache_base::decr_refcount(Tcl_Obj* script) {
    if (current().decr_refcount)
        current().decr_refcount(script);
}

void native_cache_base::error(const char* text) {
    if (current().error)
        current().error(text);
    throw HEXError(text);
}

} // namespace hdi::tcltasks
