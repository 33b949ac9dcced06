#include "clocking/HBSClockingAlgo2Pll.h"

#include <array>
#include <iostream>

#include "clocking/ClockingArithmetic.h"
#include "clocking/search/RunTerms.h"

namespace hbs_clocking {

namespace {

/// What a clock offers to each enabled peripheral, in their order.
using Offers = std::vector<DividerOffer>;

[[nodiscard]] Offers collectOffers(const std::vector<HBSPeripheral*>& enabled,
                                   const std::array<float, 2>& freqMhzByDomain) {
    Offers offers;
    offers.reserve(enabled.size());
    for (const HBSPeripheral* p : enabled) {
        const float freqMhz = freqMhzByDomain[p->getPowerDomainIndex() == 0 ? 0 : 1];
        offers.push_back(offerCeilingDivider(freqMhz, p->getRequestedFreq()));
    }
    return offers;
}

[[nodiscard]] std::vector<std::pair<unsigned, unsigned>>
buildPairs(const std::vector<unsigned>& firsts, const std::vector<unsigned>& seconds) {
    std::vector<std::pair<unsigned, unsigned>> pairs;
    pairs.reserve(firsts.size() * seconds.size());
    for (const unsigned a : firsts)
        for (const unsigned b : seconds)
            pairs.emplace_back(a, b);
    return pairs;
}

} // namespace

HBSClockingAlgo2Pll::HBSClockingAlgo2Pll(const std::string& name) : HBSClockingAlgo(name) {
    m_pllCount = 2;
}

HBSClockingAlgo2Pll::~HBSClockingAlgo2Pll() = default;

bool HBSClockingAlgo2Pll::validateConfig() const {
    const char* fault = nullptr;
    if (m_powerDomains.empty())
        fault = "No power domain added\n";
    else if (m_powerDomains.size() != 2)
        fault = "Clocking object expects two plls with this config\n";
    else
        fault = faultOfPllCounts("More than One PLL added to power domain\n");
    if (fault == nullptr && m_refClkFreq == 0.0F)
        fault = "Input freq. is not set\n";
    if (fault != nullptr)
        std::cout << fault;
    return fault == nullptr;
}

std::string HBSClockingAlgo2Pll::getPllNameByIndex(unsigned index) const {
    if (index < 2)
        return getPllNameAt(index, 0);
    std::cout << "Index out of range\n";
    return {};
}

bool HBSClockingAlgo2Pll::runSolution() {
    const std::vector<HBSPeripheral*> enabled = startRun();
    if (enabled.empty())
        return false;
    return climbLadder([&] {
        MultiplierBitMap multiplierBits;
        std::vector<unsigned> multipliers;
        if (!collectCandidates(enabled, multiplierBits, multipliers))
            return false;
        // Both run before either is tested: each list locks its own domain's tolerance.
        const auto firsts =
            filterMultipliersForDomain(allowedMultipliers(0, multipliers), multiplierBits, 0);
        const auto seconds =
            filterMultipliersForDomain(allowedMultipliers(1, multipliers), multiplierBits, 1);
        PeripheralResult peripheralResult;
        PllResult pllResult;
        if (!solveMultiplierPairs(enabled, buildPairs(firsts, seconds), peripheralResult,
                                  pllResult))
            return false;
        applySolution(peripheralResult, pllResult);
        return true;
    });
}

bool HBSClockingAlgo2Pll::solveMultiplierPairs(
    const std::vector<HBSPeripheral*>& enabled,
    const std::vector<std::pair<unsigned, unsigned>>& pairs, PeripheralResult& peripheralResult,
    PllResult& pllResult) {
    std::array<Offers, kMaxMultiplier + 1> offers0;
    std::array<Offers, kMaxMultiplier + 1> offers1;
    for (const auto& [m0, m1] : pairs) {
        if (offers0[m0].empty()) {
            const float f0 = pllFreqMhz(m0, 0);
            offers0[m0] = collectOffers(enabled, {f0, m_allowCrossDomain ? f0 : 0.0F});
        }
        if (offers1[m1].empty()) {
            const float f1 = pllFreqMhz(m1, 1);
            offers1[m1] = collectOffers(enabled, {f1, f1});
        }
    }

    float best = kWorstTotalError;
    const RunTerms terms = runTerms(enabled);
    SettingList list(m_terms.settings);
    std::vector<DividerChoice> choices(enabled.size());
    for (const auto& [m0, m1] : pairs) {
        float total = 0.0F;
        bool open = true; // errors only add up: a sum that can't win any more is given up
        for (std::size_t i = 0; i < enabled.size() && open; ++i) {
            BestOffer offer(m_toleranceFactor);
            const RunTerms::Peripheral& own = terms.peripherals[i];
            if (own.deniedPlls % 2 == 0)
                offer.consider(0, offers0[m0][i]);
            if (enabled[i]->getPowerDomainIndex() == 1 && own.deniedPlls / 2 == 0)
                offer.consider(1, offers1[m1][i]);
            choices[i] = offer.choice();
            total += offer.error() * own.weight;
            open = offer.isFound() &&
                   (definitelyLess(total, best, kMargin) || total * terms.scale <= list.limit());
        }
        if (open)
            list.add({total * terms.scale,
                      {{m0, computeClkoutDiv(m0, 0), 0}, {m1, computeClkoutDiv(m1, 1), 0}},
                      choices});
        if (!open || !definitelyLess(total, best, kMargin))
            continue;
        best = total;
        m_totalRelativeError = total * terms.scale;
        for (std::size_t i = 0; i < enabled.size(); ++i)
            peripheralResult[enabled[i]] = choices[i];
        pllResult = {{getPllNameByIndex(0), {m0, computeClkoutDiv(m0, 0)}}};
        pllResult[getPllNameByIndex(1)] = {m1, computeClkoutDiv(m1, 1)};
    }
    if (peripheralResult.empty())
        return false;
    keepSettings(list, settingOf(enabled, peripheralResult, pllResult));
    return true;
}

} // namespace hbs_clocking
