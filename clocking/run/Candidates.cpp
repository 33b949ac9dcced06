// The candidate stage: which feedback multipliers can serve which peripheral.

#include "clocking/HBSClockingAlgo.h"

#include <algorithm>
#include <iostream>

#include "clocking/ClockingArithmetic.h"
#include "clocking/run/DomainCover.h"
#include "clocking/run/PllDividers.h"

namespace hbs_clocking {

namespace {

constexpr const char* kNocDomainName = "NOC_DOMAIN";

[[nodiscard]] bool isVcoInRange(float vcoHz) {
    return !definitelyGreater(vcoHz, kMaxVcoHz, kMargin) &&
           !definitelyLess(vcoHz, kMinVcoHz, kMargin);
}

/// What of a peripheral's test is the same for every multiplier.
struct Request {
    HBSPeripheral* peripheral;
    unsigned domainIndex;
    float hz;
    float allowedError;
    float tolerance;
    std::vector<unsigned>* candidates; ///< the peripheral's list, once it has one
};

[[nodiscard]] bool isServedBy(const Request& request, float pllHz) {
    std::uint32_t divider = kMaxPeripheralDiv;
    if (!approximatelyEqual(request.hz, 0.0F, kMargin))
        divider = std::min(nearestDivider(pllHz, request.hz, false), kMaxPeripheralDiv);
    const float outHz = pllHz / static_cast<float>(divider);
    const float error = relativeError(request.hz, outHz, divider);
    // An error above the peripheral's own limit counts as 100, which no tolerance lets pass.
    return definitelyLess(error, request.allowedError, kMargin) &&
           definitelyLess(error, request.tolerance, kMargin);
}

/// How many of the divided VCO clocks meet a NOC request.
[[nodiscard]] unsigned countNocMatches(float vcoHz, float requestHz, float tolerance) {
    unsigned matches = 0;
    for (const float divider : {1.0F, 2.0F, 4.0F, 8.0F}) {
        const float outHz = vcoHz / divider;
        if (definitelyLess(requestHz, outHz, kNocCeilingMargin))
            continue;
        float error = 0.0F;
        if (!approximatelyEqual(requestHz, 0.0F, kMargin))
            error = std::fabs((requestHz - outHz) / requestHz);
        if (definitelyLess(error, tolerance, kMargin))
            ++matches;
    }
    return matches;
}

} // namespace

void HBSClockingAlgo::collectPeripheralMultipliers(const std::vector<HBSPeripheral*>& peripherals,
                                                   CandidateMap& candidatesByPeripheral,
                                                   MultiplierSet& allMultipliers) {
    const std::int32_t nocIndex = getPowerDomainIndex(kNocDomainName);
    std::vector<Request> requests;
    requests.reserve(peripherals.size());
    for (HBSPeripheral* p : peripherals) {
        const auto domainIndex = static_cast<unsigned>(p->getPowerDomainIndex());
        const HBSPowerDomain* domain = getPowerDomainAt(domainIndex);
        if (p->getPowerDomainIndex() == nocIndex || domain == nullptr)
            continue;
        requests.push_back({p, domainIndex, p->getRequestedFreq() * kHzPerMhz,
                            p->getMaxAllowedPeripheralError() / 100.0F,
                            std::min(m_toleranceFactor, domain->getErrorLimit()), nullptr});
    }

    // A multiplier gives the same clock to all peripherals of a domain.
    std::vector<float> pllHzByDomain(m_powerDomains.size());
    for (unsigned mul = kMaxMultiplier; mul >= kMinMultiplier; --mul) {
        const float vcoHz = static_cast<float>(mul) * m_refClkFreq * kHzPerMhz;
        if (!isVcoInRange(vcoHz))
            continue;
        for (unsigned i = 0; i < pllHzByDomain.size(); ++i)
            pllHzByDomain[i] = vcoHz / static_cast<float>(computeClkoutDiv(*this, mul, i));
        for (Request& request : requests) {
            if (!isServedBy(request, pllHzByDomain[request.domainIndex]))
                continue;
            if (request.candidates == nullptr)
                request.candidates = &candidatesByPeripheral[request.peripheral];
            request.candidates->push_back(mul);
            allMultipliers.insert(allMultipliers.begin(), mul);
        }
    }
}

void HBSClockingAlgo::collectNocMultipliers(const std::vector<HBSPeripheral*>& peripherals,
                                            CandidateMap& candidatesByPeripheral,
                                            MultiplierSet& allMultipliers) {
    const HBSPowerDomain* domain = getPowerDomain(kNocDomainName);
    if (domain == nullptr) {
        std::cout << "NOC DOMAIN NOT FOUND\n";
        return;
    }
    const float tolerance = std::min(m_toleranceFactor, domain->getErrorLimit());
    for (unsigned mul = kMaxMultiplier; mul >= kMinMultiplier; --mul) {
        const float vcoHz = static_cast<float>(mul) * m_refClkFreq * kHzPerMhz;
        if (!isVcoInRange(vcoHz))
            continue;
        for (HBSPeripheral* p : peripherals) {
            if (p->getPowerDomainIndex() != domain->getIndex()) {
                std::cout << "Not a noc peripheral. continue...\n";
                continue;
            }
            // One multiplier is listed once for every divider that fits.
            const float requestHz = p->getRequestedFreq() * kHzPerMhz;
            const unsigned matches = countNocMatches(vcoHz, requestHz, tolerance);
            if (matches == 0)
                continue;
            std::vector<unsigned>& candidates = candidatesByPeripheral[p];
            candidates.insert(candidates.end(), matches, mul);
            allMultipliers.insert(mul);
        }
    }
    if (!allMultipliers.empty())
        lockTolerance(*this, static_cast<unsigned>(domain->getIndex()));
}

} // namespace hbs_clocking
