#include "clocking/search/TupleSearch.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>

#include "clocking/search/ContextQueue.h"
#include "clocking/search/ContextSearch.h"
#include "clocking/search/ServiceMask.h"

namespace hbs_clocking {

namespace {

/// The effort of one thread before the bound is improved, and once that no longer helps, before
/// other threads join. Most searches end sooner. About half a millisecond.
constexpr std::uint64_t kEffort = 4000;
constexpr std::uint64_t kAnyEffort = std::numeric_limits<std::uint64_t>::max();
/// Band above the smallest sum that is searched first, and the factor of each wider band.
constexpr double kFirstBand = 7e-5;
constexpr double kWider = 8.0;
/// How often the bound is improved at most.
constexpr unsigned kMostRaises = 3;
/// Where the bound can't be improved, the known sum may be far above the least one. The search then
/// assumes a sum in the lower part of the gap and enlarges that part while it finds nothing.
constexpr double kFirstPart = 1.0 / 16.0;
constexpr double kNextPart = 4.0;

[[nodiscard]] bool isFar(double lowest, double known) {
    return lowest > 0.0 && known > 1.01 * lowest;
}

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
    // The sum of one actual tuple, as rounded by the search, is an upper bound for the least sum.
    // It costs nothing beyond the bound and makes the first band narrow.
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

TupleSearch::Result TupleSearch::search(std::span<const std::uint64_t> chunks,
                                        const RunOnThreads& runOnThreads) const {
    Result result;
    // Without a known sum the step may have no solution at all, which the masks often prove at
    // once.
    if (m_bound.lowest() > m_bound.ceilingOf(m_proven) ||
        (m_known >= m_proven && !canServeAll(m_problem, m_table)))
        return result;
    PriceBound bound = m_bound;
    double known = m_known;
    double band = kFirstBand;
    unsigned raises = kMostRaises;
    double part = 1.0; // of the gap between the bound and the known sum that is searched
    while (true) {
        const double guess = bound.lowest() + part * (known - bound.lowest());
        // The smallest sum may lie just below the guess; its whole band must be searched.
        const double worst = guess * (1.0 + band) * (1.0 + band);
        ChunkLows lows(startsOf(chunks), std::min(worst, m_proven), worst >= m_proven, band);
        const bool isDone = collect(bound, lows, raises != 0 ? kEffort : kAnyEffort, runOnThreads,
                                    result.evaluatedTuples);
        // Not done: the search was too long, and goes on with a better bound. Done without a sum
        // below the guess: the guess was too low. Done and undecided: near ties need a wider band.
        known = std::min(known, lows.lowest());
        if (!isDone) {
            raises = bound.raise(known) ? raises - 1 : 0;
            if (raises == 0 && known < m_proven && isFar(bound.lowest(), known))
                part = kFirstPart;
        } else if (part < 1.0 && known > guess) {
            part *= kNextPart;
        } else if (lows.isDecided()) {
            result.winner = lows.winner();
            return result;
        } else {
            part = 1.0;
            band *= kWider;
        }
    }
}

std::vector<Combination> TupleSearch::startsOf(std::span<const std::uint64_t> chunks) const {
    std::vector<Combination> starts = {{}};
    for (const std::uint64_t first : chunks.subspan(1))
        starts.push_back(byRole(*m_problem.shape, m_problem.combinations.at(first)));
    return starts;
}

bool TupleSearch::collect(const PriceBound& bound, ChunkLows& lows, std::uint64_t effort,
                          const RunOnThreads& runOnThreads, std::uint64_t& evaluated) const {
    const double ceiling = bound.ceilingOf(lows.limit());
    const SourceTable table(m_table, bound, ceiling);
    if (table.lacksOptions())
        return true;
    ContextQueue queue(m_problem, table, bound, ceiling);
    if (queue.isEmpty())
        return true;
    // Building the front of so many pairs would take longer than the effort allows.
    if (OwnPlls::countPairs(m_problem, table, bound, ceiling) > effort)
        return false;
    const OwnPlls own(m_problem, table, bound, ceiling);
    const auto searchWithin = [&](std::uint64_t most) {
        ContextSearch contexts(m_problem, table, bound, own, lows);
        std::optional<QueuedContext> next;
        while (contexts.effort() < most && (next = queue.take(bound.ceilingOf(lows.limit()))))
            contexts.search(*next->main, *next->noc);
        return std::pair(contexts.evaluatedTuples(), contexts.effort() < most);
    };
    // On one thread the search continues with its memo tables; other threads start without them.
    const bool withThreads = runOnThreads && effort == kAnyEffort;
    const auto [own1, isDone] = searchWithin(withThreads ? kEffort : effort);
    evaluated += own1;
    if (isDone || !withThreads)
        return isDone;
    std::atomic<std::uint64_t> byThreads = 0;
    runOnThreads([&] { byThreads += searchWithin(kAnyEffort).first; });
    evaluated += byThreads;
    return true;
}

} // namespace hbs_clocking
