#include "clocking/search/OwnPlls.h"

#include <algorithm>

namespace hbs_clocking {

OwnPlls::OwnPlls(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound,
                 double ceiling)
    : seconds(2, bound.prices(2)), pairs(3, bound.prices(3)) {
    addGroups(table, bound);
    const PllOptions& options = table.options(Role::Own2Second);
    for (std::size_t i = 0; i < options.all.size(); ++i) {
        bestSecond = std::max(bestSecond, bound.saving(Role::Own2Second, i));
        seconds.add({&options.all[i], nullptr}, 0.0);
    }
    seconds.arrange();
    bestPair = bound.ownSavings(3);
    // What all others save at most leaves a pair this much to save.
    addPairs(problem, table, bound, bound.lowest() + bestPair - ceiling);
}

void OwnPlls::addGroups(const SourceTable& table, const PriceBound& bound) {
    const std::vector<PllOption>& options = table.options(Role::Own2First).all;
    for (std::size_t i = 0; i < options.size(); ++i) {
        const PllOption& own = options[i];
        const auto across = static_cast<double>(savingOf(bound.prices(3), own.errors[3]));
        acrossSavings.push_back(across);
        if (i != 0 && own.mul == options[i - 1].mul && own.div == options[i - 1].div) {
            groups.back().end = i + 1;
            groups.back().acrossSaving = std::max(groups.back().acrossSaving, across);
            continue;
        }
        const auto saving = static_cast<double>(savingOf(bound.prices(2), own.errors[2]));
        groups.push_back({i, i + 1, saving, across});
    }
}

void OwnPlls::addPairs(const SearchProblem& problem, const SourceTable& table,
                       const PriceBound& bound, double least) {
    const std::vector<PllOption>& firsts = table.options(Role::Own3First).all;
    const std::vector<PllOption>& others = table.options(Role::Own3Second).all;
    double bestOther = 0.0;
    for (std::size_t i = 0; i < others.size(); ++i)
        bestOther = std::max(bestOther, bound.saving(Role::Own3Second, i));
    const CombinationTails tails(problem.combinations.stages()[2]);
    for (std::size_t i = 0; i < firsts.size(); ++i) {
        const double missing = least - bound.saving(Role::Own3First, i);
        if (missing > bestOther)
            continue;
        const MultiplierMask allowed = tails.seconds(firsts[i].mul);
        for (std::size_t j = 0; j < others.size(); ++j)
            if (bound.saving(Role::Own3Second, j) >= missing && allowed.contains(others[j].mul))
                pairs.add({&firsts[i], &others[j]}, least);
    }
    pairs.arrange();
}

} // namespace hbs_clocking
