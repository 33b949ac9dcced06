#include "clocking/search/ServiceMask.h"

#include <algorithm>

namespace hbs_clocking {

namespace {

/// Beyond this many different questions the answers are forgotten.
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
    const ServiceMask unserved = ServiceMask::unserved(errors.data(), m_count, m_tolerance);
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

} // namespace hbs_clocking
