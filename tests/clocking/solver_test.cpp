// Whole runs of the 1- and 2-PLL solvers.

#include <gmock/gmock.h>

#include <map>

#include "clocking/HBSClockingAlgo1Pll.h"
#include "clocking/HBSClockingAlgo2Pll.h"
#include "clocking/reference.h"
#include "clocking/trees.h"
#include "support/support.h"

using namespace hbs_clocking;
using support::CapturedOutput;

namespace {

class PlainReference : public testing::TestWithParam<unsigned> {};

TEST_P(PlainReference, AgreesInEveryBitOfEveryField) {
    std::map<float, int> endedAt;
    CapturedOutput quiet; // trees with nothing enabled complain
    for (unsigned seed = 0; seed < 4000; ++seed) {
        const trees::Tree tree = trees::generate(seed, GetParam());
        const auto solver = trees::build(tree);
        const bool found = solver->runSolution();
        ASSERT_EQ(found, solver->is_result_found());
        ASSERT_EQ(reference::solve(tree), trees::describe(*solver)) << "seed " << seed;
        ++endedAt[found ? solver->getToleranceFector() : -1.0F];
    }
    // The trees are worth something only if they end everywhere: at each step, and in failure.
    EXPECT_EQ(9U, endedAt.size());
}

INSTANTIATE_TEST_SUITE_P(, PlainReference, testing::Values(1U, 2U));

TEST(OnePll, WorkedExamplesComeOutToTheDigit) {
    struct Case {
        std::vector<float> requests;
        unsigned mul;
        std::vector<unsigned> dividers;
        double vcoFreq;
    };
    for (const auto& [requests, mul, dividers, vcoFreq] :
         {Case{{100.0F}, 78, {13}, 1299.987}, Case{{100.0F, 250.0F}, 90, {15, 6}, 1499.985},
          Case{{300.0F, 187.5F}, 90, {5, 8}, 1499.985}}) {
        trees::Tree tree{33.333F, false, {2000.0F}, {}};
        for (const float request : requests)
            tree.peripherals.push_back({0, request});
        const auto solver = trees::build(tree);
        ASSERT_TRUE(solver->runSolution());
        EXPECT_EQ(0.001F, solver->getToleranceFector());
        const HBSPll* pll = solver->getPll("PLL0");
        EXPECT_EQ(mul, pll->getVcoMul());
        EXPECT_EQ(2U, pll->getClkoutDiv());
        EXPECT_EQ(0U, pll->getCrossDomainDiv());
        EXPECT_NEAR(vcoFreq, pll->getVcoFreq(), 0.0005);
        for (std::size_t i = 0; i < dividers.size(); ++i) {
            const HBSPeripheral* p = solver->getAllPeripherals()[i];
            EXPECT_EQ(dividers[i], p->getClkoutDiv());
            EXPECT_EQ(pll->getVcoFreq() / dividers[i], p->getActualFreq());
        }
    }
}

TEST(Run, RefusedRunLeavesTheEarlierResultAndFailedRunClearsIt) {
    const auto solver = trees::build({33.333F, false, {2000.0F}, {{0, 100.0F}}});
    ASSERT_TRUE(solver->runSolution());
    const std::string solved = trees::describe(*solver);
    HBSPeripheral* p = solver->getPeripheral("P0");
    {
        CapturedOutput output;
        p->setEnabled(false);
        EXPECT_FALSE(solver->runSolution());
        p->setEnabled(true);
        solver->setRefClkFreq(0.0F);
        EXPECT_FALSE(solver->runSolution());
        EXPECT_EQ("No peripheral enabled\nNo PLL added to power domain\n", output.text());
    }
    EXPECT_EQ(solved, trees::describe(*solver));

    const double earlier = p->getActualFreq();
    solver->setRefClkFreq(33.333F);
    p->setMaxAllowedPeripheralError(0.0F); // nothing is under an error of 0, not even a match
    CapturedOutput output;
    EXPECT_FALSE(solver->runSolution());
    EXPECT_EQ("", output.text());
    EXPECT_EQ(trees::summaryLine(false, 1.0F, 1000.0F) + trees::pllLine(0, 0, 0.0, 1.0F) +
                  trees::peripheralLine("", 0, earlier),
              trees::describe(*solver));
}

TEST(Validation, SaysInOneLineWhatIsWrong) {
    const std::string noDomain = "No power domain added\n";
    const std::string tooMany = "More than One power domain added\n";
    const std::string notTwo = "Clocking object expects two plls with this config\n";
    const std::string noPll = "No PLL added to power domain\n";
    const std::string morePlls = "More than One PLL added to power domain\n";
    struct Case {
        std::vector<unsigned> pllsPerDomain;
        float referenceMhz;
        std::string onePllText, twoPllText;
    };
    for (const auto& [pllsPerDomain, referenceMhz, onePllText, twoPllText] :
         {Case{{}, 0.0F, noDomain, noDomain}, Case{{1}, 1.0F, "", notTwo},
          Case{{0}, 0.0F, noPll, notTwo}, Case{{2}, 0.0F, morePlls, notTwo},
          Case{{1}, 0.0F, noPll, notTwo}, Case{{1}, std::nanf(""), "", notTwo},
          Case{{1, 1}, 1.0F, tooMany, ""}, Case{{2, 0}, 0.0F, tooMany, noPll},
          Case{{1, 2}, 0.0F, tooMany, morePlls},
          Case{{1, 1}, 0.0F, tooMany, "Input freq. is not set\n"},
          Case{{1, 1, 1}, 1.0F, tooMany, notTwo}}) {
        HBSClockingAlgo1Pll one("");
        HBSClockingAlgo2Pll two("");
        for (auto [solver, text] :
             {std::pair<HBSClockingAlgo*, std::string>{&one, onePllText}, {&two, twoPllText}}) {
            for (const unsigned plls : pllsPerDomain) {
                HBSPowerDomain* domain = solver->addPowerDomain("D");
                for (unsigned i = 0; i < plls; ++i)
                    domain->addPll("PLL", false);
            }
            solver->setRefClkFreq(referenceMhz);
            CapturedOutput output;
            EXPECT_EQ(text.empty(), solver->validateConfig());
            EXPECT_EQ(text, output.text());
        }
    }
}

} // namespace
