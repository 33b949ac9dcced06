// Interning and sorting of names for the tables of a handoff.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <numeric>
#include <span>
#include <string_view>
#include <vector>

namespace hwh {

/// No number: returned by look-ups of unknown names.
inline constexpr std::uint32_t kNone = 0xFFFFFFFF;

/// Hashing with open addressing, from something to its number. The owner keeps the things
/// themselves and says which of them are the same.
class HashIndex {
public:
    /// The number for which `isSame(number)` is true, or `kNone`.
    template <class IsSame>
    [[nodiscard]] std::uint32_t find(std::size_t hash, IsSame&& isSame) const {
        if (m_slots.empty())
            return kNone;
        for (std::size_t at = hash & m_mask;; at = (at + 1) & m_mask) {
            const Slot& slot = m_slots[at];
            if (slot.number == kNone)
                return kNone;
            if (slot.hash == shortened(hash) && isSame(slot.number))
                return slot.number;
        }
    }

    /// The number at which a search would begin, or `kNone`: what is worth bringing into the cache.
    [[nodiscard]] std::uint32_t firstCandidate(std::size_t hash) const {
        return m_slots.empty() ? kNone : m_slots[hash & m_mask].number;
    }
    void prefetch(std::size_t hash) const {
        if (!m_slots.empty())
            __builtin_prefetch(&m_slots[hash & m_mask]);
    }

    /// Makes room for so many things in all.
    void reserve(std::size_t count) {
        while (count * 4 > m_slots.size() * 3)
            grow();
    }
    /// Adds something that isn't in the index yet.
    void insert(std::size_t hash, std::uint32_t number) {
        if (m_count * 4 >= m_slots.size() * 3)
            grow();
        place({shortened(hash), number}, hash);
        ++m_count;
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t number = kNone;
    };

    /// The low bits choose the slot, so that a table can grow by the bits that it keeps.
    static std::uint32_t shortened(std::size_t hash) { return static_cast<std::uint32_t>(hash); }

    void grow() {
        std::vector<Slot> slots(std::max<std::size_t>(m_slots.size() * 2, 16));
        slots.swap(m_slots);
        m_mask = m_slots.size() - 1;
        for (const Slot& slot : slots)
            if (slot.number != kNone)
                place(slot, slot.hash);
    }
    void place(const Slot& slot, std::size_t hash) {
        std::size_t at = hash & m_mask;
        while (m_slots[at].number != kNone)
            at = (at + 1) & m_mask;
        m_slots[at] = slot;
    }

    std::vector<Slot> m_slots; ///< a power of two
    std::size_t m_mask = 0;
    std::size_t m_count = 0;
};

/// The hash of a text, taken byte by byte, so that the hashes of all its prefixes are intermediate
/// values of its own (FNV-1a).
class RollingHash {
public:
    void add(char c) { m_state = (m_state ^ static_cast<unsigned char>(c)) * 0x100000001B3U; }
    /// The high bits depend on all bytes, the index uses the low ones.
    [[nodiscard]] std::size_t value() const { return m_state ^ m_state >> 32U; }

private:
    std::uint64_t m_state = 0xCBF29CE484222325U;
};

/// Interned names, numbered from 0 in the order in which they came. The bytes stay their owner's.
class NameTable {
public:
    std::uint32_t intern(std::string_view name) {
        const std::size_t hash = std::hash<std::string_view>()(name);
        const std::uint32_t known = find(name, hash);
        if (known != kNone)
            return known;
        const auto number = static_cast<std::uint32_t>(m_names.size());
        m_names.push_back(name);
        m_index.insert(hash, number);
        return number;
    }
    /// The name's number, or `kNone`.
    [[nodiscard]] std::uint32_t find(std::string_view name) const {
        return find(name, std::hash<std::string_view>()(name));
    }
    [[nodiscard]] std::string_view operator[](std::uint32_t number) const {
        return m_names[number];
    }
    [[nodiscard]] std::size_t size() const { return m_names.size(); }
    void reserve(std::size_t count) {
        m_names.reserve(count);
        m_index.reserve(count);
    }

private:
    [[nodiscard]] std::uint32_t find(std::string_view name, std::size_t hash) const {
        return m_index.find(hash, [&](std::uint32_t number) { return m_names[number] == name; });
    }

