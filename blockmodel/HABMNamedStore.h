// Holds the objects of one kind that a parent owns: in the order in which they came, found by name.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "blockmodel/HABMObjectAccess.h"

namespace habm {

/// The name by which the owner of an object finds it.
template <class Object>
const std::string& nameOf(const Object& object) {
    if constexpr (requires { object.getInstanceName(); })
        return object.getInstanceName();
    else if constexpr (requires { object.getPortName(); })
        return object.getPortName();
    else if constexpr (requires { object.getInterfaceName(); })
        return object.getInterfaceName();
    else if constexpr (requires { object.getLogicalPort(); })
        return object.getLogicalPort();
    else
        return object.getName();
}

} // namespace habm

/// Objects that are removed only all together, such as the millions of registers of a design. They
/// are allocated in chunks of 1, 1, 2, 4, 8, 16, 16, … objects: allocating each by itself would
/// take longer, and would scatter in memory what is visited in order.
template <class Object>
class HABMKeptObjects {
public:
    HABMKeptObjects() = default;
    HABMKeptObjects(HABMKeptObjects&& other) noexcept
        : m_chunks(std::move(other.m_chunks)), m_size(std::exchange(other.m_size, 0)) {}
    HABMKeptObjects& operator=(HABMKeptObjects&& other) noexcept {
        std::swap(m_chunks, other.m_chunks);
        std::swap(m_size, other.m_size);
        return *this;
    }
    ~HABMKeptObjects() {
        for (std::size_t position = 0; position < m_size; ++position)
            std::destroy_at(placeAt(position));
    }

    /// Positions, and objects at them.
    [[nodiscard]] std::size_t size() const { return m_size; }
    [[nodiscard]] std::size_t count() const { return m_size; }
    [[nodiscard]] Object* at(std::size_t position) const { return placeAt(position); }

    template <class... Arguments>
    Object* add(Arguments&&... arguments) {
        if (chunkOf(m_size) == m_chunks.size())
            m_chunks.push_back(
                std::unique_ptr<Slot[]>(new Slot[std::clamp<std::size_t>(m_size, 1, kLargest)]));
        HABMObjectAccess::createAt(placeAt(m_size), std::forward<Arguments>(arguments)...);
        return at(m_size++);
    }

private:
    using Stored = typename HABMStored<Object>::Type;

    static constexpr std::size_t kLargest = 16;

    union Slot {
        Slot() {} // the store creates and destroys the object
        ~Slot() {}
        Stored object;
    };

    [[nodiscard]] Stored* placeAt(std::size_t position) const {
        return &m_chunks[chunkOf(position)][placeOf(position)].object;
    }
    static std::size_t chunkOf(std::size_t position) {
        constexpr std::size_t kSmaller = std::bit_width(kLargest - 1);
        return position < kLargest ? static_cast<std::size_t>(std::bit_width(position))
                                   : kSmaller + position / kLargest;
    }
    static std::size_t placeOf(std::size_t position) {
        return position < kLargest ? position - std::bit_floor(position) : position % kLargest;
    }

    std::vector<std::unique_ptr<Slot[]>> m_chunks;
    std::size_t m_size = 0;
};

/// Objects that can be taken out singly. One that is leaves a hole at its position.
template <class Object>
class HABMLooseObjects {
public:
    using Stored = typename HABMStored<Object>::Type;

    /// Positions, and objects at them.
    [[nodiscard]] std::size_t size() const { return m_objects.size(); }
    [[nodiscard]] std::size_t count() const { return m_count; }
    /// Null for a hole.
    [[nodiscard]] Object* at(std::size_t position) const { return m_objects[position].get(); }

    template <class... Arguments>
    Object* add(Arguments&&... arguments) {
        m_objects.push_back(
            HABMObjectAccess::create<Stored>(std::forward<Arguments>(arguments)...));
        ++m_count;
        return m_objects.back().get();
    }
    std::unique_ptr<Stored> take(std::size_t position) {
        --m_count;
        return std::move(m_objects[position]);
    }
    void closeHoles() { std::erase(m_objects, nullptr); }

private:
    std::vector<std::unique_ptr<Stored>> m_objects;
    std::size_t m_count = 0;
};

/// Positions by the hash of their names: a hash table with open addressing and linear probing.
/// Designs have millions of names, and a node for each would double the time of creating and
/// destroying them.
class HABMNameTable {
public:
    using Hash = std::uint32_t;

