#include "clocking/search/TupleSearch.h"

#include <algorithm>
#include <limits>

namespace hbs_clocking {

namespace {

/// How far above the smallest sum the search looks at first; each further look goes wider.
constexpr double kFirstBand = 7e-5;
constexpr double kWider = 8.0;

/// A combination by PLL order as one by role.
[[nodiscard]] Combination byRole(const TreeShape& shape, const Combination& combination) {
    Combination muls{};
    for (unsigned role = 0; role < kRoles; ++role)
        if (shape.has(static_cast<Role>(role)))
            muls[role] = combination[shape.pllOf[role]];
    return muls;
}

[[nodiscard]] Combination byPll(const TreeShape& shape, const Combination& muls) {
    Combination combination{};
    for (unsigned role = 0; role < kRoles; ++role)
        if (shape.has(static_cast<Role>(role)))
            combination[shape.pllOf[role]] = muls[role];
    return combination;
}

/// The best saving of each multiplier of a PLL.
[[nodiscard]] std::array<double, kMaxMultiplier + 1>
bestSavings(const PllOptions& options, Role role, const PriceBound& bound) {
    std::array<double, kMaxMultiplier + 1> best;
    best.fill(-std::numeric_limits<double>::infinity());
    for (std::size_t i = 0; i < options.all.size(); ++i)
        best[options.all[i].mul] = std::max(best[options.all[i].mul], bound.saving(role, i));
    return best;
}

} // namespace

TupleSearch::TupleSearch(const SearchProblem& problem)
    : m_problem(problem), m_table(problem), m_bound(problem, m_table) {
    // Each error lies under the tolerance.
    const double all =
        static_cast<double>(problem.tolerance) * static_cast<double>(problem.requests.size());
    m_proven = std::min(m_bound.ceilingOf(all), static_cast<double>(kWorstTotalError));
    m_known = std::min(m_proven, static_cast<double>(sumOfFavourites()));
}

float TupleSearch::sumOfFavourites() const {
    const PriceBound::Favourites& favourites = m_bound.favourites();
    if (favourites[0] == nullptr)
        return kUnserved;
    Combination muls{};
    for (unsigned role = 0; role < kRoles; ++role)
        muls[role] = favourites[role]->mul;
    if (!m_problem.combinations.contains(byPll(*m_problem.shape, muls)))
        return kUnserved;
    std::vector<float> errors(m_problem.requests.size());
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        const DomainRequests& requests = m_table.domain(domain);
        ErrorRow row(requests.stride, 0.0F);
        std::fill_n(row.begin(), requests.positions.size(), m_problem.tolerance);
        for (const PllOption* favourite : favourites)
            if (favourite->errors[domain] != nullptr)
                takeBetter(row, favourite->errors[domain]);
        if (!areAllServed(row, m_problem.tolerance))
            return kUnserved;
        for (std::size_t i = 0; i < requests.positions.size(); ++i)
            errors[requests.positions[i]] = row[i];
    }
    float sum = 0.0F;
    for (const float error : errors)
        sum += error;
    if (!definitelyLess(sum, kWorstTotalError, kMargin))
        return kUnserved;
    return sum;
}

TupleSearch::Result TupleSearch::search(std::uint64_t first, std::uint64_t last,
                                        double known) const {
    Result result;
    if (first >= last || m_bound.lowest() > m_bound.ceilingOf(m_proven))
        return result;
    const CombinationRange range = rangeOf(first, last);
    for (double band = kFirstBand;; band *= kWider) {
        // The known sum may lie in another range. Should the smallest sum here be near it, all of
        // its band is needed; should it lie above, this range can't win.
        const double worst = known * (1.0 + band) * (1.0 + band);
        NearMinimum sums(std::min(worst, m_proven), worst >= m_proven, band);
        ContextSearch contexts(m_problem, m_table, m_bound, range);
        for (const Pair& pair : pairsIn(range)) {
            if (pair.bound > m_bound.ceilingOf(sums.limit()))
                break;
            Tuple place;
            place.muls = {static_cast<std::uint8_t>(pair.main),
                          static_cast<std::uint8_t>(pair.noc)};
            if (pair.bound > m_bound.ceilingOf(sums.limitFrom(place)))
                continue;
            searchPair(pair, contexts, sums);
        }
        result.evaluatedTuples += contexts.evaluatedTuples();
        if (sums.isDecided()) {
            result.winner = sums.winner();
            return result;
        }
    }
}

CombinationRange TupleSearch::rangeOf(std::uint64_t first, std::uint64_t last) const {
    const TreeShape& shape = *m_problem.shape;
    const CombinationList& list = m_problem.combinations;
    CombinationRange range;
    if (first != 0)
        range.first = byRole(shape, list.at(first));
    if (last < list.size())
        range.end = byRole(shape, list.at(last));
    else
        range.end.fill(std::numeric_limits<std::uint8_t>::max());
    return range;
}

std::vector<TupleSearch::Pair> TupleSearch::pairsIn(const CombinationRange& range) const {
    const CombinationStage& stage = m_problem.combinations.stages()[0];
    const CombinationTails tails(stage, {});
    const auto mainSavings = bestSavings(m_table.options(Role::Main), Role::Main, m_bound);
    const auto nocSavings = bestSavings(m_table.options(Role::Noc), Role::Noc, m_bound);
    const double rest = m_bound.sumOfPrices() - m_bound.ownSavings();
    std::vector<Pair> pairs;
    for (const std::uint8_t main : stage.firsts) {
        const MultiplierMask allowed = tails.seconds(main);
        for (const std::uint8_t noc : stage.seconds) {
            const Combination from = {main, noc};
            const Combination highest = {main, noc, 255, 255, 255, 255};
            if (!allowed.contains(noc) || highest < range.first || from >= range.end)
                continue;
            pairs.push_back({rest - mainSavings[main] - nocSavings[noc], main, noc});
        }
    }
    std::stable_sort(pairs.begin(), pairs.end(),
                     [](const Pair& a, const Pair& b) { return a.bound < b.bound; });
    return pairs;
}

void TupleSearch::searchPair(const Pair& pair, ContextSearch& contexts, NearMinimum& sums) const {
    const PllOptions& mains = m_table.options(Role::Main);
    const PllOptions& nocs = m_table.options(Role::Noc);
    const double farRest = m_bound.sumOfFarPrices() - m_bound.ownSavings();
    Context context;
    for (const PllOption& main : mains.of(pair.main)) {
        for (const PllOption& noc : nocs.of(pair.noc)) {
            const double farSavings = m_bound.farSaving(Role::Main, mains.indexOf(main)) +
                                      m_bound.farSaving(Role::Noc, nocs.indexOf(noc));
            context.main = &main;
            context.noc = &noc;
            if (!fillContext(context) ||
                context.nearSum + farRest - farSavings > m_bound.ceilingOf(sums.limit()))
                continue;
            if (contexts.isWorthSearching(context))
                contexts.search(context, sums);
        }
    }
}

bool TupleSearch::fillContext(Context& context) const {
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        const DomainRequests& requests = m_table.domain(domain);
        ErrorRow& errors = context.errors[domain];
        errors.assign(requests.stride, 0.0F);
        std::fill_n(errors.begin(), requests.positions.size(), m_problem.tolerance);
        for (const PllOption* option : {context.main, context.noc})
            if (option->errors[domain] != nullptr)
                takeBetter(errors, option->errors[domain]);
        if (domain < 2 && !areAllServed(errors, m_problem.tolerance))
            return false;
    }
    context.nearSum = sumForBound(context.errors[0]) + sumForBound(context.errors[1]);
    return true;
}

} // namespace hbs_clocking
