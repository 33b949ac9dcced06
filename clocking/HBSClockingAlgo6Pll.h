// The solver of clock trees with six PLLs in four power domains.
#pragma once

#include <string>

#include "clocking/HBSClockingAlgo.h"
#include "tq_export.h"

namespace hbs_clocking {

/// By the order in which they are declared:
///
/// | domain | its PLLs | PLLs that its peripherals take |
/// |---|---|---|
/// | 0, the main domain | 0 | 0 and 1 |
/// | 1, "NOC_DOMAIN" | 1 | 1 |
/// | 2 | 2, 3 | 2 and 3; 0 and 1 through their cross-domain dividers |
/// | 3 | 4, 5 | 4 and 5; 0 and 2 through their cross-domain dividers |
///
/// Peripherals named "PSM_REF_CTRL" and "ASU_REF_CTRL" are never fed from PLLs 1 and 3: settings in
/// which these would serve them best are left out. For all else see `HBSClockingAlgo4Pll`.
class TQ_EXPORT HBSClockingAlgo6Pll : public HBSClockingAlgo {
public:
    /// An empty tree; `name` is for the caller.
    explicit HBSClockingAlgo6Pll(const std::string& name);
    ~HBSClockingAlgo6Pll() override;

    /// See `HBSClockingAlgo4Pll`.
    bool runSolution() override;
    /// One to four domains, of which 0 and 1 have one PLL and 2 and 3 have two, and a reference
    /// that isn't 0. A search needs all four; the place of "NOC_DOMAIN" is only complained of.
    [[nodiscard]] bool validateConfig() const override;
    /// PLLs 0 to 5; other indices print "Index out of range\n" and give an empty text.
    [[nodiscard]] std::string getPllNameByIndex(unsigned index) const override;
};

} // namespace hbs_clocking