    std::vector<std::string_view> m_names;
    HashIndex m_index;
};

/// Orders things by their names, bytewise and the shorter first at equal prefix.
///
/// Names of one list often begin alike: the bytes that they share are passed over, the next eight
/// are made one number, the numbers are radix sorted, and only ties compare the names themselves.
class NameSorter {
public:
    /// The numbers of `count` things in the order of `nameOf(number)`, equal names in the order of
    /// their numbers. Valid until the next call.
    template <class NameOf>
    std::span<const std::uint32_t> sort(std::size_t count, NameOf&& nameOf) {
        m_order.resize(count);
        for (std::size_t i = 0; i < count; ++i)
            m_order[i] = static_cast<std::uint32_t>(i);
        if (count < kFew)
            std::sort(m_order.begin(), m_order.end(), [&](std::uint32_t a, std::uint32_t b) {
                const int order = nameOf(a).compare(nameOf(b));
                return order < 0 || (order == 0 && a < b);
            });
        else
            sortMany(nameOf);
        return m_order;
    }

    /// The same with only the last of each name: the later of two replaces the earlier.
    template <class NameOf>
    std::span<const std::uint32_t> sortKeepingLast(std::size_t count, NameOf&& nameOf) {
        sort(count, nameOf);
        std::size_t kept = 0;
        for (std::size_t i = 0; i < count; ++i)
            if (i + 1 == count || nameOf(m_order[i]) != nameOf(m_order[i + 1]))
                m_order[kept++] = m_order[i];
        m_order.resize(kept);
        return m_order;
    }

private:
    static constexpr std::size_t kFew = 64;

    struct Item {
        std::uint64_t key = 0; ///< the eight bytes after the shared prefix
        std::uint32_t number = 0;
    };

    template <class NameOf>
    void sortMany(NameOf&& nameOf) {
        const std::size_t shared = sharedBytes(nameOf);
        std::vector<Item> items(m_order.size());
        for (std::size_t i = 0; i < items.size(); ++i)
            items[i] = {keyOf(nameOf(m_order[i]).substr(shared)), m_order[i]};
        const auto hasLess = [](const Item& a, const Item& b) { return a.key < b.key; };
        if (!std::is_sorted(items.begin(), items.end(), hasLess))
            radixSort(items);
        for (auto first = items.begin(); first != items.end();) {
            const auto last = std::find_if(
                first, items.end(), [&](const Item& item) { return item.key != first->key; });
            if (last - first > 1)
                std::stable_sort(first, last, [&](const Item& a, const Item& b) {
                    return nameOf(a.number).substr(shared) < nameOf(b.number).substr(shared);
                });
            first = last;
        }
        for (std::size_t i = 0; i < items.size(); ++i)
            m_order[i] = items[i].number;
    }

    /// By the bytes of the key from the last to the first, each pass keeping the order of the one
    /// before. Bytes that are the same in all keys take no pass.
    static void radixSort(std::vector<Item>& items) {
        std::vector<Item> sorted(items.size());
        for (unsigned shift = 0; shift < 64; shift += 8) {
            std::array<std::size_t, 256> starts{};
            for (const Item& item : items)
                ++starts[item.key >> shift & 0xFFU];
            if (starts[items.front().key >> shift & 0xFFU] == items.size())
                continue;
            std::exclusive_scan(starts.begin(), starts.end(), starts.begin(), std::size_t{0});
            for (const Item& item : items)
                sorted[starts[item.key >> shift & 0xFFU]++] = item;
            items.swap(sorted);
        }
    }

    template <class NameOf>
    std::size_t sharedBytes(NameOf&& nameOf) const {
        std::string_view shared = nameOf(m_order.front());
        for (const std::uint32_t number : m_order) {
            const std::string_view name = nameOf(number);
            const std::size_t most = std::min(shared.size(), name.size());
            const auto differs = std::mismatch(shared.begin(), shared.begin() + most, name.begin());
            shared = shared.substr(0, static_cast<std::size_t>(differs.first - shared.begin()));
        }
        return shared.size();
    }

    /// A short name is padded with zeros: a tie is decided by the names themselves.
    static std::uint64_t keyOf(std::string_view name) {
        std::uint64_t key = 0;
        for (std::size_t i = 0; i < sizeof key; ++i)
            key = key << 8U | (i < name.size() ? static_cast<unsigned char>(name[i]) : 0U);
        return key;
    }

    std::vector<std::uint32_t> m_order;
};

} // namespace hwh
