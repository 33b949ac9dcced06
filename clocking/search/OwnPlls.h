// The own PLLs of domains 2 and 3 as the search of a step sees them.
#pragma once

#include <vector>

#include "clocking/search/ErrorFront.h"

namespace hbs_clocking {

/// Made once per search, then only read: several threads may search with it.
struct OwnPlls {
    /// Only what may be part of a sum that isn't above `ceiling` is in it.
    OwnPlls(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound,
            double ceiling);

    /// How many pairs of domain 3 it would look at.
    [[nodiscard]] static std::size_t countPairs(const SearchProblem& problem,
                                                const SourceTable& table, const PriceBound& bound,
                                                double ceiling);

    /// Options of the first own PLL of domain 2 that are the same in that domain.
    struct Group {
        std::size_t begin;
        std::size_t end;
    };

    std::vector<Group> groups;
    ErrorFront seconds; ///< of the second own PLL of domain 2
    ErrorFront pairs;   ///< of the own PLLs of domain 3

private:
    void addGroups(const SourceTable& table);
    /// What all others save at most leaves a pair of domain 3 this much to save.
    [[nodiscard]] static double leastSaving(const PriceBound& bound, double ceiling);
    template <class Action>
    static void forEachPair(const SearchProblem& problem, const SourceTable& table, double least,
                            const Action& action);
};

} // namespace hbs_clocking
