#include "clocking/HBSClockingAlgo2Pll.h"

#include <array>
#include <iostream>
#include <span>
#include <utility>
#include <vector>

#include "clocking/ClockingArithmetic.h"
#include "clocking/run/BestSetting.h"
#include "clocking/run/DomainCover.h"
#include "clocking/run/PllDividers.h"

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

/// What the clocks of all multipliers of the pairs offer, each worked out once.
struct OfferTable {
    std::array<Offers, kMaxMultiplier + 1> first;
    std::array<Offers, kMaxMultiplier + 1> second;

    OfferTable(const SolverRun& run, std::span<const std::pair<unsigned, unsigned>> pairs) {
        const HBSClockingAlgo& tree = run.tree();
        for (const auto& [m0, m1] : pairs) {
            if (first[m0].empty()) {
                const float f0 = pllFreqMhz(tree, m0, 0);
                first[m0] =
                    collectOffers(run.enabled(), {f0, tree.getAllowCrossDomain() ? f0 : 0.0F});
            }
            if (second[m1].empty()) {
                const float f1 = pllFreqMhz(tree, m1, 1);
                second[m1] = collectOffers(run.enabled(), {f1, f1});
            }
        }
    }
};

/// The best of the pairs of multipliers, each of which covers its own domain. False for none.
[[nodiscard]] bool solveMultiplierPairs(SolverRun& run,
                                        std::span<const std::pair<unsigned, unsigned>> pairs,
                                        StepResult& result) {
    const OfferTable offers(run, pairs);
    const HBSClockingAlgo& tree = run.tree();
    const std::vector<HBSPeripheral*>& enabled = run.enabled();
    const RunTerms terms = run.terms();
    BestSetting best(run, terms);
    std::vector<DividerChoice> choices(enabled.size());
    for (const auto& [m0, m1] : pairs) {
        float total = 0.0F;
        bool open = true; // errors aren't negative: a partial sum that can't win ends the pair
        for (std::size_t i = 0; i < enabled.size() && open; ++i) {
            BestOffer offer(run.tolerance());
            const RunTerms::Peripheral& own = terms.peripherals[i];
            if (own.deniedPlls % 2 == 0)
                offer.consider(0, offers.first[m0][i]);
            if (enabled[i]->getPowerDomainIndex() == 1 && own.deniedPlls / 2 == 0)
                offer.consider(1, offers.second[m1][i]);
            choices[i] = offer.choice();
            total += offer.error() * own.weight;
            open = offer.isFound() && best.takes(total);
        }
        if (open)
            best.offer(
                total,
                {{m0, computeClkoutDiv(tree, m0, 0), 0}, {m1, computeClkoutDiv(tree, m1, 1), 0}},
                choices);
    }
    return best.finish(result);
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
    SolverRun run(*this, m_pllCount);
    if (!run.start())
        return false;
    return run.climbLadder([&] {
        MultiplierBitMap multiplierBits;
        std::vector<unsigned> multipliers;
        if (run.collectCandidates(multiplierBits, multipliers) != run.enabled().size())
            return false;
        // Both run before either is tested: each list locks its own domain's tolerance.
        const auto firsts = filterMultipliersForDomain(
            *this, run.allowedMultipliers(0, multipliers), multiplierBits, 0);
        const auto seconds = filterMultipliersForDomain(
            *this, run.allowedMultipliers(1, multipliers), multiplierBits, 1);
        StepResult result;
        if (!solveMultiplierPairs(run, buildPairs(firsts, seconds), result))
            return false;
        run.applySolution(result);
        return true;
    });
}

} // namespace hbs_clocking
