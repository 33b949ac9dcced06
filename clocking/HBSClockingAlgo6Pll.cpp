#include "clocking/HBSClockingAlgo6Pll.h"

#include <array>
#include <iostream>
#include <utility>
#include <vector>

#include "clocking/run/NocRun.h"

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

[[nodiscard]] CombinationList buildPairs(const CombinationBuilder& step) {
    // Unlike in a tree of four PLLs, the main PLL covers its domain alone where it can.
    const std::vector<unsigned> own = step.filterMultipliersForDomain(0, 0);
    const std::vector<unsigned> noc = step.nocMultipliers();
    if (noc.empty())
        return {};
    return own.empty() ? step.buildPairsForDomain(noc, 0) : step.buildFreePairs(own, noc);
}

[[nodiscard]] CombinationList buildSixPllCombos(const CombinationBuilder& step) {
    // Pairs of both domains are built, and lock their tolerance, even when they aren't needed.
    const CombinationList pairs = buildPairs(step);
    const CombinationList own2 = step.buildOrderedPairsForDomain(2);
    CombinationList quads;
    if (!pairs.isEmpty())
        quads = own2.isEmpty() ? step.extendCombosWithPairsForDomain(pairs, 2)
                               : step.appendPairsToCombos(pairs, own2);
    const CombinationList own3 = step.buildUnorderedPairsForDomain(3);
    if (quads.isEmpty())
        return {};
    return own3.isEmpty() ? step.extendCombosWithCrossCheck(quads, 3)
                          : step.appendPairsToCombos(quads, own3);
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
    return NocRun(*this, kSixPllShape, buildSixPllCombos).solve();
}

} // namespace hbs_clocking
