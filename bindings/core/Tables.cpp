#include "bindings/core/Tables.h"

#include <algorithm>
#include <utility>

#include "cdo/HBSCdoSequenceWrapper.h"
#include "scripting/native_cache.h"
#include "scripting/py_native_cache.h"

template <class T>
struct hdi::tcltasks::native_cache_access {
    static auto& nativeToScript() { return native_cache<T>::get_n2t_cache(); }
    static auto& scriptToNative() { return native_cache<T>::get_t2n_cache(); }
};

template <class T>
struct hdi::pyinfra::py_native_cache_access {
    static auto& nativeToScript() { return py_native_cache<T>::get_n2py_cache(); }
    static auto& scriptToNative() { return py_native_cache<T>::get_py2n_cache(); }
};

namespace tq::bindings {

namespace {

using hdi::pyinfra::py_native_cache_base;
using hdi::tcltasks::native_cache_base;

template <class Access, class Script, class T>
void bindIn(const T* native, void* script) {
    auto* const object = static_cast<Script*>(script);
    Access::nativeToScript().emplace(native, object);
    Access::scriptToNative().emplace(object, native);
}

template <class Access, class Script, class T>
void unbindIn(const T* native, void* script) {
    auto* const object = static_cast<Script*>(script);
    auto& table = Access::nativeToScript();
    const auto [first, last] = table.equal_range(native);
    const auto entry =
        std::find_if(first, last, [object](const auto& pair) { return pair.second == object; });
    if (entry != last)
        table.erase(entry);
    Access::scriptToNative().erase(object);
}

template <class T>
void bind(const void* native, void* script, bool isPython) {
    if (isPython)
        bindIn<hdi::pyinfra::py_native_cache_access<T*>, _object>(static_cast<const T*>(native),
                                                                  script);
    else
        bindIn<hdi::tcltasks::native_cache_access<T*>, Tcl_Obj>(static_cast<const T*>(native),
                                                                script);
}

template <class T>
void unbind(const void* native, void* script, bool isPython) {
    if (isPython)
        unbindIn<hdi::pyinfra::py_native_cache_access<T*>, _object>(static_cast<const T*>(native),
                                                                    script);
    else
        unbindIn<hdi::tcltasks::native_cache_access<T*>, Tcl_Obj>(static_cast<const T*>(native),
                                                                  script);
}

/// What stood in a language's one slot before us, and how many of us there are.
template <class Base>
struct Slot {
    typename Base::Runtime before;
    unsigned users = 0;
    bool isInstalled = false;
};

Slot<native_cache_base>& tclSlot() {
    static auto* const slot = new Slot<native_cache_base>;
    return *slot;
}

Slot<py_native_cache_base>& pythonSlot() {
    static auto* const slot = new Slot<py_native_cache_base>;
    return *slot;
}

/// Types of their own, so that our callbacks are recognised in the slot.
struct MarkTcl {
    void operator()(Tcl_Obj* script) const {
        isOurs = Registry::get().markGone(script);
        if (!isOurs && tclSlot().before.mark_invalid)
            tclSlot().before.mark_invalid(script);
    }
    static bool isOurs; ///< the reference of the object just marked isn't the tables'
};
bool MarkTcl::isOurs = false;

struct MarkPython {
    void operator()(_object* script) const {
        if (!Registry::get().markGone(script) && pythonSlot().before.mark_invalid)
            pythonSlot().before.mark_invalid(script);
    }
};

native_cache_base::Runtime tclRuntime() {
    return {.tcl_exiting =
                [] { return tclSlot().before.tcl_exiting && tclSlot().before.tcl_exiting(); },
            .mark_invalid = MarkTcl(),
            .decr_refcount =
                [](Tcl_Obj* script) {
                    if (!std::exchange(MarkTcl::isOurs, false) && tclSlot().before.decr_refcount)
                        tclSlot().before.decr_refcount(script);
                },
            .error =
                [](const char* text) {
                    if (tclSlot().before.error)
                        tclSlot().before.error(text);
                }};
}

py_native_cache_base::Runtime pythonRuntime() {
    return {.py_exiting =
                [] { return pythonSlot().before.py_exiting && pythonSlot().before.py_exiting(); },
            .mark_invalid = MarkPython(),
            .error =
                [](const char* text) {
                    if (pythonSlot().before.error)
                        pythonSlot().before.error(text);
                }};
}

template <class Base>
void enter(Slot<Base>& slot, typename Base::Runtime runtime) {
    ++slot.users;
    if (slot.isInstalled)
        return;
    slot.before = Base::setRuntime(std::move(runtime));
    slot.isInstalled = true;
}

template <class Base, class Mark>
void leave(Slot<Base>& slot) {
    if (--slot.users > 0)
        return;
    typename Base::Runtime present = Base::setRuntime(slot.before);
    if (present.mark_invalid.template target<Mark>() == nullptr) {
        Base::setRuntime(std::move(present)); // somebody is in front, and passes on to ours
        return;
    }
    slot.before = {};
    slot.isInstalled = false;
}

} // namespace

const ScriptTables kTreeTables{bind<hbs_clocking::HBSClockingAlgo>,
                               unbind<hbs_clocking::HBSClockingAlgo>};
const ScriptTables kPeripheralTables{bind<hbs_clocking::HBSPeripheral>,
                                     unbind<hbs_clocking::HBSPeripheral>};
const ScriptTables kPllTables{bind<hbs_clocking::HBSPll>, unbind<hbs_clocking::HBSPll>};
const ScriptTables kSequenceTables{bind<HBSCdoSequenceWrapper>, unbind<HBSCdoSequenceWrapper>};

void enterRuntime(bool isPython) {
    const auto held = Registry::get().lock();
    if (isPython)
        enter<py_native_cache_base>(pythonSlot(), pythonRuntime());
    else
        enter<native_cache_base>(tclSlot(), tclRuntime());
}

void leaveRuntime(bool isPython) noexcept {
    const auto held = Registry::get().lock();
    if (isPython)
        leave<py_native_cache_base, MarkPython>(pythonSlot());
    else
        leave<native_cache_base, MarkTcl>(tclSlot());
}

} // namespace tq::bindings
