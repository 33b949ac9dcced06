// Finds the intervals of addresses that hold an address.
#pragma once

#include <algorithm>
#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

#include "blockmodel/HABMAddrValue.h"

namespace tq {

/// An interval tree without nodes of its own: the intervals sorted by start are a balanced search
/// tree whose root is the one in the middle, and each has the furthest end of its subtree. Built
/// in the time of sorting; a question takes a logarithm and the intervals found, however they
/// overlap. Intervals with an invalid end are left out.
template <class Value>
class IntervalIndex {
public:
    struct Interval {
        HABMAddrValue first;
        HABMAddrValue last; ///< included
        Value value;
    };

    IntervalIndex() = default;
    /// Takes the intervals in any order.
    explicit IntervalIndex(std::vector<Interval> intervals) : m_intervals(std::move(intervals)) {
        std::erase_if(m_intervals, [](const Interval& interval) {
            return !interval.first.isValid() || interval.last < interval.first;
        });
        const auto isBefore = [](const Interval& a, const Interval& b) {
            return std::tie(a.first, a.last) < std::tie(b.first, b.last);
        };
        if (!std::is_sorted(m_intervals.begin(), m_intervals.end(), isBefore))
            std::stable_sort(m_intervals.begin(), m_intervals.end(), isBefore);
        m_furthest.resize(m_intervals.size());
        fill(0, m_intervals.size());
    }

    /// Sorted by start, then by end.
    [[nodiscard]] const std::vector<Interval>& all() const { return m_intervals; }

    /// Calls `visit` with each interval that shares an address with `first` to `last`, in order.
    template <class Visit>
    void forEachIn(const HABMAddrValue& first, const HABMAddrValue& last,
                   const Visit& visit) const {
        visitBetween(0, m_intervals.size(), first, last, visit);
    }
    /// The same for one address.
    template <class Visit>
    void forEachAt(const HABMAddrValue& address, const Visit& visit) const {
        forEachIn(address, address, visit);
    }

private:
    HABMAddrValue fill(std::size_t begin, std::size_t end) {
        if (begin == end)
            return {};
        const std::size_t middle = begin + (end - begin) / 2;
        return m_furthest[middle] =
                   std::max({m_intervals[middle].last, fill(begin, middle), fill(middle + 1, end)});
    }

    template <class Visit>
    void visitBetween(std::size_t begin, std::size_t end, const HABMAddrValue& first,
                      const HABMAddrValue& last, const Visit& visit) const {
        if (begin == end)
            return;
        const std::size_t middle = begin + (end - begin) / 2;
        if (m_furthest[middle] < first)
            return;
        visitBetween(begin, middle, first, last, visit);
        const Interval& interval = m_intervals[middle];
        if (last < interval.first)
            return;
        if (!(interval.last < first))
            visit(interval);
        visitBetween(middle + 1, end, first, last, visit);
    }

    std::vector<Interval> m_intervals;
    std::vector<HABMAddrValue> m_furthest; ///< end in the subtree whose root is at this position
};

} // namespace tq
