// The open nodes of the branch and bound search: the settings of the main and the NOC PLL, the one
// with the lowest bound first.
#pragma once

#include <mutex>
#include <optional>
#include <vector>

#include "clocking/search/PriceBound.h"

namespace hbs_clocking {

/// A setting of the main and the NOC PLL, and a lower bound of all sums with it.
struct QueuedContext {
    double bound;
    const PllOption* main;
    const PllOption* noc;
};

/// Best-first order: by bound, ties in the order of the tables. Low sums are met early that way,
/// and the ceiling falls early. Several threads may take from it at once.
class ContextQueue {
public:
    /// Holds the settings whose bound isn't above `ceiling` and that serve domains 0 and 1.
    ContextQueue(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound,
                 double ceiling);

    /// Removes and returns the one with the lowest bound; none once all bounds are above `ceiling`,
    /// which ends the search.
    [[nodiscard]] std::optional<QueuedContext> take(double ceiling);
    [[nodiscard]] bool isEmpty() const { return m_heap.empty(); }

private:
    std::vector<QueuedContext> m_heap;
    std::mutex m_mutex;
};

} // namespace hbs_clocking
