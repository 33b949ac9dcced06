#include "clocking/run/PllDividers.h"

#include <cmath>
#include <iostream>

#include "clocking/ClockingArithmetic.h"
#include "clocking/HBSClockingAlgo.h"

namespace hbs_clocking {

namespace {

[[nodiscard]] float takeBest(const BestOffer& best, DividerChoice& out) {
    if (!best.isFound())
        return -1.0F;
    out = best.choice();
    return best.error();
}

} // namespace

unsigned computeClkoutDiv(const HBSClockingAlgo& tree, unsigned mul, unsigned domainIndex) {
    const float freqMhz = static_cast<float>(mul) * tree.getRefClkFreq();
    const HBSPowerDomain* domain = tree.getPowerDomainAt(domainIndex);
    if (domain == nullptr)
        return 1;
    const float limitMhz = domain->getMaxPllFreq();
    if (!definitelyLess(limitMhz * kHzPerMhz, freqMhz * kHzPerMhz, kMargin))
        return 1;
    const std::uint32_t ceiling = saturatedUint32(std::ceil(freqMhz / limitMhz));
    if (ceiling > 4)
        return 8;
    if (ceiling > 2)
        return 4;
    return ceiling;
}

unsigned computeNocClkoutDiv(const HBSClockingAlgo& tree, unsigned mul) {
    const std::vector<HBSPeripheral*> noc = tree.getNocPeripherals();
    if (noc.size() != 1) {
        std::cout << "More than one noc peripheral found\n";
        return 1;
    }
    return saturatedUint32(std::round(static_cast<float>(mul) * tree.getRefClkFreq() /
                                      noc.front()->getRequestedFreq()));
}

float pllFreqMhz(const HBSClockingAlgo& tree, unsigned mul, unsigned domainIndex) {
    const unsigned divider = computeClkoutDiv(tree, mul, domainIndex);
    return static_cast<float>(mul) * tree.getRefClkFreq() / static_cast<float>(divider);
}

float findBestDivider(std::span<const float> frequenciesMhz, float targetMhz, float tolerance,
                      DividerChoice& out) {
    BestOffer best(tolerance);
    for (unsigned i = 0; i < frequenciesMhz.size(); ++i)
        best.consider(i, offerCeilingDivider(frequenciesMhz[i], targetMhz));
    return takeBest(best, out);
}

float findBestDividerInSlots(std::span<const ClockSlot> slots, float targetMhz, float tolerance,
                             DividerChoice& out) {
    BestOffer best(tolerance);
    for (unsigned i = 0; i < slots.size(); ++i)
        if (slots[i])
            best.consider(i, offerNearestDivider(slots[i]->first, targetMhz));
    return takeBest(best, out);
}

} // namespace hbs_clocking
