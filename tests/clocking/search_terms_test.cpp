// Searches with pins, weights and lists of settings, against trying every setting.

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

#include "clocking/HBSClockingAlgo1Pll.h"
#include "clocking/HBSClockingAlgo2Pll.h"
#include "clocking/HBSClockingAlgo6Pll.h"
#include "clocking/dice.h"
#include "clocking/trees46.h"

namespace {

using namespace hbs_clocking;
using trees46::Kind;

constexpr std::uint64_t kMaxTuples = 20000;

/// Pins and weights for a tree and for the solver built of it.
SearchTerms addTerms(reference46::Tree& tree, const HBSClockingAlgo& solver, unsigned seed) {
    trees::Dice dice(seed);
    SearchTerms terms;
    const unsigned plls = tree.sixPlls() ? 6 : 4;
    const auto peripherals = solver.getAllPeripherals();
    for (unsigned pll = 0; pll < plls; ++pll)
        if (dice.oneIn(4)) {
            const float least = std::ceil(2160.0F / tree.refMhz);
            tree.pins[pll] = std::min(160U, static_cast<unsigned>(least) +
                                                dice.below(static_cast<unsigned>(least)));
            terms.multipliers["PLL" + std::to_string(pll)] = tree.pins[pll];
        }
    for (std::size_t i = 0; i < peripherals.size(); ++i) {
        if (dice.oneIn(6)) {
            const unsigned pll = dice.below(plls);
            tree.peripherals[i].source = static_cast<int>(pll);
            terms.sources[peripherals[i]->getName()] = "PLL" + std::to_string(pll);
        }
        if (dice.oneIn(3)) // a power of two is exact; the largest is 1
            tree.peripherals[i].weight = 0.25F;
        else if (dice.oneIn(3))
            tree.peripherals[i].weight = 0.1F;
        terms.weights[peripherals[i]->getName()] = tree.peripherals[i].weight;
    }
    tree.peripherals[0].weight = 1.0F;
    terms.weights[peripherals[0]->getName()] = 1.0F;
    return terms;
}

TEST(SearchTerms, AgreeWithTheLiteralSearch) {
    unsigned solved = 0;
    unsigned unsolved = 0;
    for (unsigned seed = 0; seed < 900 && solved < 120; ++seed) {
        reference46::Tree tree = trees46::generate(seed, seed % 2 != 0, 3 + seed % 6,
                                                   seed % 3 == 0 ? Kind::Ordinary : Kind::Odd);
        for (reference46::Peripheral& peripheral : tree.peripherals)
            if (peripheral.name.ends_with("_REF_CTRL"))
                peripheral.name.clear(); // weights go by names, which must differ
        const auto solver = trees46::build(tree);
        solver->setTerms(addTerms(tree, *solver, seed));
        const auto expected = reference46::Search(tree).solve(1, kMaxTuples);
        if (!expected)
            continue;
        ASSERT_EQ(expected->found, solver->runSolution()) << seed;
        ASSERT_EQ(*expected, trees46::read(*solver)) << seed;
        ++(expected->found ? solved : unsolved);
    }
    EXPECT_GT(solved, 60U) << unsolved;
}

/// What tells settings apart.
using Key = std::pair<std::vector<unsigned>, std::vector<unsigned>>;

Key keyOf(const ClockSetting& setting) {
    Key key;
    for (const ClockSetting::Pll& pll : setting.plls)
        key.first.push_back(pll.multiplier);
    for (const DividerChoice& choice : setting.peripherals)
        key.second.push_back(choice.first);
    return key;
}

void expectBest(const std::map<Key, float>& all, const std::vector<ClockSetting>& listed,
                std::size_t asked, unsigned seed) {
    ASSERT_EQ(std::min(asked, all.size()), listed.size()) << seed;
    std::vector<float> sums;
    for (const auto& [key, sum] : all)
        sums.push_back(sum);
    std::sort(sums.begin(), sums.end());
    std::map<Key, int> seen;
    for (std::size_t i = 0; i < listed.size(); ++i) {
        const auto known = all.find(keyOf(listed[i]));
        ASSERT_NE(all.end(), known) << seed;
        EXPECT_EQ(1, ++seen[known->first]) << seed;
        // The answer is within the margin of the least sum, and so is what the search finds.
        EXPECT_NEAR(known->second, listed[i].sum, known->second * 2e-5F) << seed;
        EXPECT_NEAR(sums[i], listed[i].sum, sums[i] * 2e-5F) << seed << " place " << i;
    }
}

TEST(SearchTerms, ListTheBestSettingsOfLargeTrees) {
    unsigned checked = 0;
    for (unsigned seed = 0; seed < 400 && checked < 40; ++seed) {
        const reference46::Tree tree =
            trees46::generate(seed, seed % 2 != 0, 4 + seed % 5, Kind::Odd);
        reference46::Search search(tree);
        const auto expected = search.solve(1, kMaxTuples);
        if (!expected || !expected->found)
            continue;
        std::map<Key, float> all;
        search.forEachSetting(search.combinationsOfStep(expected->tolerance),
                              [&](const reference46::Solution& s) {
                                  Key key;
                                  for (const reference46::PllChoice& pll : s.plls)
                                      key.first.push_back(pll.mul);
                                  for (const reference46::PeripheralChoice& choice : s.peripherals)
                                      key.second.push_back(choice.slot);
                                  const auto [entry, isNew] = all.try_emplace(key, s.total);
                                  entry->second = std::min(entry->second, s.total);
                              });
        const auto solver = trees46::build(tree);
        SearchTerms terms;
        terms.settings = 12;
        solver->setTerms(terms);
        ASSERT_TRUE(solver->runSolution());
        ASSERT_EQ(*expected, trees46::read(*solver)) << seed; // listing changes nothing
        expectBest(all, solver->getSettings(), terms.settings, seed);
        EXPECT_EQ(solver->getTotalRelativeError(), solver->getSettings()[0].sum) << seed;
        ++checked;
    }
    EXPECT_GE(checked, 30U);
}

/// Requests of about 0 are met by every combination: a list must not go through them all.
TEST(SearchTerms, ListAFewOfVeryManyEqualSettings) {
    HBSClockingAlgo6Pll solver("equal");
    solver.createPllConfig("P0", "D0");
    solver.createPllConfig("P1", "NOC_DOMAIN");
    for (const char* pll : {"P2", "P3"})
        solver.createPllConfig(pll, "D2");
    for (const char* pll : {"P4", "P5"})
        solver.createPllConfig(pll, "D3");
    solver.addPeripheral("NOC", "NOC_DOMAIN", 800.0F, true)->setNOCPeripheral(true);
    solver.addPeripheral("A", "D0", 0.0001F, true);
    solver.addPeripheral("B", "D2", 0.0F, true);
    solver.addPeripheral("C", "D3", 0.00005F, true);
    SearchTerms terms;
    terms.settings = 3;
    solver.setTerms(terms);
    ASSERT_TRUE(solver.runSolution());
    ASSERT_EQ(3U, solver.getSettings().size());
    for (const ClockSetting& setting : solver.getSettings())
        EXPECT_EQ(solver.getTotalRelativeError(), setting.sum);
}

/// The settings of a tree of two PLLs that serve all at the tolerance, from the arithmetic. The
/// search tries a part of them: domains keep the tolerance at which their own PLL served them.
std::map<Key, float> settingsOfTwo(const HBSClockingAlgo& solver, float tolerance, bool mayCross,
                                   unsigned pin) {
    std::map<Key, float> all;
    const auto clock = [&](unsigned mul, unsigned domain) {
        const float limit = solver.getPowerDomainAt(domain)->getMaxPllFreq();
        float mhz = static_cast<float>(mul) * solver.getRefClkFreq();
        while (mhz > limit * 1.00001F)
            mhz /= 2;
        return mhz;
    };
    for (unsigned m0 = 90; m0 <= 160; ++m0)
        for (unsigned m1 = 90; m1 <= 160; ++m1) {
            if (pin != 0 && m1 != pin)
                continue;
            Key key{{m0, m1}, {}};
            float sum = 0.0F;
            bool served = true;
            for (const HBSPeripheral* p : solver.getAllPeripherals()) {
                const unsigned domain = p->getPowerDomainIndex() == 0 ? 0 : 1;
                float best = tolerance;
                unsigned source = 9;
                for (unsigned pll = 0; pll < 2; ++pll) {
                    if (pll != domain && !(pll == 0 && mayCross))
                        continue;
                    const float mhz = clock(pll == 0 ? m0 : m1, pll);
                    const float request = p->getRequestedFreq();
                    const float error =
                        std::fabs((request - mhz / std::ceil(mhz / request)) / request);
                    if (best - error > best * 1e-5F) {
                        best = error;
                        source = pll;
                    }
                }
                served = served && source != 9;
                key.second.push_back(source);
                sum += best;
            }
            if (served)
                all[key] = sum;
        }
    return all;
}

TEST(SearchTerms, ListTheBestSettingsOfSmallTrees) {
    for (unsigned seed = 0; seed < 40; ++seed) {
        trees::Dice dice(seed);
        HBSClockingAlgo2Pll solver("tree");
        solver.setRefClkFreq(24.0F); // multipliers 90 to 180
        solver.setAllowCrossDomain(seed % 2 == 0);
        solver.createPllConfig("A", "D0");
        solver.createPllConfig("B", "D1");
        for (unsigned i = 0; i < 5; ++i)
            solver.addPeripheral("P" + std::to_string(i), i % 2 == 0 ? "D0" : "D1",
                                 dice.between(20.0F, 300.0F), true);
        SearchTerms terms;
        terms.settings = 10;
        const unsigned pin = seed % 4 == 0 ? 100 + seed : 0;
        if (pin != 0)
            terms.multipliers["B"] = pin;
        solver.setTerms(terms);
        if (!solver.runSolution())
            continue;
        const auto listed = solver.getSettings();
        ASSERT_FALSE(listed.empty());
        if (pin != 0) {
            EXPECT_EQ(pin, solver.getPll("B")->getVcoMul());
        }
        const auto all = settingsOfTwo(solver, solver.getToleranceFector(), seed % 2 == 0, pin);
        EXPECT_NEAR(listed[0].sum, solver.getTotalRelativeError(), 1e-9);
        for (const ClockSetting& setting : listed) {
            const auto known = all.find(keyOf(setting));
            ASSERT_NE(all.end(), known) << seed;
            EXPECT_NEAR(known->second, setting.sum, 1e-5F) << seed;
        }
        EXPECT_TRUE(std::is_sorted(listed.begin() + 1, listed.end(),
                                   [](const auto& a, const auto& b) { return a.sum < b.sum; }));
    }
}

TEST(SearchTerms, HoldInTreesOfOnePll) {
    HBSClockingAlgo1Pll solver("tree");
    solver.createPllConfig("PLL", "D");
    solver.addPeripheral("A", "D", 100.0F, true);
    SearchTerms terms;
    terms.settings = 3;
    solver.setTerms(terms);
    ASSERT_TRUE(solver.runSolution());
    ASSERT_EQ(3U, solver.getSettings().size());
    EXPECT_EQ(78U, solver.getSettings()[0].plls[0].multiplier);
    EXPECT_EQ(13U, solver.getSettings()[0].peripherals[0].second);
    terms.multipliers["PLL"] = 91;
    solver.setTerms(terms);
    ASSERT_TRUE(solver.runSolution());
    EXPECT_EQ(91U, solver.getPll("PLL")->getVcoMul());
    terms.multipliers["PLL"] = 20;
    solver.setTerms(terms);
    EXPECT_FALSE(solver.runSolution());
    EXPECT_TRUE(solver.getSettings().empty());
    solver.setTerms({});
    ASSERT_TRUE(solver.runSolution());
    EXPECT_EQ(78U, solver.getPll("PLL")->getVcoMul());
}

} // namespace
