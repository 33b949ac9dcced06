#include "clocking/search/TupleSearch.h"

#include <algorithm>
#include <atomic>
#include <chrono>

#include "clocking/search/ContextQueue.h"
#include "clocking/search/ContextSearch.h"

namespace hbs_clocking {

namespace {

using Clock = std::chrono::steady_clock;

/// So long one thread searches before others are asked for help: most searches end sooner, and the
/// others take about a tenth of it to start.
constexpr std::chrono::microseconds kAlone{500};
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

TupleSearch::Result TupleSearch::search(std::span<const std::uint64_t> chunks,
                                        const RunOnThreads& runOnThreads) const {
    Result result;
    if (m_bound.lowest() > m_bound.ceilingOf(m_proven))
        return result;
    for (double band = kFirstBand;; band *= kWider) {
        // Should the smallest sum be near the known one, all of its band is needed.
        const double worst = m_known * (1.0 + band) * (1.0 + band);
        ChunkLows lows(startsOf(chunks), std::min(worst, m_proven), worst >= m_proven, band);
        result.evaluatedTuples += collect(lows, runOnThreads);
        if (lows.isDecided()) {
            result.winner = lows.winner();
            return result;
        }
    }
}

std::vector<Combination> TupleSearch::startsOf(std::span<const std::uint64_t> chunks) const {
    std::vector<Combination> starts = {{}};
    for (const std::uint64_t first : chunks.subspan(1))
        starts.push_back(byRole(*m_problem.shape, m_problem.combinations.at(first)));
    return starts;
}

std::uint64_t TupleSearch::collect(ChunkLows& lows, const RunOnThreads& runOnThreads) const {
    ContextQueue queue(m_problem, m_table, m_bound, m_bound.ceilingOf(lows.limit()));
    if (queue.isEmpty())
        return 0;
    const OwnPlls own(m_problem, m_table, m_bound, m_bound.ceilingOf(lows.limit()));
    ContextSearch contexts(m_problem, m_table, m_bound, own, lows);
    const Clock::time_point start = Clock::now();
    while (const auto next = queue.take(m_bound.ceilingOf(lows.limit()))) {
        contexts.search(*next->main, *next->noc);
        if (runOnThreads && Clock::now() - start > kAlone)
            return contexts.evaluatedTuples() + collectOnThreads(lows, queue, own, runOnThreads);
    }
    return contexts.evaluatedTuples();
}

std::uint64_t TupleSearch::collectOnThreads(ChunkLows& lows, ContextQueue& queue,
                                            const OwnPlls& own,
                                            const RunOnThreads& runOnThreads) const {
    std::atomic<std::uint64_t> evaluated = 0;
    runOnThreads([&] {
        ContextSearch contexts(m_problem, m_table, m_bound, own, lows);
        while (const auto next = queue.take(m_bound.ceilingOf(lows.limit())))
            contexts.search(*next->main, *next->noc);
        evaluated += contexts.evaluatedTuples();
    });
    return evaluated;
}

} // namespace hbs_clocking
