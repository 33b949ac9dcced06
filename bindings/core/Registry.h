// All handles of the process, the lock over them, and the death of native objects.
#pragma once

#include <functional>
#include <mutex>
#include <unordered_map>

#include "bindings/core/Object.h"

namespace tq::bindings {

/// The library's own tables for a class, if it has them (scripting/): whoever looks an object up
/// there finds what scripts hold of it.
struct ScriptTables {
    void (*bind)(const void* native, void* script, bool isPython);
    void (*unbind)(const void* native, void* script, bool isPython);
};

/// One per process, never destroyed: handles may go after everything else. Every operation takes
/// the lock, which one thread may take several times; the library's classes know no threads, so all
/// calls into them but searches are made under it too.
///
/// A handle is found by the address and class of its native object while anybody holds it, and
/// costs nothing afterwards.
class TQ_BINDINGS_EXPORT Registry {
public:
    static Registry& get();

    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;

    using Lock = std::unique_lock<std::recursive_mutex>;
    [[nodiscard]] Lock lock() { return Lock(m_mutex); }

    /// The handle of an object that `root` owns, or that is a root itself if `root` is null.
    [[nodiscard]] ObjectRef wrap(const ClassInfo& type, void* native, Object* root);
    /// The handle of a new root, which is deleted with its last handle. `needs` must outlive it:
    /// where one of them dies first, so does this one.
    [[nodiscard]] ObjectRef adopt(const ClassInfo& type, void* native,
                                  std::vector<ObjectRef> needs = {});
    /// The handle of that number, if somebody holds it and it was named.
    [[nodiscard]] ObjectRef find(std::uint64_t id);
    void name(Object& object);

    /// Deletes the native object, after everything that needs it. Raises `ScriptError` for one that
    /// scripts can't delete, and for one in a search.
    void destroy(Object& root);
    /// Ends the handles of one root that the test tells, and what needs the root: something of it
    /// is about to go.
    void endMembers(Object& root, const std::function<bool(const Object&)>& isGoing);

    /// Enters a script object into the library's tables, and takes it out again.
    void bindScript(Object& object, void* script, bool isPython);
    void unbindScript(Object& object, void* script, bool isPython) noexcept;
    /// Called when the native object of a script object is being destroyed. False if the script
    /// object isn't one of this registry.
    bool markGone(void* script) noexcept;

    /// How many handles there are.
    [[nodiscard]] std::size_t size();

private:
    friend class ObjectRef;
    friend struct ForkHandlers;
    using Key = std::pair<const void*, const ClassInfo*>;
    struct KeyHash {
        std::size_t operator()(const Key& key) const noexcept;
    };

    Registry();
    [[nodiscard]] ObjectRef add(const ClassInfo& type, void* native, Object* root);
    void end(Object& object) noexcept;
    void endDependents(Object& root);
    void unlink(Object& object) noexcept;
    void drop(Object* object) noexcept;
    void destroyNative(Object& root);

    std::recursive_mutex m_mutex;
    std::unordered_map<Key, Object*, KeyHash> m_byNative;
    std::unordered_map<std::uint64_t, Object*> m_byId;
    std::unordered_map<void*, Object*> m_byScript;
    std::uint64_t m_lastId = 0;
};

} // namespace tq::bindings
