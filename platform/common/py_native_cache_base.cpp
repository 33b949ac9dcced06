#include "py_native_cache_base.h"

#include <utility>

#include "HEXError.h"

namespace hdi::pyinfra {

namespace {

/// Never destroyed: native objects may die after the statics of this library.
py_native_cache_base::Runtime& current() {
    static auto* const runtime = new py_native_cache_base::Runtime;
    return *runtime;
}

} // namespace

py_native_cache_base::Runtime py_native_cache_base::setRuntime(Runtime runtime) {
    return std::exchange(current(), std::move(runtime));
}

bool py_native_cache_base::py_exiting() {
    return current().py_exiting && current().py_exiting();
}

void py_native_cache_base::mark_invalid(_object* script) {
    if (current().mark_invalid)
        current().mark_invalid(script);
}

void py_native_cache_base::error(const char* text) {
    if (current().error)
        current().error(text);
    throw HEXError(text);
}

} // namespace hdi::pyinfra
