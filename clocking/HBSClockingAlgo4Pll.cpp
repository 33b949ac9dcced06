#include "clocking/HBSClockingAlgo4Pll.h"

#include <iostream>
#include <vector>

#include "clocking/run/NocRun.h"

namespace hbs_clocking {

namespace {

[[nodiscard]] CombinationList buildFourPllCombos(const CombinationBuilder& step) {
    CombinationList combos = step.buildPairsForDomain(step.nocMultipliers(), 0);
    for (const unsigned domain : {2U, 3U}) {
        // Runs, and locks the domain's tolerance, even when there is nothing to continue.
        const std::vector<unsigned> own = step.filterMultipliersForDomain(domain, domain);
        if (combos.isEmpty())
            continue;
        combos = own.empty() ? step.extendCombosForDomain(combos, domain)
                             : step.appendToCombos(combos, own);
    }
    return combos;
}

} // namespace

HBSClockingAlgo4Pll::HBSClockingAlgo4Pll(const std::string& name) : HBSClockingAlgo(name) {
    m_pllCount = kFourPllShape.pllCount;
}

HBSClockingAlgo4Pll::~HBSClockingAlgo4Pll() = default;

bool HBSClockingAlgo4Pll::validateConfig() const {
    const char* fault = nullptr;
    if (m_powerDomains.empty())
        fault = "No power domain added\n";
    else if (m_powerDomains.size() > kDomains)
        fault = "More than four power domain added\n";
    else
        fault = faultOfPllCounts("More than Two PLL added to power domain\n");
    if (fault != nullptr) {
        std::cout << fault;
        return false;
    }
    return validateNocAndReference();
}

std::string HBSClockingAlgo4Pll::getPllNameByIndex(unsigned index) const {
    if (index < m_pllCount)
        return getPllNameAt(index, 0);
    std::cout << "Index out of range\n";
    return {};
}

bool HBSClockingAlgo4Pll::runSolution() {
    return NocRun(*this, kFourPllShape, buildFourPllCombos).solve();
}

} // namespace hbs_clocking