    static Hash hashOf(std::string_view name) {
        return static_cast<Hash>(std::hash<std::string_view>()(name));
    }
    [[nodiscard]] bool empty() const { return m_slots.empty(); }
    /// True if the table stays sparse enough for short probes with so many positions.
    [[nodiscard]] bool hasRoomFor(std::size_t positions) const {
        return 3 * m_slots.size() >= 4 * positions;
    }
    /// Empties the table and makes room for so many positions to double. It allocates only to grow.
    void reset(std::size_t positions) { m_slots.assign(std::bit_ceil(2 * positions), Slot{}); }
    /// There must be room.
    void enter(Hash hash, std::size_t position) {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t i = hash & mask;
        while (m_slots[i].place != 0)
            i = (i + 1) & mask;
        m_slots[i] = {hash, static_cast<std::uint32_t>(position + 1)};
    }
    /// The position with this hash for which `holds` is true, or `none`.
    template <class Holds>
    [[nodiscard]] std::size_t find(Hash hash, std::size_t none, Holds holds) const {
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask; m_slots[i].place != 0; i = (i + 1) & mask)
            if (m_slots[i].hash == hash && holds(m_slots[i].place - 1))
                return m_slots[i].place - 1;
        return none;
    }

private:
    struct Slot {
        Hash hash = 0;
        std::uint32_t place = 0; ///< position + 1; 0 in a free slot
    };

    std::vector<Slot> m_slots;
};

/// Adding, finding and taking out take a constant time on average. An object keeps its address in
/// memory and its name while it is in the store. Holes are closed when they outnumber the objects,
/// so that emptying a large store is linear too. A store that throws `std::bad_alloc` is unchanged;
/// taking out never does.
template <class Object, template <class> class Objects = HABMKeptObjects>
class HABMNamedStore {
public:
    using Element = Object;

    /// A new object of that name, made of the arguments; null if the name is taken.
    template <class... Arguments>
    Object* create(std::string_view name, Arguments&&... arguments) {
        const std::size_t position = m_objects.size();
        const bool isIndexed = position >= kMostSearched || !m_table.empty();
        const HABMNameTable::Hash hash = isIndexed ? HABMNameTable::hashOf(name) : 0;
        if (position >= kMostPositions || positionOf(name, hash) < position)
            return nullptr;
        if (isIndexed && !m_table.hasRoomFor(position + 1)) {
            m_table.reset(position + 1);
            enterAll();
        }
        Object* const object = m_objects.add(std::forward<Arguments>(arguments)...);
        if (isIndexed)
            m_table.enter(hash, position);
        return object;
    }

    /// The same; if the name is taken and `finds` is set, the object that has it.
    template <class... Arguments>
    Object* createOrFind(std::string_view name, bool finds, Arguments&&... arguments) {
        Object* const fresh = create(name, std::forward<Arguments>(arguments)...);
        return fresh == nullptr && finds ? find(name) : fresh;
    }

    /// The object of that name, or null.
    [[nodiscard]] Object* find(std::string_view name) const {
        const std::size_t position = positionOf(name);
        return position < m_objects.size() ? m_objects.at(position) : nullptr;
    }

    /// Position of the object of that name, which grows in the order of the objects; beyond all of
    /// them if none has this name.
    [[nodiscard]] std::size_t positionOf(std::string_view name) const {
        return positionOf(name, m_table.empty() ? 0 : HABMNameTable::hashOf(name));
    }

    /// Takes a loose object out; null if none has this name.
    auto take(std::string_view name) -> std::unique_ptr<typename HABMStored<Object>::Type> {
        const std::size_t position = positionOf(name);
        if (position >= m_objects.size())
            return nullptr;
        auto object = m_objects.take(position);
        if (m_objects.size() > 2 * m_objects.count() + kMostSearched) {
            m_objects.closeHoles();
            m_table.reset(m_objects.size());
            enterAll();
        }
        return object;
    }

    [[nodiscard]] std::size_t size() const { return m_objects.count(); }

    /// The objects in order, as a copy that outlives their removal.
    [[nodiscard]] std::vector<Object*> all() const {
        std::vector<Object*> objects;
        objects.reserve(size());
        forEach([&](Object& object) { objects.push_back(&object); });
        return objects;
    }

    /// Calls `visit` for each object in order; `visit` mustn't add or take out objects.
    template <class Visit>
    void forEach(Visit&& visit) const {
        for (std::size_t position = 0; position < m_objects.size(); ++position)
            if (Object* const object = m_objects.at(position))
                visit(*object);
    }

private:
    /// Up to so many objects a linear search is faster, and smaller, than the table.
    static constexpr std::size_t kMostSearched = 12;
    static constexpr std::size_t kMostPositions = UINT32_MAX - 1;

    [[nodiscard]] std::size_t positionOf(std::string_view name, HABMNameTable::Hash hash) const {
        const auto holds = [&](std::size_t position) {
            const Object* const object = m_objects.at(position);
            return object != nullptr && habm::nameOf(*object) == name;
        };
        if (!m_table.empty())
            return m_table.find(hash, m_objects.size(), holds);
        std::size_t position = 0;
        while (position < m_objects.size() && !holds(position))
            ++position;
        return position;
    }

    void enterAll() {
        for (std::size_t position = 0; position < m_objects.size(); ++position)
            if (const Object* const object = m_objects.at(position))
                m_table.enter(HABMNameTable::hashOf(habm::nameOf(*object)), position);
    }

    Objects<Object> m_objects;
    HABMNameTable m_table; ///< empty while there are few objects
};
