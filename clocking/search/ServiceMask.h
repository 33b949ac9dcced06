// Which peripherals of a domain the settings of its PLLs serve, as bit masks: decides that nothing
// serves a domain before any error is looked at.
//
// A peripheral is served by a clock whose error lies under the tolerance and from which it isn't
// barred. Errors in the search only become fewer with more clocks, so a domain is served as a whole
// only if the masks of its clocks together have every bit. The reverse doesn't hold: a peripheral
// may prefer a clock that it is barred from.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "clocking/search/SourceTable.h"

namespace hbs_clocking {

/// One bit per peripheral of a domain.
class ServiceMask {
public:
    /// The peripherals that aren't served with these errors.
    [[nodiscard]] static ServiceMask unserved(const float* errors, std::size_t count,
                                              float tolerance) {
        ServiceMask mask;
        mask.m_words.resize((count + 63) / 64);
        for (std::size_t i = 0; i < count; ++i)
            if (!isServed(errors[i], tolerance))
                mask.m_words[i / 64] |= std::uint64_t{1} << i % 64;
        return mask;
    }

    [[nodiscard]] bool isEmpty() const {
        std::uint64_t all = 0;
        for (const std::uint64_t word : m_words)
            all |= word;
        return all == 0;
    }
    /// Those that are in both.
    [[nodiscard]] ServiceMask operator&(const ServiceMask& other) const {
        ServiceMask both = *this;
        for (std::size_t i = 0; i < m_words.size(); ++i)
            both.m_words[i] &= other.m_words[i];
        return both;
    }
    [[nodiscard]] bool overlaps(const ServiceMask& other) const {
        std::uint64_t common = 0;
        for (std::size_t i = 0; i < m_words.size(); ++i)
            common |= m_words[i] & other.m_words[i];
        return common != 0;
    }
    auto operator<=>(const ServiceMask&) const = default;

private:
    std::vector<std::uint64_t> m_words;
};

/// Tells whether two PLLs can serve the peripherals of a domain that other clocks leave out.
/// Remembers its answers: thousands of settings leave out the same few peripherals.
class Completion {
public:
    Completion(const SourceTable& table, unsigned domain, Role first, Role second, float tolerance);

    /// False only if no setting of the two serves all that these errors leave unserved.
    [[nodiscard]] bool isPossible(const ErrorRow& errors);

private:
    [[nodiscard]] bool findSettings(const ServiceMask& unserved) const;

    std::size_t m_count; ///< peripherals
    float m_tolerance;
    /// What the settings leave unserved, without repetitions.
    std::vector<ServiceMask> m_firsts;
    std::vector<ServiceMask> m_seconds;
    std::map<ServiceMask, bool> m_known;
};

} // namespace hbs_clocking
