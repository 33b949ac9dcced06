// Who wins among sums that come one after the other, when a later one must win by a margin.
//
// The winner is the end of a chain: a sum that is less than the present best by the margin replaces
// it. The winner needn't be the smallest: after 1.000015, the sum 1.000008 doesn't become the best
// and 1 does; without the first, 1.000008 is the best and 1 doesn't replace it.
//
// A search that doesn't go in the order of the chain, and leaves things out, can still tell:
// - A sum that isn't less than each one before it never joins the chain. What remains are the
//   record lows of the sequence.
// - A record low that is more than twice the margin under the one before it becomes the best for
// certain,
//   whatever the chain did before. From there on the chain is known.
// So it is enough to know all record lows from a little above the smallest sum on. When they lie
// so close that none becomes the best for certain, more of them must be known: a wider band.
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

/// All that the search decides, by role, and its place in the enumeration at once: a tuple comes
/// before another exactly when it is less. Dividers come from the largest down, so they are kept as
/// how far they lie below it.
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

    /// Sums above `worst` play no part; `isProven` says that there are none, or none that count.
    /// The band is relative to the smallest sum.
    NearMinimum(double worst, bool isProven, double band);

    /// Sums above this play no part, nor will they.
    [[nodiscard]] double limit() const { return m_limit; }
    /// The same for tuples at or behind this place: only a record low plays a part.
    [[nodiscard]] double limitFrom(const Tuple& place) const;
    void offer(const Tuple& tuple, float sum);
    /// Sums above this play no part any more; higher limits change nothing.
    void lowerLimit(double limit) { m_limit = std::min(m_limit, limit); }
    /// The smallest sum offered; infinite before any.
    [[nodiscard]] double lowest() const {
        return m_lows.empty() ? std::numeric_limits<double>::infinity()
                              : static_cast<double>(m_lows.rbegin()->second);
    }

    /// Whether the sums within the limit tell the winner. If not, a wider band must be searched.
    [[nodiscard]] bool isDecided() const;
    /// The end of the chain that starts from a best of 1000; none if nothing was offered.
    [[nodiscard]] std::optional<Winner> winner() const;

    /// Twice the margin of the chain's comparison, with room for rounding.
    static constexpr double kCertainMargin = 2e-5;

private:
    /// The record lows by place, so that the sums fall.
    std::map<Tuple, float> m_lows;
    double m_worst;
    bool m_isProven;
    double m_band;
    double m_limit;
};

} // namespace hbs_clocking
