// What the settings of the two PLLs of one domain save together, where not every multiplier of the
// one goes with every multiplier of the other.
#pragma once

#include <algorithm>
#include <limits>
#include <span>
#include <vector>

#include "clocking/search/CombinationList.h"

namespace hbs_clocking {

/// What nothing saves.
inline constexpr float kNoSaving = -std::numeric_limits<float>::infinity();

/// The best saving of each multiplier of one PLL, the largest first.
class MultiplierSavings {
public:
    struct Entry {
        float saving;
        unsigned mul;
    };

    void clear() { m_entries.clear(); }
    /// Settings of one multiplier come in a row.
    void offer(unsigned mul, float saving) {
        if (m_entries.empty() || m_entries.back().mul != mul)
            m_entries.push_back({saving, mul});
        else
            m_entries.back().saving = std::max(m_entries.back().saving, saving);
    }
    /// Ends the offers.
    void sort() {
        std::sort(m_entries.begin(), m_entries.end(),
                  [](const Entry& a, const Entry& b) { return a.saving > b.saving; });
    }

    [[nodiscard]] std::span<const Entry> all() const { return m_entries; }
    [[nodiscard]] float largest() const {
        return m_entries.empty() ? kNoSaving : m_entries.front().saving;
    }
    [[nodiscard]] float largestAmong(const MultiplierMask& allowed) const {
        for (const Entry& entry : m_entries)
            if (allowed.contains(entry.mul))
                return entry.saving;
        return kNoSaving;
    }

private:
    std::vector<Entry> m_entries;
};

/// The most that a first and a second multiplier save which go together in these tails.
[[nodiscard]] inline float largestTogether(const MultiplierSavings& firsts,
                                           const MultiplierSavings& seconds,
                                           const CombinationTails& tails) {
    float largest = kNoSaving;
    for (const auto& [saving, mul] : firsts.all()) {
        if (saving + seconds.largest() <= largest)
            break; // those to come save less still
        largest = std::max(largest, saving + seconds.largestAmong(tails.seconds(mul)));
    }
    return largest;
}

} // namespace hbs_clocking
