// Handles: what scripts hold instead of pointers to native objects.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "tq_bindings_export.h"

namespace tq::bindings {

class Object;
class ObjectRef;
struct ClassInfo;

/// A counted reference to a handle. Each instance belongs to one thread.
class TQ_BINDINGS_EXPORT ObjectRef {
public:
    ObjectRef() = default;
    /// Another reference.
    explicit ObjectRef(Object* object) noexcept;
    ObjectRef(const ObjectRef& other) noexcept : ObjectRef(other.m_object) {}
    ObjectRef(ObjectRef&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    ObjectRef& operator=(ObjectRef other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~ObjectRef();

    /// Takes over a reference that `release` gave away.
    [[nodiscard]] static ObjectRef take(Object* object) noexcept {
        ObjectRef reference;
        reference.m_object = object;
        return reference;
    }
    [[nodiscard]] Object* release() noexcept { return std::exchange(m_object, nullptr); }

    [[nodiscard]] Object* get() const { return m_object; }
    Object* operator->() const { return m_object; }
    Object& operator*() const { return *m_object; }
    explicit operator bool() const { return m_object != nullptr; }

private:
    Object* m_object = nullptr;
};

/// What only an object has that owns others, such as a clock tree.
struct RootPart {
    void (*destroy)(void*) = nullptr; ///< null if scripts can't delete it
    bool isOwned = false;             ///< deleted with its last handle
    bool isBusy = false;              ///< in a search on some thread
    bool isConst = false;             ///< shared with the library: it mustn't be changed
    std::vector<ObjectRef> needs;     ///< roots that must outlive it
    std::vector<Object*> dependents;  ///< roots that need it
    Object* firstMember = nullptr;    ///< handles of what it owns
};

/// The one handle of a native object, shared by all languages. It lives as long as anybody holds
/// it, and keeps its root alive; the native object may go before, and the handle then tells what it
/// was. All but the numbers are guarded by the lock of `Registry`.
class Object {
public:
    const ClassInfo* type = nullptr;
    std::uint64_t id = 0;
    void* native = nullptr; ///< null once it is gone
    ObjectRef root;         ///< the handle of what owns it; none for a root itself
    std::string was;        ///< "the peripheral UART0 of clock tree soc", once it is gone
    RootPart* part = nullptr;
    /// The Python object, if there is one; guarded by Python's own lock.
    void* python = nullptr;
    /// Entries of this object in the library's tables, with their language.
    std::vector<std::pair<void*, bool>> scripts;
    Object* previousMember = nullptr;
    Object* nextMember = nullptr;
    bool isNamed = false; ///< can be found by its number
    std::atomic<unsigned> references = 0;

    [[nodiscard]] Object& rootObject() { return root ? *root : *this; }
};

} // namespace tq::bindings
