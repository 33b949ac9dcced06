#include "clocking/run/DomainCover.h"

#include "clocking/ClockingArithmetic.h"
#include "clocking/HBSClockingAlgo.h"

namespace hbs_clocking {

namespace {

/// The bit sets of a domain's peripherals: what a combination has to cover.
[[nodiscard]] std::vector<MultiplierBits> getDomainNeeds(const MultiplierBitMap& multiplierBits,
                                                         unsigned domainIndex) {
    // The order, that of the pointers, doesn't matter: a combination has to cover them all.
    std::vector<MultiplierBits> needs;
    for (const auto& [peripheral, bits] : multiplierBits)
        if (peripheral->getPowerDomainIndex() == static_cast<std::int32_t>(domainIndex))
            needs.push_back(bits);
    return needs;
}

} // namespace

MultiplierBitMap buildMultiplierBits(const CandidateMap& candidates) {
    MultiplierBitMap bits;
    for (const auto& [peripheral, multipliers] : candidates)
        setMultiplierBits(multipliers, bits.try_emplace(bits.end(), peripheral)->second);
    return bits;
}

std::vector<unsigned> filterMultipliersForDomain(const HBSClockingAlgo& tree,
                                                 std::span<const unsigned> multipliers,
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
        lockTolerance(tree, domainIndex);
    return covering;
}

void lockTolerance(const HBSClockingAlgo& tree, unsigned domainIndex) {
    HBSPowerDomain* domain = tree.getPowerDomainAt(domainIndex);
    const float tolerance = tree.getToleranceFector();
    if (domain != nullptr && domain->getErrorLimit() > tolerance)
        domain->setErrorLimit(tolerance);
}

} // namespace hbs_clocking
