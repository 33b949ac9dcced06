// Holds the objects of one kind that a parent owns: in the order in which they came, found by name.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// Adding, finding and taking out cost a constant time on average, whatever the number of objects.
/// The names must live in the objects themselves and stay as they are while they are in here. An
/// object that is taken out leaves a hole, and the holes are closed when they outnumber the
/// objects, so that emptying a large store costs no more than filling it.
template <class Object>
class HABMNamedStore {
public:
    /// Takes the object in, or gives null and destroys it if the name is taken.
    Object* add(std::string_view name, std::unique_ptr<Object> object) {
        if (m_positions == nullptr && m_count >= kMostSearched)
            indexNames();
        const bool isFree = m_positions != nullptr
                                ? m_positions->try_emplace(name, m_entries.size()).second
                                : searched(name) == m_entries.size();
        if (!isFree)
            return nullptr;
        m_entries.push_back({name, std::move(object)});
        ++m_count;
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
        if (m_positions != nullptr)
            m_positions->erase(m_entries[position].name);
        --m_count;
        std::unique_ptr<Object> object = std::move(m_entries[position].object);
        m_entries[position].name = {};
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
        std::string_view name;
        std::unique_ptr<Object> object; ///< null in a hole
    };

    /// Up to so many objects a search is faster, and smaller, than a table of positions.
    static constexpr std::size_t kMostSearched = 12;

    [[nodiscard]] std::size_t positionOf(std::string_view name) const {
        if (m_positions == nullptr)
            return searched(name);
        const auto found = m_positions->find(name);
        return found == m_positions->end() ? m_entries.size() : found->second;
    }

    [[nodiscard]] std::size_t searched(std::string_view name) const {
        std::size_t position = 0;
        while (position < m_entries.size() &&
               (m_entries[position].object == nullptr || m_entries[position].name != name))
            ++position;
        return position;
    }

    void indexNames() {
        m_positions = std::make_unique<std::unordered_map<std::string_view, std::size_t>>();
        for (std::size_t position = 0; position < m_entries.size(); ++position)
            if (m_entries[position].object != nullptr)
                m_positions->emplace(m_entries[position].name, position);
    }

    void closeHoles() {
        std::erase_if(m_entries, [](const Entry& entry) { return entry.object == nullptr; });
        if (m_positions != nullptr)
            indexNames();
    }

    std::vector<Entry> m_entries;
    std::size_t m_count = 0; ///< of the entries that are no holes
    std::unique_ptr<std::unordered_map<std::string_view, std::size_t>> m_positions;
};
