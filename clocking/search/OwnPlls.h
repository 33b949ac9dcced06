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

    /// Options of the first own PLL of domain 2 that differ in the cross-domain divider only.
    struct Group {
        std::size_t begin;
        std::size_t end;
        double saving;       ///< in domain 2
        double acrossSaving; ///< in domain 3, the largest
    };

    std::vector<Group> groups;
    std::vector<double> acrossSavings; ///< by option of the first own PLL of domain 2
    ErrorFront seconds;                ///< of the second own PLL of domain 2
    ErrorFront pairs;                  ///< of the own PLLs of domain 3
    double bestSecond = 0.0;           ///< what a setting of `seconds` saves at most
    double bestPair = 0.0;             ///< and what one of `pairs` does

private:
    void addGroups(const SourceTable& table, const PriceBound& bound);
    void addPairs(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound,
                  double least);
};

} // namespace hbs_clocking
