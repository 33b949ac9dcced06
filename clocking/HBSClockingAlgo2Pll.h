// The solver of clock trees with two power domains of one PLL each.
#pragma once

#include <string>

#include "clocking/HBSClockingAlgo.h"
#include "tq_export.h"

namespace hbs_clocking {

/// Peripherals of domain 0 take PLL 0. Peripherals of domain 1 take PLL 1 and, after
/// `setAllowCrossDomain(true)`, PLL 0 where it is better by the margin; such a peripheral reads an
/// actual frequency of 0, as no PLL of this solver has a cross-domain divider: its frequency is
/// `getVcoFreq` of PLL 0 divided by its own divider. `setMaxCrossDomainFreq` has no effect.
///
/// A request of 0 in domain 1 is given to PLL 0 even without crossing: a clock that is off fits it.
///
/// Tries each pair of multipliers that cover their own domains, PLL 0 in the outer loop, smallest
/// first; a later pair must have a sum of errors smaller by a relative margin of 1e-5. What each
/// clock offers each peripheral is worked out once per multiplier, so that a pair costs a handful
/// of additions.
class TQ_EXPORT HBSClockingAlgo2Pll : public HBSClockingAlgo {
public:
    /// An empty tree; `name` is for the caller.
    explicit HBSClockingAlgo2Pll(const std::string& name);
    ~HBSClockingAlgo2Pll() override;

    /// True if a solution was found.
    bool runSolution() override;
    /// Two domains with one PLL each, and a reference that isn't 0.
    [[nodiscard]] bool validateConfig() const override;
    /// The first PLL of domain 0 or 1; other indices print "Index out of range\n" and give an empty
    /// text.
    [[nodiscard]] std::string getPllNameByIndex(unsigned index) const override;
};

} // namespace hbs_clocking
