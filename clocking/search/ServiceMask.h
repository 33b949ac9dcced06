// Which peripherals of a domain the settings of its PLLs serve, as bit masks: a cheap test that
// proves infeasibility before any error is added up.
//
// A peripheral is served by a clock whose error lies under the tolerance and from which it isn't
// barred. It can be served by a set of clocks only if one of them serves it, so a domain can be
// served only if the masks of its clocks together have every bit. The condition isn't sufficient:
// a peripheral may prefer a clock that it is barred from.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "clocking/search/SourceTable.h"

namespace hbs_clocking {

/// One bit per peripheral of a domain.
class ServiceMask {
public:
    ServiceMask() = default;
    /// The peripherals that aren't served with these errors.
    [[nodiscard]] static ServiceMask unserved(const float* errors, std::size_t count,
                                              float tolerance) {
        ServiceMask mask = all(count);
        for (std::size_t i = 0; i < count; ++i)
            if (isServed(errors[i], tolerance))
                mask.word(i / 64) &= ~(std::uint64_t{1} << i % 64);
        return mask;
    }
    [[nodiscard]] static ServiceMask all(std::size_t count) {
        ServiceMask mask;
        mask.m_more.resize(count <= 64 ? 0 : (count - 1) / 64);
        for (std::size_t i = 0; i < count; ++i)
            mask.word(i / 64) |= std::uint64_t{1} << i % 64;
        return mask;
    }

    [[nodiscard]] bool isEmpty() const {
        std::uint64_t all = m_first;
        for (const std::uint64_t word : m_more)
            all |= word;
        return all == 0;
    }
    /// The intersection.
    [[nodiscard]] ServiceMask operator&(const ServiceMask& other) const {
        ServiceMask both = *this;
        both.m_first &= other.m_first;
        for (std::size_t i = 0; i < m_more.size(); ++i)
            both.m_more[i] &= other.m_more[i];
        return both;
    }
    [[nodiscard]] bool overlaps(const ServiceMask& other) const {
        std::uint64_t common = m_first & other.m_first;
        for (std::size_t i = 0; i < m_more.size(); ++i)
            common |= m_more[i] & other.m_more[i];
        return common != 0;
    }
    auto operator<=>(const ServiceMask&) const = default;

private:
    [[nodiscard]] std::uint64_t& word(std::size_t index) {
        return index == 0 ? m_first : m_more[index - 1];
    }

    std::uint64_t m_first = 0; ///< the only word for up to 64 peripherals, without an allocation
    std::vector<std::uint64_t> m_more;
};

/// Tells whether two PLLs can serve the peripherals of a domain that other clocks leave unserved.
/// Memoised by mask: thousands of settings leave the same few peripherals unserved.
class Completion {
public:
    Completion(const SourceTable& table, unsigned domain, Role first, Role second, float tolerance);

    /// False only if no setting of the two serves all that these errors leave unserved.
    [[nodiscard]] bool isPossible(const ErrorRow& errors);
    /// The same by the peripherals that are left unserved.
    [[nodiscard]] bool isPossible(const ServiceMask& unserved);

private:
    [[nodiscard]] bool findSettings(const ServiceMask& unserved) const;

    std::size_t m_count; ///< peripherals
    float m_tolerance;
    /// The distinct masks of peripherals that the settings leave unserved.
    std::vector<ServiceMask> m_firsts;
    std::vector<ServiceMask> m_seconds;
    std::map<ServiceMask, bool> m_known;
};

/// False proves that no setting of all PLLs serves all peripherals; the step can be skipped.
[[nodiscard]] bool canServeAll(const SearchProblem& problem, const SourceTable& table);

} // namespace hbs_clocking
