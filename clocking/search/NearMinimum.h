// The winner of a sequence of sums in which a later sum must be smaller by a margin to win.
//
// The exhaustive search keeps a best sum; one that is less by the margin replaces it. The sums that
// become the best form a chain, and its end is the winner. It needn't be the smallest sum: in
// 1.000015, 1.000008, 1 the second isn't less than the first by the margin of 1e-5, the third is,
// and wins. Without the first, 1.000008 becomes the best and 1 doesn't replace it.
//
// A search in another order that prunes most sums can still find the winner:
// - A sum that isn't less than all sums before it never joins the chain, since the best is at most
//   a margin above the least so far. Only the record lows of the sequence matter.
// - A record low that is more than twice the margin below the one before it joins the chain for
//   certain, whatever the best was: that isn't below the earlier record low, the least sum so far.
//   (One margin would do; the second is for rounding.) From there on the chain is known.
// So it is enough to collect the record lows within a band above the smallest sum. If they lie so
// close together that none joins for certain, the band must be wider.
#pragma once

#include <algorithm>
#include <array>
#include <compare>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>

#include "clocking/search/CombinationList.h"
#include "clocking/search/TreeShape.h"

namespace hbs_clocking {

/// All that the search decides, by role, and at the same time its place in the enumeration: a tuple
/// precedes another exactly if it compares less. Dividers are enumerated from the largest down, so
/// they are stored as their distance below the largest.
struct Tuple {
    Combination muls{};
    std::array<std::uint8_t, kRoles> divsBelow8{};
    std::array<std::uint8_t, 3> crossesBelow4{};

    [[nodiscard]] unsigned div(Role role) const { return 8U - divsBelow8[indexOf(role)]; }
    [[nodiscard]] unsigned cross(Role role) const { return 4U - crossesBelow4[indexOf(role)]; }
    auto operator<=>(const Tuple&) const = default; // NOLINT(modernize-use-nullptr): none is here
};

/// Collects sums in any order and finds the end of their chain.
class NearMinimum {
public:
    struct Winner {
        Tuple tuple;
        float sum = 0.0F;
    };

    /// Sums above `worst` are ignored; `isProven` says that none of these could matter. The band is
    /// relative to the smallest sum.
    NearMinimum(double worst, bool isProven, double band);

    /// Sums above this can't change the winner, now or later.
    [[nodiscard]] double limit() const { return m_limit; }
    /// The same for tuples at this place or later: only a record low counts.
    [[nodiscard]] double limitFrom(const Tuple& place) const;
    void offer(const Tuple& tuple, float sum);
    /// Lowers the limit to this; has no effect if it is lower already.
    void lowerLimit(double limit) { m_limit = std::min(m_limit, limit); }
    /// The smallest sum offered; infinite before any.
    [[nodiscard]] double lowest() const {
        return m_lows.empty() ? std::numeric_limits<double>::infinity()
                              : static_cast<double>(m_lows.rbegin()->second);
    }

    /// Whether the sums within the limit determine the winner. If not, a wider band must be
    /// searched.
    [[nodiscard]] bool isDecided() const;
    /// The end of the chain that starts from a best of 1000; none if nothing was offered.
    [[nodiscard]] std::optional<Winner> winner() const;

    /// Twice the margin of the chain's comparison, with room for rounding.
    static constexpr double kCertainMargin = 2e-5;

private:
    /// The record lows by place; their sums descend.
    std::map<Tuple, float> m_lows;
    double m_worst;
    bool m_isProven;
    double m_band;
    double m_limit;
};

} // namespace hbs_clocking
