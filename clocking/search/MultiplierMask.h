// A set of feedback multipliers.
#pragma once

#include <array>
#include <bit>
#include <cstdint>

namespace hbs_clocking {

/// Holds multipliers up to 191; a value type of three words.
class MultiplierMask {
public:
    void insert(unsigned mul) { m_words[mul / 64] |= std::uint64_t{1} << mul % 64; }
    void erase(unsigned mul) { m_words[mul / 64] &= ~(std::uint64_t{1} << mul % 64); }
    void eraseUpTo(unsigned mul) {
        for (unsigned i = 0; i < mul / 64; ++i)
            m_words[i] = 0;
        m_words[mul / 64] &= ~std::uint64_t{1} << mul % 64;
    }
    [[nodiscard]] bool contains(unsigned mul) const {
        return (m_words[mul / 64] >> mul % 64 & 1U) != 0;
    }
    [[nodiscard]] bool isEmpty() const { return (m_words[0] | m_words[1] | m_words[2]) == 0; }
    [[nodiscard]] unsigned size() const {
        return static_cast<unsigned>(std::popcount(m_words[0]) + std::popcount(m_words[1]) +
                                     std::popcount(m_words[2]));
    }
    [[nodiscard]] bool isSubsetOf(const MultiplierMask& other) const {
        return (m_words[0] & ~other.m_words[0]) == 0 && (m_words[1] & ~other.m_words[1]) == 0 &&
               (m_words[2] & ~other.m_words[2]) == 0;
    }
    MultiplierMask& operator&=(const MultiplierMask& other) {
        for (std::size_t i = 0; i < m_words.size(); ++i)
            m_words[i] &= other.m_words[i];
        return *this;
    }
    MultiplierMask& operator|=(const MultiplierMask& other) {
        for (std::size_t i = 0; i < m_words.size(); ++i)
            m_words[i] |= other.m_words[i];
        return *this;
    }
    bool operator==(const MultiplierMask&) const = default;

private:
    std::array<std::uint64_t, 3> m_words{};
};

} // namespace hbs_clocking
