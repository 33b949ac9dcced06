#include "clocking/HBSClockingAlgo6Pll.h"

#include <array>
#include <iostream>
#include <utility>

#include "clocking/search/ComboSearch.h"

namespace hbs_clocking {

namespace {

/// What is wrong with the number of PLLs of a domain, or null.
[[nodiscard]] const char* faultOfDomain(std::size_t domainIndex, std::size_t plls) {
    const bool hasTwo = domainIndex >= 2;
    if (plls == 0)
        return "No PLL added to power domain\n";
    if (plls > 2)
        return "More than Two PLL added to power domain\n";
    if (!hasTwo && plls == 2)
        return "More than one PLL added to power domain\n";
    if (hasTwo && plls == 1)
        return "Only one PLL added to power domain, expected two PLLs.\n";
    return nullptr;
}

} // namespace

HBSClockingAlgo6Pll::HBSClockingAlgo6Pll(const std::string& name) : HBSClockingAlgo(name) {
    m_pllCount = kSixPllShape.pllCount;
}

HBSClockingAlgo6Pll::~HBSClockingAlgo6Pll() = default;

bool HBSClockingAlgo6Pll::validateConfig() const {
    const char* fault = nullptr;
    if (m_powerDomains.empty())
        fault = "No power domain added\n";
    else if (m_powerDomains.size() > kDomains)
        fault = "More than four power domain added\n";
    for (std::size_t i = 0; i < m_powerDomains.size() && fault == nullptr; ++i)
        fault = faultOfDomain(i, m_powerDomains[i]->getPllCount());
    if (fault != nullptr) {
        std::cout << fault;
        return false;
    }
    return validateNocAndReference();
}

std::string HBSClockingAlgo6Pll::getPllNameByIndex(unsigned index) const {
    constexpr std::array<std::pair<unsigned, unsigned>, 6> places = {
        {{0, 0}, {1, 0}, {2, 0}, {2, 1}, {3, 0}, {3, 1}}};
    if (index < places.size())
        return getPllNameAt(places[index].first, places[index].second);
    std::cout << "Index out of range\n";
    return {};
}

bool HBSClockingAlgo6Pll::runSolution() {
    return runLadder(kSixPllShape,
                     [this](const StepCandidates& candidates) { return buildCombos(candidates); });
}

CombinationList HBSClockingAlgo6Pll::buildPairs(const StepCandidates& candidates) {
    // Unlike in a tree of four PLLs, the main PLL covers its domain alone where it can.
    const std::vector<unsigned> own = filterMultipliersForDomain(
        allowedMultipliers(0, candidates.multipliers), candidates.bits, 0);
    const std::vector<unsigned> noc = allowedMultipliers(1, candidates.nocMultipliers);
    if (noc.empty())
        return {};
    return own.empty() ? buildPairsForDomain(candidates, noc, 0) : buildFreePairs(own, noc);
}

CombinationList HBSClockingAlgo6Pll::buildCombos(const StepCandidates& candidates) {
    // Pairs of both domains are built, and lock their tolerance, even when they aren't needed.
    const CombinationList pairs = buildPairs(candidates);
    const CombinationList own2 = buildOrderedPairsForDomain(candidates, 2);
    CombinationList quads;
    if (!pairs.isEmpty())
        quads = own2.isEmpty() ? extendCombosWithPairsForDomain(candidates, pairs, 2)
                               : appendPairsToCombos(pairs, own2);
    const CombinationList own3 = buildUnorderedPairsForDomain(candidates, 3);
    if (quads.isEmpty())
        return {};
    return own3.isEmpty() ? extendCombosWithCrossCheck(candidates, quads, 3)
                          : appendPairsToCombos(quads, own3);
}

} // namespace hbs_clocking
