#include "clocking/HBSClockingAlgo4Pll.h"

#include <iostream>

#include "clocking/search/ComboSearch.h"

namespace hbs_clocking {

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
    return runLadder(kFourPllShape,
                     [this](const StepCandidates& candidates) { return buildCombos(candidates); });
}

CombinationList HBSClockingAlgo4Pll::buildCombos(const StepCandidates& candidates) {
    CombinationList combos =
        buildPairsForDomain(candidates, allowedMultipliers(1, candidates.nocMultipliers), 0);
    for (const unsigned domain : {2U, 3U}) {
        // Runs, and locks the domain's tolerance, even when there is nothing to continue.
        const std::vector<unsigned> own = filterMultipliersForDomain(
            allowedMultipliers(domain, candidates.multipliers), candidates.bits, domain);
        if (combos.isEmpty())
            continue;
        combos = own.empty() ? extendCombosForDomain(candidates, combos, domain)
                             : appendToCombos(combos, own);
    }
    return combos;
}

} // namespace hbs_clocking
