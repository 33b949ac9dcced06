// HBSPointerIndex: a map from object pointer to a set of pointers that keeps the order of
// insertion, so that reports which walk it come out the same at every run.
#pragma once

#include <cstddef>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// Maps a `Key*` to a set of `Element*`; pointers are compared, never followed, and none is owned.
///
///     HBSPointerIndex<HABMAddrSpace, HABMInterface> index;
///     index.insert(space, interface);
///     if (const auto* interfaces = index.find(space))
///         for (HABMInterface* interface : *interfaces) ...
///
/// Keys, and the elements of one key, keep the order in which they first came. Lookup scans the
/// entries while there are fewer than `kHashThreshold`: most blocks have a handful of spaces. The
/// insertion that brings the count to the threshold builds a hash table over them, and from then on
/// lookup and insertion go through it. Entries are never removed.
template <class Key, class Element>
class HBSPointerIndex {
public:
    /// From so many pointers on, a hash table finds one; below it a walk is quicker.
    static constexpr std::size_t kHashThreshold = 500;

    /// Adds `element` to the set of `key`; nothing changes if it is there already.
    void insert(const Key* key, Element* element) {
        Entry& entry = m_entries[positionOrNew(key)];
        if (entry.known.insert(element).second)
            entry.elements.push_back(element);
    }

    /// The set of `key` in order of insertion, or null for a key that was never inserted. Valid
    /// until the next insertion.
    [[nodiscard]] const std::vector<Element*>* find(const Key* key) const {
        const std::size_t position = positionOf(key);
        return position < m_entries.size() ? &m_entries[position].elements : nullptr;
    }

    /// Number of keys.
    [[nodiscard]] std::size_t size() const { return m_entries.size(); }
    /// The key at `position`, counted in order of insertion; `position` is below `size()`.
    [[nodiscard]] const Key* keyAt(std::size_t position) const { return m_entries[position].key; }
    /// Whether lookups go through the hash table.
    [[nodiscard]] bool isHashed() const { return !m_positions.empty(); }

private:
    struct Entry {
        const Key* key;
        std::vector<Element*> elements;
        std::unordered_set<const Element*> known;
    };

    /// The entry's place, or the number of entries if there is none.
    [[nodiscard]] std::size_t positionOf(const Key* key) const {
        if (isHashed()) {
            const auto found = m_positions.find(key);
            return found == m_positions.end() ? m_entries.size() : found->second;
        }
        std::size_t position = 0;
        while (position < m_entries.size() && m_entries[position].key != key)
            ++position;
        return position;
    }

    std::size_t positionOrNew(const Key* key) {
        const std::size_t position = positionOf(key);
        if (position < m_entries.size())
            return position;
        m_entries.push_back({key, {}, {}});
        if (isHashed())
            m_positions.emplace(key, position);
        else if (m_entries.size() == kHashThreshold)
            buildHash();
        return position;
    }

    void buildHash() {
        for (std::size_t i = 0; i < m_entries.size(); ++i)
            m_positions.emplace(m_entries[i].key, i);
    }

    std::vector<Entry> m_entries;
    std::unordered_map<const Key*, std::size_t> m_positions;
};
