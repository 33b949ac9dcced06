#include "bindings/core/Registry.h"

#include <pthread.h>

#include <algorithm>
#include <boost/functional/hash.hpp>
#include <memory>
#include <new>

#include "bindings/core/ClassInfo.h"
#include "bindings/core/Listening.h"
#include "bindings/core/Search.h"

namespace tq::bindings {

/// A fork takes only the forking thread along: it holds the lock meanwhile, so that the tables are
/// whole in the child, and the child starts with fresh locks, without a search, and with the
/// standard streams as they were.
struct ForkHandlers {
    static void before() {
        Registry::get().m_mutex.lock();
        Listening::beforeFork();
    }
    static void inParent() {
        Listening::afterForkInParent();
        Registry::get().m_mutex.unlock();
    }
    static void inChild() {
        Listening::afterForkInChild();
        new (&Registry::get().m_mutex) std::recursive_mutex;
        forgetSearch();
    }
};

ObjectRef::ObjectRef(Object* object) noexcept : m_object(object) {
    if (m_object != nullptr)
        m_object->references.fetch_add(1, std::memory_order_relaxed);
}

ObjectRef::~ObjectRef() {
    if (m_object != nullptr && m_object->references.fetch_sub(1, std::memory_order_acq_rel) == 1)
        Registry::get().drop(m_object);
}

namespace {

/// A reference to an object of the maps, unless its last holder is just letting go of it.
[[nodiscard]] ObjectRef tryHold(Object* object) {
    unsigned count = object->references.load(std::memory_order_relaxed);
    while (count != 0)
        if (object->references.compare_exchange_weak(count, count + 1, std::memory_order_acq_rel))
            return ObjectRef::take(object);
    return {};
}

} // namespace

std::size_t Registry::KeyHash::operator()(const Key& key) const noexcept {
    return boost::hash<Key>()(key);
}

Registry::Registry() {
    if (pthread_atfork(ForkHandlers::before, ForkHandlers::inParent, ForkHandlers::inChild) != 0)
        throw std::bad_alloc(); // the only failure that it has
}

Registry& Registry::get() {
    static auto* const registry = new Registry;
    return *registry;
}

ObjectRef Registry::wrap(const ClassInfo& type, void* native, Object* root) {
    const Lock held = lock();
    const auto entry = m_byNative.find({native, &type});
    if (entry != m_byNative.end())
        if (ObjectRef known = tryHold(entry->second))
            return known;
    return add(type, native, root);
}

ObjectRef Registry::adopt(const ClassInfo& type, void* native, std::vector<ObjectRef> needs) {
    const Lock held = lock();
    ObjectRef object;
    try {
        object = add(type, native, nullptr);
        for (const ObjectRef& need : needs)
            need->part->dependents.push_back(object.get());
    } catch (...) {
        if (object)
            object->native = nullptr;
        type.destroy(native);
        throw;
    }
    object->part->isOwned = true;
    object->part->needs = std::move(needs);
    return object;
}

ObjectRef Registry::add(const ClassInfo& type, void* native, Object* root) {
    auto object = std::make_unique<Object>();
    object->type = &type;
    object->native = native;
    object->id = ++m_lastId;
    std::unique_ptr<RootPart> part;
    if (root == nullptr) {
        part = std::make_unique<RootPart>();
        part->destroy = type.destroy;
    }
    m_byNative[{native, &type}] = object.get();
    object->part = part.release();
    if (root != nullptr) {
        object->root = ObjectRef(root);
        Object*& first = root->part->firstMember;
        object->nextMember = first;
        if (first != nullptr)
            first->previousMember = object.get();
        first = object.get();
    }
    return ObjectRef(object.release());
}

ObjectRef Registry::find(std::uint64_t id) {
    const Lock held = lock();
    const auto entry = m_byId.find(id);
    return entry == m_byId.end() ? ObjectRef() : tryHold(entry->second);
}

void Registry::name(Object& object) {
    const Lock held = lock();
    if (!object.isNamed)
        m_byId.emplace(object.id, &object);
    object.isNamed = true;
}

std::size_t Registry::size() {
    const Lock held = lock();
    return m_byNative.size();
}

/// The native object goes; whoever holds the handle is told what it was.
void Registry::end(Object& object) noexcept {
    if (object.native == nullptr)
        return;
    try {
        object.was = object.type->describe(object);
    } catch (const std::bad_alloc&) { // without a name then
    }
    for (const auto& [script, isPython] : object.scripts) {
        m_byScript.erase(script);
        object.type->tables->unbind(object.native, script, isPython);
    }
    object.scripts.clear();
    const auto entry = m_byNative.find({object.native, object.type});
    if (entry != m_byNative.end() && entry->second == &object)
        m_byNative.erase(entry);
    object.native = nullptr;
}

void Registry::endDependents(Object& root) {
    while (!root.part->dependents.empty()) {
        const ObjectRef dependent = tryHold(root.part->dependents.back());
        root.part->dependents.pop_back();
        if (dependent && dependent->native != nullptr)
            destroyNative(*dependent);
    }
}

void Registry::destroyNative(Object& root) {
    endDependents(root);
    for (Object* member = root.part->firstMember; member != nullptr; member = member->nextMember)
        end(*member);
    void* const native = root.native;
    end(root);
    root.type->destroy(native);
}

void Registry::destroy(Object& root) {
    const Lock held = lock();
    expectUsable(root);
    if (root.part == nullptr || root.part->destroy == nullptr || root.part->isConst)
        throw ScriptError(Failure::Kind::Command,
                          root.type->describe(root) +
                              (root.root ? " is a part of " + root.root->type->describe(*root.root)
                                         : " belongs to the library"));
    if (root.type->expectDeletable != nullptr)
        root.type->expectDeletable(root.native);
    const ObjectRef guard(&root);
    destroyNative(root);
}

void Registry::endMembers(Object& root, const std::function<bool(const Object&)>& isGoing) {
    const Lock held = lock();
    endDependents(root);
    for (Object* member = root.part->firstMember; member != nullptr; member = member->nextMember)
        if (member->native != nullptr && isGoing(*member))
            end(*member);
}

void Registry::bindScript(Object& object, void* script, bool isPython) {
    if (object.type->tables == nullptr)
        return;
    const Lock held = lock();
    if (object.native == nullptr)
        return;
    object.scripts.emplace_back(script, isPython);
    m_byScript.emplace(script, &object);
    object.type->tables->bind(object.native, script, isPython);
}

void Registry::unbindScript(Object& object, void* script, bool isPython) noexcept {
    if (object.type->tables == nullptr)
        return;
    const Lock held = lock();
    if (object.native == nullptr)
        return;
    std::erase(object.scripts, std::pair{script, isPython});
    m_byScript.erase(script);
    object.type->tables->unbind(object.native, script, isPython);
}

bool Registry::markGone(void* script) noexcept {
    const Lock held = lock();
    const auto entry = m_byScript.find(script);
    if (entry == m_byScript.end())
        return false;
    Object& object = *entry->second;
    m_byScript.erase(entry);
    std::erase_if(object.scripts, [script](const auto& bound) { return bound.first == script; });
    if (object.scripts.empty()) // the tables go through all of them
        end(object);
    return true;
}

void Registry::unlink(Object& object) noexcept {
    if (!object.root)
        return;
    if (object.previousMember != nullptr)
        object.previousMember->nextMember = object.nextMember;
    else
        object.root->part->firstMember = object.nextMember;
    if (object.nextMember != nullptr)
        object.nextMember->previousMember = object.previousMember;
}

/// The last holder has let go. Handles of members keep their root alive, so no such handle is left
/// here.
void Registry::drop(Object* object) noexcept {
    const std::unique_ptr<Object> owner(object);
    const std::unique_ptr<RootPart> part(object->part);
    const Lock held = lock();
    if (object->isNamed)
        m_byId.erase(object->id);
    unlink(*object);
    if (object->native == nullptr)
        return;
    const auto entry = m_byNative.find({object->native, object->type});
    if (entry != m_byNative.end() && entry->second == object)
        m_byNative.erase(entry);
    if (!part)
        return;
    for (const ObjectRef& need : part->needs)
        std::erase(need->part->dependents, object);
    if (part->isOwned)
        object->type->destroy(object->native);
}

} // namespace tq::bindings
