// The settings of the own PLLs of domains 2 and 3 that a step of the search considers.
#pragma once

#include <vector>

#include "clocking/search/ErrorFront.h"

namespace hbs_clocking {

/// Made once per search, then only read: several threads may search with it.
struct OwnPlls {
    /// Holds only settings that can be part of a sum within `ceiling`.
    OwnPlls(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound,
            double ceiling);

    /// How many pairs of domain 3 the constructor would look at: a measure of its cost.
    [[nodiscard]] static std::size_t countPairs(const SearchProblem& problem,
                                                const SourceTable& table, const PriceBound& bound,
                                                double ceiling);

    /// A range of options of the first own PLL of domain 2 with the same multiplier and the same
    /// errors in that domain. They differ across domains only.
    struct Group {
        std::size_t begin;
        std::size_t end;
    };

    std::vector<Group> groups;
    ErrorFront seconds; ///< of the second own PLL of domain 2
    ErrorFront pairs;   ///< of the own PLLs of domain 3

private:
    void addGroups(const SourceTable& table);
    /// The least saving of a pair of domain 3 in a sum within the ceiling: with less, the largest
    /// savings of all other PLLs leave a bound above the ceiling.
    [[nodiscard]] static double leastSaving(const PriceBound& bound, double ceiling);
    template <class Action>
    static void forEachPair(const SearchProblem& problem, const SourceTable& table, double least,
                            const Action& action);
};

} // namespace hbs_clocking
