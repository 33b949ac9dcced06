// Interning of rows of errors: equal rows have equal numbers, so results can be memoised by number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace hbs_clocking {

/// Interns rows of one length by their bits. A hash table with open addressing; rows move when it
/// grows, numbers don't change.
class RowIndex {
public:
    explicit RowIndex(std::size_t length) : m_length(length), m_slots(kFirstSlots) {}

    /// The number of this row: 0 for the first row, 1 for the next one that differs, and so on.
    unsigned add(const float* row) {
        std::size_t slot = hashOf(row) & (m_slots.size() - 1);
        while (m_slots[slot] != 0) {
            if (isAt(m_slots[slot] - 1, row))
                return m_slots[slot] - 1;
            slot = (slot + 1) & (m_slots.size() - 1);
        }
        m_rows.insert(m_rows.end(), row, row + m_length);
        m_slots[slot] = ++m_size;
        if (std::size_t{2} * m_size > m_slots.size())
            grow();
        return m_size - 1;
    }

    [[nodiscard]] const float* at(unsigned number) const {
        return m_rows.data() + number * m_length;
    }
    [[nodiscard]] unsigned size() const { return m_size; }
    [[nodiscard]] std::size_t bytes() const {
        return m_rows.capacity() * sizeof(float) + m_slots.size() * sizeof(unsigned);
    }

private:
    static constexpr std::size_t kFirstSlots = 64; ///< a power of two, as are all later sizes

    /// Rows of length 0 are all equal, and their address may be null, which memcmp doesn't accept.
    [[nodiscard]] bool isAt(unsigned number, const float* row) const {
        return m_length == 0 || std::memcmp(at(number), row, m_length * sizeof(float)) == 0;
    }

    [[nodiscard]] std::size_t hashOf(const float* row) const {
        std::uint64_t hash = 0;
        for (std::size_t i = 0; i < m_length; ++i) {
            std::uint32_t bits = 0;
            std::memcpy(&bits, row + i, sizeof bits);
            hash = (hash ^ bits) * 0x9E3779B97F4A7C15U;
            hash ^= hash >> 29U;
        }
        return static_cast<std::size_t>(hash);
    }

    void grow() {
        m_slots.assign(2 * m_slots.size(), 0);
        for (unsigned number = 0; number < m_size; ++number) {
            std::size_t slot = hashOf(at(number)) & (m_slots.size() - 1);
            while (m_slots[slot] != 0)
                slot = (slot + 1) & (m_slots.size() - 1);
            m_slots[slot] = number + 1;
        }
    }

    std::size_t m_length;
    std::vector<float> m_rows;
    std::vector<unsigned> m_slots; ///< number + 1; 0 where free
    unsigned m_size = 0;
};

} // namespace hbs_clocking
