#include "clocking/search/ContextQueue.h"

#include <algorithm>

#include "clocking/search/ServiceMask.h"

namespace hbs_clocking {

namespace {

[[nodiscard]] bool comesLater(const QueuedContext& a, const QueuedContext& b) {
    if (a.bound != b.bound)
        return a.bound > b.bound;
    return a.main != b.main ? a.main > b.main : a.noc > b.noc;
}

using Masks = std::vector<ServiceMask>;

/// The peripherals of a domain that each option leaves unserved.
[[nodiscard]] Masks masksOf(const SearchProblem& problem, const SourceTable& table,
                            const PllOptions& options, unsigned domain) {
    Masks masks;
    for (const PllOption& option : options.all)
        masks.push_back(ServiceMask::unserved(
            option.errors[domain], table.domain(domain).positions.size(), problem.tolerance));
    return masks;
}

} // namespace

ContextQueue::ContextQueue(const SearchProblem& problem, const SourceTable& table,
                           const PriceBound& bound, double ceiling) {
    const CombinationTails tails(problem.combinations.stages()[0], {});
    const PllOptions& mains = table.options(Role::Main);
    const PllOptions& nocs = table.options(Role::Noc);
    // The bound of a context: all prices, less the savings of its two PLLs and the most that the
    // others can save. Besides, the NOC PLL must serve domain 1 alone and domain 0 together with
    // the main PLL.
    const double rest = bound.sumOfPrices() - bound.ownSavings();
    double bestNoc = 0.0;
    for (const PllOption& noc : nocs.all)
        bestNoc = std::max(bestNoc, static_cast<double>(noc.saving));
    const Masks mainMasks = masksOf(problem, table, mains, 0);
    const Masks nocMasks = masksOf(problem, table, nocs, 0);
    const Masks alone = masksOf(problem, table, nocs, 1);
    for (std::size_t i = 0; i < mains.all.size(); ++i) {
        const PllOption& main = mains.all[i];
        const double behindMain = rest - static_cast<double>(main.saving);
        if (behindMain - bestNoc > ceiling)
            continue;
        const MultiplierMask allowed = tails.seconds(main.mul);
        for (std::size_t j = 0; j < nocs.all.size(); ++j) {
            const double least = behindMain - static_cast<double>(nocs.all[j].saving);
            if (least <= ceiling && allowed.contains(nocs.all[j].mul) && alone[j].isEmpty() &&
                !mainMasks[i].overlaps(nocMasks[j]))
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
