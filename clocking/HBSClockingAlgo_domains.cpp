// What a combination of multipliers has to cover in a power domain, and the tolerance lock.

#include "clocking/HBSClockingAlgo.h"

#include "clocking/ClockingArithmetic.h"

namespace hbs_clocking {

bool HBSClockingAlgo::collectCandidates(const std::vector<HBSPeripheral*>& enabled,
                                        MultiplierBitMap& multiplierBits,
                                        std::vector<unsigned>& multipliers) {
    CandidateMap candidatesByPeripheral;
    MultiplierSet allMultipliers;
    collectPeripheralMultipliers(enabled, candidatesByPeripheral, allMultipliers);
    multiplierBits = buildMultiplierBits(candidatesByPeripheral);
    multipliers.assign(allMultipliers.begin(), allMultipliers.end());
    return candidatesByPeripheral.size() >= enabled.size();
}

MultiplierBitMap HBSClockingAlgo::buildMultiplierBits(const CandidateMap& candidates) {
    MultiplierBitMap bits;
    for (const auto& [peripheral, multipliers] : candidates)
        setMultiplierBits(multipliers, bits.try_emplace(bits.end(), peripheral)->second);
    return bits;
}

std::vector<MultiplierBits> HBSClockingAlgo::getDomainNeeds(const MultiplierBitMap& multiplierBits,
                                                            unsigned domainIndex) {
    // The order, that of the pointers, doesn't matter: a combination has to cover them all.
    std::vector<MultiplierBits> needs;
    for (const auto& [peripheral, bits] : multiplierBits)
        if (peripheral->getPowerDomainIndex() == static_cast<std::int32_t>(domainIndex))
            needs.push_back(bits);
    return needs;
}

std::vector<unsigned>
HBSClockingAlgo::filterMultipliersForDomain(std::span<const unsigned> multipliers,
                                            const MultiplierBitMap& multiplierBits,
                                            unsigned domainIndex) {
    const std::vector<MultiplierBits> needs = getDomainNeeds(multiplierBits, domainIndex);
    std::vector<unsigned> covering;
    for (const unsigned mul : multipliers) {
        MultiplierBits bits{};
        setMultiplierBits({&mul, 1}, bits);
        if (coversAll(bits, needs))
            covering.push_back(mul);
    }
    if (!covering.empty())
        lockTolerance(domainIndex);
    return covering;
}

void HBSClockingAlgo::lockTolerance(unsigned domainIndex) {
    HBSPowerDomain* domain = getPowerDomainAt(domainIndex);
    if (domain != nullptr && domain->getErrorLimit() > m_toleranceFactor)
        domain->setErrorLimit(m_toleranceFactor);
}

} // namespace hbs_clocking
