// The solver of clock trees with four power domains of one PLL each.
#pragma once

#include <string>

#include "clocking/HBSClockingAlgo.h"
#include "tq_export.h"

namespace hbs_clocking {

/// By the order in which they are declared:
///
/// | domain | PLLs that its peripherals take |
/// |---|---|
/// | 0, the main domain | 0 and 1 |
/// | 1, "NOC_DOMAIN" | 1 |
/// | 2 | 2; 0 and 1 through their cross-domain dividers |
/// | 3 | 3; 0, 1 and 2 through their cross-domain dividers |
///
/// Exactly one enabled peripheral must be marked with `setNOCPeripheral(true)` and be in
/// "NOC_DOMAIN": its request sets the multiplier and the divider of PLL 1. Clocks that cross a
/// domain are held under `getMaxCrossDomainFreq`.
///
/// The result is that of trying all combinations of multipliers, output dividers (4, 2, 1 or 8) and
/// cross-domain dividers (4 to 1) in their order, each of which must be better than the best by a
/// relative margin of 1e-5. The search prunes those that can't win: a tree of 24 peripherals takes
/// milliseconds. More than 1000 combinations are split among threads, as many as the parameter
/// "general.maxThreads" says and 8 at most; the number may decide between near ties, nothing else
/// does. Two solvers must not run at once.
///
/// Ten solutions are kept for the life of the process, by reference, limits and requests: the same
/// tree again is solved without a search.
class TQ_EXPORT HBSClockingAlgo4Pll : public HBSClockingAlgo {
public:
    /// An empty tree; `name` is for the caller.
    explicit HBSClockingAlgo4Pll(const std::string& name);
    ~HBSClockingAlgo4Pll() override;

    /// Refuses, with a line on standard output, a tree without an enabled NOC peripheral. With two
    /// of them it uses a NOC divider of 1 and prints a line at every try.
    bool runSolution() override;
    /// One to four domains with one PLL each, and a reference that isn't 0. A search needs all
    /// four domains, "NOC_DOMAIN" being the second; the order is only complained of.
    [[nodiscard]] bool validateConfig() const override;
    /// The PLL of domain 0 to 3; other indices print "Index out of range\n" and give an empty text.
    [[nodiscard]] std::string getPllNameByIndex(unsigned index) const override;
};

} // namespace hbs_clocking
