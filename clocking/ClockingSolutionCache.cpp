#include "clocking/ClockingSolutionCache.h"

namespace hbs_clocking {

ClockingSolutionCache& ClockingSolutionCache::getGlobal() {
    // Never destroyed: solvers of other static objects may still ask at exit.
    static auto* cache = new ClockingSolutionCache;
    return *cache;
}

const ClockingSolution* ClockingSolutionCache::find(const Key& key) const {
    const auto sameLength = m_entriesByKeyLength.find(static_cast<std::uint32_t>(key.size()));
    if (sameLength == m_entriesByKeyLength.end())
        return nullptr;
    const auto entry = sameLength->second.find(key);
    return entry == sameLength->second.end() ? nullptr : &entry->second;
}

void ClockingSolutionCache::store(const Key& key, ClockingSolution solution) {
    if (isFull())
        return;
    SolutionsByKey& entries = m_entriesByKeyLength[static_cast<std::uint32_t>(key.size())];
    entries.insert_or_assign(key, std::move(solution));
    ++m_count;
}

} // namespace hbs_clocking
