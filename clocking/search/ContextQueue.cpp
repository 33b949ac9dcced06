#include "clocking/search/ContextQueue.h"

#include <algorithm>

namespace hbs_clocking {

namespace {

[[nodiscard]] bool comesLater(const QueuedContext& a, const QueuedContext& b) {
    if (a.bound != b.bound)
        return a.bound > b.bound;
    return a.main != b.main ? a.main > b.main : a.noc > b.noc;
}

} // namespace

ContextQueue::ContextQueue(const SearchProblem& problem, const SourceTable& table,
                           const PriceBound& bound, double ceiling) {
    const CombinationTails tails(problem.combinations.stages()[0], {});
    const PllOptions& mains = table.options(Role::Main);
    const PllOptions& nocs = table.options(Role::Noc);
    const double rest = bound.sumOfPrices() - bound.ownSavings();
    double bestNoc = 0.0;
    for (std::size_t j = 0; j < nocs.all.size(); ++j)
        bestNoc = std::max(bestNoc, bound.saving(Role::Noc, j));
    for (std::size_t i = 0; i < mains.all.size(); ++i) {
        const PllOption& main = mains.all[i];
        const double behindMain = rest - bound.saving(Role::Main, i);
        if (behindMain - bestNoc > ceiling)
            continue;
        const MultiplierMask allowed = tails.seconds(main.mul);
        for (std::size_t j = 0; j < nocs.all.size(); ++j) {
            const double least = behindMain - bound.saving(Role::Noc, j);
            if (least <= ceiling && allowed.contains(nocs.all[j].mul))
                m_heap.push_back({least, &main, &nocs.all[j]});
        }
    }
    std::make_heap(m_heap.begin(), m_heap.end(), comesLater);
}

std::optional<QueuedContext> ContextQueue::take(double ceiling) {
    const std::lock_guard lock(m_mutex);
    if (m_heap.empty() || m_heap.front().bound > ceiling)
        return std::nullopt;
    std::pop_heap(m_heap.begin(), m_heap.end(), comesLater);
    const QueuedContext next = m_heap.back();
    m_heap.pop_back();
    return next;
}

} // namespace hbs_clocking
