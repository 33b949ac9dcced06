// The process-wide store of solutions of the 4- and 6-PLL solvers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <boost/functional/hash.hpp>

#include "clocking/ClockSearchTypes.h"

namespace hbs_clocking {

/// A solution with names for pointers, so that it outlives its solver.
struct ClockingSolution {
    float toleranceFactor = 0.0F;
    float totalRelativeError = 0.0F;
    std::unordered_map<std::string, DividerChoice> peripherals;
    std::unordered_map<std::string, std::vector<unsigned>> plls;
};

/// Keeps the first ten solutions for the life of the process; nothing is evicted. Not guarded: only
/// the callers' thread touches it.
class ClockingSolutionCache {
public:
    using Key = std::vector<std::pair<std::string, float>>;

    static ClockingSolutionCache& getGlobal();

    ClockingSolutionCache(const ClockingSolutionCache&) = delete;
    ClockingSolutionCache& operator=(const ClockingSolutionCache&) = delete;

    [[nodiscard]] bool isEmpty() const { return m_count == 0; }
    [[nodiscard]] bool isFull() const { return m_count >= m_capacity; }
    /// Null when there is none. Keys are equal when every text and every number is.
    [[nodiscard]] const ClockingSolution* find(const Key& key) const;
    /// Does nothing when full.
    void store(const Key& key, ClockingSolution solution);

private:
    ClockingSolutionCache() = default;
    ~ClockingSolutionCache() = default;

    using SolutionsByKey = std::unordered_map<Key, ClockingSolution, boost::hash<Key>>;

    std::int32_t m_capacity = 10;
    std::int32_t m_count = 0;
    std::unordered_map<std::uint32_t, SolutionsByKey> m_entriesByKeyLength;
};

} // namespace hbs_clocking
