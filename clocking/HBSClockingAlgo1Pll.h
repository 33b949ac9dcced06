// The solver of clock trees with one power domain and one PLL.
#pragma once

#include <string>

#include "clocking/HBSClockingAlgo.h"
#include "tq_export.h"

namespace hbs_clocking {

/// Every enabled peripheral is fed from the one PLL through its own divider; the PLL's output
/// divider is the smallest that keeps it under its limit.
///
/// Tries each multiplier that covers all peripherals, smallest first; a later one must have a sum
/// of errors smaller by a relative margin of 1e-5. The cost is multipliers (136 at most) ×
/// peripherals, at each of at most eight tolerance steps.
class TQ_EXPORT HBSClockingAlgo1Pll : public HBSClockingAlgo {
public:
    /// An empty tree; `name` is for the caller.
    explicit HBSClockingAlgo1Pll(const std::string& name);
    ~HBSClockingAlgo1Pll() override;

    /// True if a solution was found.
    bool runSolution() override;
    /// One domain with one PLL, and a reference that isn't 0.
    [[nodiscard]] bool validateConfig() const override;
    /// The first PLL's name whatever the index; one other than 0 prints "Index out of range\n"
    /// first.
    [[nodiscard]] std::string getPllNameByIndex(unsigned index) const override;
};

} // namespace hbs_clocking
