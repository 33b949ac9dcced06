#include "clocking/search/ServiceMask.h"

#include <algorithm>
#include <array>
#include <set>

namespace hbs_clocking {

namespace {

/// The memo is cleared when it holds more answers than this.
constexpr std::size_t kMostKnown = 4096;

[[nodiscard]] std::vector<ServiceMask> leftUnserved(const PllOptions& options, unsigned domain,
                                                    std::size_t count, float tolerance) {
    std::vector<ServiceMask> masks;
    masks.reserve(options.all.size());
    for (const PllOption& option : options.all)
        masks.push_back(ServiceMask::unserved(option.errors[domain], count, tolerance));
    std::sort(masks.begin(), masks.end());
    masks.erase(std::unique(masks.begin(), masks.end()), masks.end());
    return masks;
}

} // namespace

Completion::Completion(const SourceTable& table, unsigned domain, Role first, Role second,
                       float tolerance)
    : m_count(table.domain(domain).positions.size()), m_tolerance(tolerance),
      m_firsts(leftUnserved(table.options(first), domain, m_count, tolerance)),
      m_seconds(leftUnserved(table.options(second), domain, m_count, tolerance)) {}

bool Completion::isPossible(const ErrorRow& errors) {
    return isPossible(ServiceMask::unserved(errors.data(), m_count, m_tolerance));
}

bool Completion::isPossible(const ServiceMask& unserved) {
    if (unserved.isEmpty())
        return true;
    if (m_known.size() > kMostKnown)
        m_known.clear();
    const auto [entry, isNew] = m_known.try_emplace(unserved, false);
    if (isNew)
        entry->second = findSettings(unserved);
    return entry->second;
}

bool Completion::findSettings(const ServiceMask& unserved) const {
    return std::any_of(m_firsts.begin(), m_firsts.end(), [&](const ServiceMask& first) {
        const ServiceMask left = unserved & first;
        return left.isEmpty() ||
               std::any_of(m_seconds.begin(), m_seconds.end(),
                           [&](const ServiceMask& second) { return !left.overlaps(second); });
    });
}

namespace {

/// The peripherals that an option leaves unserved in each domain.
using OptionMasks = std::array<ServiceMask, kDomains>;

/// The distinct masks of a PLL's options.
[[nodiscard]] std::vector<OptionMasks> masksOf(const SearchProblem& problem,
                                               const SourceTable& table, Role role) {
    std::vector<OptionMasks> masks;
    for (const PllOption& option : table.options(role).all) {
        OptionMasks& own = masks.emplace_back();
        for (unsigned domain = 0; domain < kDomains; ++domain) {
            const std::size_t count = table.domain(domain).positions.size();
            const float* const errors = option.errors[domain];
            own[domain] = errors == nullptr
                              ? ServiceMask::all(count)
                              : ServiceMask::unserved(errors, count, problem.tolerance);
        }
    }
    std::sort(masks.begin(), masks.end());
    masks.erase(std::unique(masks.begin(), masks.end()), masks.end());
    return masks;
}

/// The distinct masks of domains 2 and 3 that settings of the main and the NOC PLL leave unserved,
/// of the settings that serve domains 0 and 1.
[[nodiscard]] std::set<std::array<ServiceMask, 2>> leftByContexts(const SearchProblem& problem,
                                                                  const SourceTable& table) {
    // Distinct masks are few: many multipliers and dividers serve the same peripherals.
    const std::vector<OptionMasks> mains = masksOf(problem, table, Role::Main);
    std::set<std::array<ServiceMask, 2>> left;
    for (const OptionMasks& noc : masksOf(problem, table, Role::Noc))
        for (const OptionMasks& main : mains)
            if (!noc[0].overlaps(main[0]) && !noc[1].overlaps(main[1]))
                left.insert({noc[2] & main[2], noc[3] & main[3]});
    return left;
}

} // namespace

bool canServeAll(const SearchProblem& problem, const SourceTable& table) {
    Completion seconds(table, 2, Role::Own2Second, Role::Own2Second, problem.tolerance);
    Completion pairs(table, 3, Role::Own3First, Role::Own3Second, problem.tolerance);
    const std::vector<OptionMasks> firsts = masksOf(problem, table, Role::Own2First);
    const auto contexts = leftByContexts(problem, table);
    return std::any_of(contexts.begin(), contexts.end(), [&](const auto& left) {
        return std::any_of(firsts.begin(), firsts.end(), [&](const OptionMasks& first) {
            return seconds.isPossible(left[0] & first[2]) && pairs.isPossible(left[1] & first[3]);
        });
    });
}

} // namespace hbs_clocking
