// The tables that tie native objects to the Python objects that scripts hold: one pair for each
// type of native object.
#pragma once

#include <boost/functional/hash.hpp>

#include <functional>
#include <unordered_map>

#include "py_native_cache_base.h"
#include "scripting/CachedTypes.h"
#include "tq_export.h"

namespace hdi::pyinfra {

/// Only caches of pointers exist.
template <class T>
class py_native_cache;

/// The Python layer's door to the tables, defined by that layer.
template <class T>
struct py_native_cache_access;

/// Ties objects of type `T` to Python objects. Filling the tables and looking things up in them is
/// the Python layer's work; to reach them, it defines the struct template `py_native_cache_access`:
///
///     template <class T>
///     struct hdi::pyinfra::py_native_cache_access {
///         static auto& nativeToPython() { return py_native_cache<T>::get_n2py_cache(); }
///         ...
///     };
///     py_native_cache_access<HBSCdoSequenceWrapper*>::nativeToPython().emplace(wrapper, script);
///
/// Whoever binds enters the pair in both tables and holds one reference to the Python object for
/// them. An `HBSCdoSequenceWrapper` ends its own bindings when it dies: its Python objects are
/// marked invalid and taken out of both tables, but not released; that stays with the layer.
/// Bindings of the clocking types stay until the layer takes them out, even when the native object
/// is gone.
///
/// Each table lives from its first use to the end of the process, and goes then without a call to
/// Python. Not guarded: all binding, lookup and destruction of a type's objects on one thread.
template <class T>
class TQ_EXPORT py_native_cache<T*> : public py_native_cache_base {
    template <class>
    friend struct py_native_cache_access;
    template <class U>
    friend void invalidate(const U* native);

    using NativeToPython =
        std::unordered_multimap<const T*, _object*, boost::hash<const T*>, std::equal_to<const T*>>;
    using PythonToNative =
        std::unordered_map<_object*, const T*, boost::hash<_object*>, std::equal_to<_object*>>;

    /// Native to Python; one native object may have several Python objects. Fetching either table
    /// sets the flag.
    static NativeToPython& get_n2py_cache();
    /// Python to native.
    static PythonToNative& get_py2n_cache();
    /// The flag: true once a table was fetched. While it is true each call asks whether
    /// Python is shutting down, which turns it false until a table is fetched again.
    static bool& observers();

    static bool m_observers;
};

template <class T>
bool py_native_cache<T*>::m_observers = false;

template <class T>
bool& py_native_cache<T*>::observers() {
    if (m_observers && py_exiting())
        m_observers = false;
    return m_observers;
}

// A table takes the flag down with it at the end of the process, so that a native object that is
// destroyed later still stays clear of it.

template <class T>
auto py_native_cache<T*>::get_n2py_cache() -> NativeToPython& {
    struct Table : NativeToPython {
        ~Table() { m_observers = false; }
    };
    static Table table;
    observers() = true;
    return table;
}

template <class T>
auto py_native_cache<T*>::get_py2n_cache() -> PythonToNative& {
    struct Table : PythonToNative {
        ~Table() { m_observers = false; }
    };
    static Table table;
    observers() = true;
    return table;
}

// Instantiated once, in the library, so that every user meets the same tables.
extern template class TQ_EXPORT py_native_cache<HBSCdoSequenceWrapper*>;
extern template class TQ_EXPORT py_native_cache<hbs_clocking::HBSClockingAlgo*>;
extern template class TQ_EXPORT py_native_cache<hbs_clocking::HBSPeripheral*>;
extern template class TQ_EXPORT py_native_cache<hbs_clocking::HBSPll*>;

} // namespace hdi::pyinfra
