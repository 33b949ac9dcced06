// The largest joint saving of the two PLLs of one domain, where not every multiplier of the one can
// be combined with every multiplier of the other. See `PriceBound` for savings.
#pragma once

#include <algorithm>
#include <array>
#include <limits>
#include <span>
#include <vector>

#include "clocking/search/CombinationList.h"

namespace hbs_clocking {

/// The saving of a PLL that has no option: less than any other.
inline constexpr float kNoSaving = -std::numeric_limits<float>::infinity();

/// The best saving of each multiplier of one PLL, the largest first.
class MultiplierSavings {
public:
    struct Entry {
        float saving = kNoSaving;
        unsigned mul = 0;
    };

    /// Takes the settings of a PLL, grouped by multiplier, and the saving of each.
    template <class Options, class SavingAt>
    void assign(const Options& options, const SavingAt& savingAt) {
        m_entries.clear();
        for (std::size_t i = 0; i < options.size(); ++i) {
            if (m_entries.empty() || m_entries.back().mul != options[i].mul)
                m_entries.push_back({savingAt(i), options[i].mul});
            else
                m_entries.back().saving = std::max(m_entries.back().saving, savingAt(i));
        }
        std::sort(m_entries.begin(), m_entries.end(),
                  [](const Entry& a, const Entry& b) { return a.saving > b.saving; });
    }

    [[nodiscard]] std::span<const Entry> all() const { return m_entries; }
    [[nodiscard]] float largest() const {
        if (m_entries.empty())
            return kNoSaving;
        return m_entries.front().saving;
    }
    /// The largest of these multipliers; `kNoSaving` and 0 if none is here.
    [[nodiscard]] Entry largestAmong(const MultiplierMask& allowed) const {
        for (const Entry& entry : m_entries)
            if (allowed.contains(entry.mul))
                return entry;
        return {};
    }

private:
    std::vector<Entry> m_entries;
};

/// A first and a second multiplier that go together.
struct PairSaving {
    float saving = kNoSaving;
    std::array<unsigned, 2> muls{};
};

/// The pair of largest saving among these tails. Entries descend, so the scan ends once even the
/// best partner can't improve on the pair found.
[[nodiscard]] inline PairSaving largestTogether(const MultiplierSavings& firsts,
                                                const MultiplierSavings& seconds,
                                                const CombinationTails& tails) {
    PairSaving largest;
    for (const auto& [saving, mul] : firsts.all()) {
        if (saving + seconds.largest() <= largest.saving)
            break;
        const MultiplierSavings::Entry second = seconds.largestAmong(tails.seconds(mul));
        if (saving + second.saving > largest.saving)
            largest = {saving + second.saving, {mul, second.mul}};
    }
    return largest;
}

} // namespace hbs_clocking
