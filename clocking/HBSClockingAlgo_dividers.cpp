// Output dividers of the PLLs, and the choice of a clock and a divider for one peripheral.

#include "clocking/HBSClockingAlgo.h"

#include <cmath>
#include <iostream>

#include "clocking/ClockingArithmetic.h"

namespace hbs_clocking {

namespace {

[[nodiscard]] float takeBest(const BestOffer& best, DividerChoice& out) {
    if (!best.isFound())
        return -1.0F;
    out = best.choice();
    return best.error();
}

} // namespace

unsigned HBSClockingAlgo::computeClkoutDiv(unsigned mul, unsigned domainIndex) const {
    const float freqMhz = static_cast<float>(mul) * m_refClkFreq;
    const HBSPowerDomain* domain = getPowerDomainAt(domainIndex);
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

unsigned HBSClockingAlgo::computeNocClkoutDiv(unsigned mul) const {
    const std::vector<HBSPeripheral*> noc = getNocPeripherals();
    if (noc.size() != 1) {
        std::cout << "More than one noc peripheral found\n";
        return 1;
    }
    return saturatedUint32(
        std::round(static_cast<float>(mul) * m_refClkFreq / noc.front()->getRequestedFreq()));
}

float HBSClockingAlgo::pllFreqMhz(unsigned mul, unsigned domainIndex) const {
    const unsigned divider = computeClkoutDiv(mul, domainIndex);
    return static_cast<float>(mul) * m_refClkFreq / static_cast<float>(divider);
}

float HBSClockingAlgo::findBestDivider(std::span<const float> frequenciesMhz, float targetMhz,
                                       DividerChoice& out) const {
    BestOffer best(m_toleranceFactor);
    for (unsigned i = 0; i < frequenciesMhz.size(); ++i)
        best.consider(i, offerCeilingDivider(frequenciesMhz[i], targetMhz));
    return takeBest(best, out);
}

float HBSClockingAlgo::findBestDividerInSlots(std::span<const ClockSlot> slots, float targetMhz,
                                              DividerChoice& out) const {
    BestOffer best(m_toleranceFactor);
    for (unsigned i = 0; i < slots.size(); ++i)
        if (slots[i])
            best.consider(i, offerNearestDivider(slots[i]->first, targetMhz));
    return takeBest(best, out);
}

} // namespace hbs_clocking
