// The terms of a search by place instead of by name, for one run.
#pragma once

#include <cstdint>
#include <vector>

#include "clocking/HBSClockingAlgo.h"

namespace hbs_clocking {

struct RunTerms {
    /// Of the enabled peripherals, in their order.
    struct Peripheral {
        std::uint8_t deniedPlls = 0; ///< a bit per PLL
        float weight = 1.0F;         ///< at most 1: weighted errors stay under the tolerance
    };
    std::vector<Peripheral> peripherals;
    float scale = 1.0F; ///< the largest weight, which the others were divided by

    /// Looks the names up in the solver's tree.
    RunTerms(const SearchTerms& terms, const HBSClockingAlgo& solver, unsigned pllCount,
             const std::vector<HBSPeripheral*>& enabled);
};

/// Keeps the best settings that differ in a multiplier or a source.
class SettingList {
public:
    explicit SettingList(std::size_t most) : m_most(most) {}

    /// Of settings with the same multipliers and sources, the one of the smaller sum stays; the
    /// first of equals.
    void add(ClockSetting setting);
    /// A setting of a larger sum than this wouldn't stay.
    [[nodiscard]] float limit() const;
    /// Multiplies every sum.
    void scale(float factor);
    /// The best first. The answer of the search, which may be above another by the margin of its
    /// comparisons, comes before all.
    [[nodiscard]] std::vector<ClockSetting> take(const ClockSetting& answer);

private:
    std::size_t m_most;
    std::vector<ClockSetting> m_settings; ///< by sum
};

} // namespace hbs_clocking
