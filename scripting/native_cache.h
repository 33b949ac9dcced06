// The tables that tie native objects to the Tcl objects that scripts hold: one pair for each type
// of native object.
#pragma once

#include <boost/functional/hash.hpp>

#include <functional>
#include <unordered_map>

#include "native_cache_base.h"
#include "scripting/CachedTypes.h"
#include "tq_export.h"

namespace hdi::tcltasks {

/// Only caches of pointers exist.
template <class T>
class native_cache;

/// The Tcl layer's door to the tables, defined by that layer.
template <class T>
struct native_cache_access;

/// Ties objects of type `T` to Tcl objects. Filling the tables and looking things up in them is the
/// Tcl layer's work; to reach them, it defines the struct template `native_cache_access`:
///
///     template <class T>
///     struct hdi::tcltasks::native_cache_access {
///         static auto& nativeToTcl() { return native_cache<T>::get_n2t_cache(); }
///         ...
///     };
///     native_cache_access<HBSCdoSequenceWrapper*>::nativeToTcl().emplace(wrapper, script);
///
/// Whoever binds enters the pair in both tables and holds one reference to the Tcl object for them.
/// An `HBSCdoSequenceWrapper` ends its own bindings when it dies: its Tcl objects are marked
/// invalid, released and taken out of both tables. Bindings of the clocking types stay until the
/// layer takes them out, even when the native object is gone.
///
/// Each table lives from its first use to the end of the process, and goes then without a call to
/// Tcl. Not guarded: all binding, lookup and destruction of a type's objects on one thread.
template <class T>
class TQ_EXPORT native_cache<T*> : public native_cache_base {
    template <class>
    friend struct native_cache_access;
    template <class U>
    friend void invalidate(const U* native);

    using NativeToTcl =
        std::unordered_multimap<const T*, Tcl_Obj*, boost::hash<const T*>, std::equal_to<const T*>>;
    using TclToNative =
        std::unordered_map<Tcl_Obj*, const T*, boost::hash<Tcl_Obj*>, std::equal_to<Tcl_Obj*>>;

    /// Native to Tcl; one native object may have several Tcl objects. Fetching either table sets
    /// the flag.
    static NativeToTcl& get_n2t_cache();
    /// Tcl to native.
    static TclToNative& get_t2n_cache();
    /// The flag: true once a table was fetched. While it is true each call asks whether
    /// Tcl is shutting down, which turns it false until a table is fetched again.
    static bool& observers();

    static bool m_observers;
};

template <class T>
bool native_cache<T*>::m_observers = false;

template <class T>
bool& native_cache<T*>::observers() {
    if (m_observers && tcl_exiting())
        m_observers = false;
    return m_observers;
}

// A table takes the flag down with it at the end of the process, so that a native object that is
// destroyed later still stays clear of it.

template <class T>
auto native_cache<T*>::get_n2t_cache() -> NativeToTcl& {
    struct Table : NativeToTcl {
        ~Table() { m_observers = false; }
    };
    static Table table;
    observers() = true;
    return table;
}

template <class T>
auto native_cache<T*>::get_t2n_cache() -> TclToNative& {
    struct Table : TclToNative {
        ~Table() { m_observers = false; }
    };
    static Table table;
    observers() = true;
    return table;
}

// Instantiated once, in the library, so that every user meets the same tables.
extern template class TQ_EXPORT native_cache<HBSCdoSequenceWrapper*>;
extern template class TQ_EXPORT native_cache<hbs_clocking::HBSClockingAlgo*>;
extern template class TQ_EXPORT native_cache<hbs_clocking::HBSPeripheral*>;
extern template class TQ_EXPORT native_cache<hbs_clocking::HBSPll*>;

} // namespace hdi::tcltasks
