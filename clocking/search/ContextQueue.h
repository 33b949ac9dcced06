// The settings of the main and the NOC PLL that a search goes through, the most promising first.
#pragma once

#include <mutex>
#include <optional>
#include <vector>

#include "clocking/search/PriceBound.h"

namespace hbs_clocking {

/// A setting of the main and the NOC PLL, and a bound of all sums behind it.
struct QueuedContext {
    double bound;
    const PllOption* main;
    const PllOption* noc;
};

/// Best first search: by bound, among equals in the order of the tables. Several threads may take
/// from it at once.
class ContextQueue {
public:
    /// Holds the settings whose bound isn't above `ceiling`.
    ContextQueue(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound,
                 double ceiling);

    /// The next one; none once all bounds are above `ceiling`, which also ends the search.
    [[nodiscard]] std::optional<QueuedContext> take(double ceiling);
    [[nodiscard]] bool isEmpty() const { return m_heap.empty(); }

private:
    std::vector<QueuedContext> m_heap;
    std::mutex m_mutex;
};

} // namespace hbs_clocking
