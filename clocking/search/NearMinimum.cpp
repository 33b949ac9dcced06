#include "clocking/search/NearMinimum.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "clocking/ClockingArithmetic.h"

namespace hbs_clocking {

NearMinimum::NearMinimum(double worst, bool isProven, double band)
    : m_worst(worst), m_isProven(isProven), m_band(band), m_limit(worst) {}

double NearMinimum::limitFrom(const Tuple& place) const {
    const auto behind = m_lows.lower_bound(place);
    if (behind == m_lows.begin())
        return m_limit;
    const float lowest = std::prev(behind)->second;
    if (lowest == 0.0F)
        return -std::numeric_limits<double>::infinity(); // no sum is smaller
    return std::min(m_limit, static_cast<double>(std::nextafter(lowest, 0.0F)));
}

void NearMinimum::offer(const Tuple& tuple, float sum) {
    if (static_cast<double>(sum) > m_limit || !definitelyLess(sum, kWorstTotalError, kMargin))
        return;
    auto place = m_lows.lower_bound(tuple);
    if (place != m_lows.begin() && std::prev(place)->second <= sum)
        return;
    if (place != m_lows.end() && place->first == tuple)
        return;
    while (place != m_lows.end() && place->second >= sum)
        place = m_lows.erase(place);
    m_lows.emplace_hint(place, tuple, sum);
    m_limit = std::min(m_limit, static_cast<double>(sum) * (1.0 + m_band));
}

bool NearMinimum::isDecided() const {
    // The chain's best before the first sum within the limit was above the limit, or there was
    // none. It isn't known otherwise, so the first sum is certain only if it beats the limit
    // itself.
    const bool nothingAbove = m_isProven && m_limit >= m_worst;
    double before = nothingAbove ? std::numeric_limits<double>::infinity() : m_limit;
    for (const auto& [tuple, sum] : m_lows) {
        const auto low = static_cast<double>(sum);
        if (low > m_limit)
            continue;
        if (low * (1.0 + kCertainMargin) <= before)
            return true;
        before = low;
    }
    return m_lows.empty();
}

std::optional<NearMinimum::Winner> NearMinimum::winner() const {
    std::optional<Winner> best;
    for (const auto& [tuple, sum] : m_lows)
        if (static_cast<double>(sum) <= m_limit &&
            definitelyLess(sum, best ? best->sum : kWorstTotalError, kMargin))
            best = {tuple, sum};
    return best;
}

} // namespace hbs_clocking
