// Holds the objects of one kind that a parent owns: in the order in which they came, found by name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

/// Adding, finding and taking out cost a constant time on average, whatever the number of objects.
/// The names must live in the objects themselves and stay as they are while they are in here. An
/// object that is taken out leaves a hole, and the holes are closed when they outnumber the
/// objects, so that emptying a large store costs no more than filling it.
///
/// The positions by name lie in one flat table, probed one slot after the other: designs have
/// millions of names, and a node for each would double the work of making and destroying them.
template <class Object>
class HABMNamedStore {
public:
    /// Takes the object in, or gives null and destroys it if the name is taken.
    Object* add(std::string_view name, std::unique_ptr<Object> object) {
        if (find(name) != nullptr || m_entries.size() >= kMostEntries)
            return nullptr;
        m_entries.push_back({name, std::move(object)});
        ++m_count;
        if (2 * m_entries.size() > m_slots.size())
            indexNames();
        else
            enter(m_entries.size() - 1);
        return m_entries.back().object.get();
    }

    [[nodiscard]] Object* find(std::string_view name) const {
        const std::size_t position = positionOf(name);
        return position < m_entries.size() ? m_entries[position].object.get() : nullptr;
    }

    /// Gives the object out, or null if none has this name.
    std::unique_ptr<Object> take(std::string_view name) {
        const std::size_t position = positionOf(name);
        if (position >= m_entries.size())
            return nullptr;
        --m_count;
        std::unique_ptr<Object> object = std::move(m_entries[position].object);
        if (m_entries.size() > 2 * m_count + kMostSearched)
            closeHoles();
        return object;
    }

    [[nodiscard]] std::size_t size() const { return m_count; }
    [[nodiscard]] bool empty() const { return m_count == 0; }

    /// The objects in order, as a copy that outlives their removal.
    [[nodiscard]] std::vector<Object*> all() const {
        std::vector<Object*> objects;
        objects.reserve(m_count);
        forEach([&](Object& object) { objects.push_back(&object); });
        return objects;
    }

    /// Calls `visit` for each object in order. It mustn't add or take out.
    template <class Visit>
    void forEach(Visit&& visit) const {
        for (const Entry& entry : m_entries)
            if (entry.object != nullptr)
                visit(*entry.object);
    }

private:
    struct Entry {
        std::string_view name;          ///< of no meaning in a hole
        std::unique_ptr<Object> object; ///< null in a hole
    };

    /// A hole keeps its slot until the table is made anew, so that a probe goes on over it.
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = 0; ///< position + 1; 0 in a free slot
    };

    /// Up to so many entries a search is faster, and smaller, than the table.
    static constexpr std::size_t kMostSearched = 12;
    static constexpr std::size_t kMostEntries = UINT32_MAX - 1;

    static std::uint32_t hashOf(std::string_view name) {
        return static_cast<std::uint32_t>(std::hash<std::string_view>()(name));
    }

    [[nodiscard]] bool holds(std::size_t position, std::string_view name) const {
        return m_entries[position].object != nullptr && m_entries[position].name == name;
    }

    [[nodiscard]] std::size_t positionOf(std::string_view name) const {
        if (!m_slots.empty())
            return indexed(name);
        std::size_t position = 0;
        while (position < m_entries.size() && !holds(position, name))
            ++position;
        return position;
    }

    [[nodiscard]] std::size_t indexed(std::string_view name) const {
        const std::uint32_t hash = hashOf(name);
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = hash & mask; m_slots[i].place != 0; i = (i + 1) & mask)
            if (m_slots[i].hash == hash && holds(m_slots[i].place - 1, name))
                return m_slots[i].place - 1;
        return m_entries.size();
    }

    void enter(std::size_t position) {
        const std::uint32_t hash = hashOf(m_entries[position].name);
        const std::size_t mask = m_slots.size() - 1;
        std::size_t i = hash & mask;
        while (m_slots[i].place != 0)
            i = (i + 1) & mask;
        m_slots[i] = {hash, static_cast<std::uint32_t>(position + 1)};
    }

    /// Makes the table anew, with a power of two of slots and room to grow.
    void indexNames() {
        m_slots.clear();
        if (m_entries.size() <= kMostSearched)
            return;
        std::size_t count = 64;
        while (count < 4 * m_entries.size())
            count *= 2;
        m_slots.resize(count);
        for (std::size_t position = 0; position < m_entries.size(); ++position)
            if (m_entries[position].object != nullptr)
                enter(position);
    }

    void closeHoles() {
        std::erase_if(m_entries, [](const Entry& entry) { return entry.object == nullptr; });
        indexNames();
    }

    std::vector<Entry> m_entries;
    std::size_t m_count = 0; ///< of the entries that are no holes
    std::vector<Slot> m_slots;
};
