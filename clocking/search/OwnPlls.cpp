#include "clocking/search/OwnPlls.h"

#include <algorithm>

namespace hbs_clocking {

template <class Action>
void OwnPlls::forEachPair(const SearchProblem& problem, const SourceTable& table, double least,
                          const Action& action) {
    const std::vector<PllOption>& others = table.options(Role::Own3Second).all;
    float bestOther = 0.0F;
    for (const PllOption& other : others)
        bestOther = std::max(bestOther, other.saving);
    const CombinationTails tails(problem.combinations.stages()[2]);
    for (const PllOption& first : table.options(Role::Own3First).all) {
        // A pair's saving is at most the sum of both, so the second must save at least the rest.
        const double missing = least - static_cast<double>(first.saving);
        if (missing > static_cast<double>(bestOther))
            continue;
        const MultiplierMask allowed = tails.seconds(first.mul);
        for (const PllOption& other : others)
            if (static_cast<double>(other.saving) >= missing && allowed.contains(other.mul))
                action(OwnSetting{&first, &other});
    }
}

OwnPlls::OwnPlls(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound,
                 double ceiling)
    : seconds(2, bound.prices(2)), pairs(3, bound.prices(3)) {
    addGroups(table);
    for (const PllOption& second : table.options(Role::Own2Second).all)
        seconds.add({&second, nullptr}, 0.0);
    seconds.arrange();
    const double least = leastSaving(bound, ceiling);
    forEachPair(problem, table, least,
                [&](const OwnSetting& setting) { pairs.add(setting, least); });
    pairs.arrange();
}

std::size_t OwnPlls::countPairs(const SearchProblem& problem, const SourceTable& table,
                                const PriceBound& bound, double ceiling) {
    std::size_t count = 0;
    forEachPair(problem, table, leastSaving(bound, ceiling), [&](const OwnSetting&) { ++count; });
    return count;
}

double OwnPlls::leastSaving(const PriceBound& bound, double ceiling) {
    return bound.lowest() + bound.ownSavings(3) - ceiling;
}

void OwnPlls::addGroups(const SourceTable& table) {
    const std::vector<PllOption>& options = table.options(Role::Own2First).all;
    for (std::size_t i = 0; i < options.size(); ++i) {
        if (i != 0 && options[i].errors[2] == options[i - 1].errors[2] &&
            options[i].mul == options[i - 1].mul)
            groups.back().end = i + 1;
        else
            groups.push_back({i, i + 1});
    }
}

} // namespace hbs_clocking
