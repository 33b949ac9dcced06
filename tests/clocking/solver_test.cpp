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

struct Worked {
    std::vector<float> requests;
    unsigned mul;
    std::vector<unsigned> dividers;
    double vcoFreq;

    friend std::ostream& operator<<(std::ostream& out, const Worked& example) {
        return out << "multiplier " << example.mul << ", requests " << example.requests.size();
    }
};

class WorkedExample : public testing::TestWithParam<Worked> {};

TEST_P(WorkedExample, ComesOutToTheDigit) {
    const Worked& example = GetParam();
    trees::Tree tree{33.333F, false, {2000.0F}, {}};
    for (const float request : example.requests)
        tree.peripherals.push_back({0, request, 100.0F, true});
    const auto solver = trees::build(tree);
    ASSERT_TRUE(solver->runSolution());
    EXPECT_EQ(0.001F, solver->getToleranceFector());
    const HBSPll* pll = solver->getPll("PLL0");
    EXPECT_EQ(example.mul, pll->getVcoMul());
    EXPECT_EQ(2U, pll->getClkoutDiv());
    EXPECT_EQ(0U, pll->getCrossDomainDiv());
    EXPECT_NEAR(example.vcoFreq, pll->getVcoFreq(), 0.0005);
    for (std::size_t i = 0; i < example.dividers.size(); ++i) {
        const HBSPeripheral* p = solver->getAllPeripherals()[i];
        EXPECT_EQ(example.dividers[i], p->getClkoutDiv());
        EXPECT_EQ(pll->getVcoFreq() / example.dividers[i], p->getActualFreq());
    }
}

INSTANTIATE_TEST_SUITE_P(, WorkedExample,
                         testing::Values(Worked{{100.0F}, 78, {13}, 1299.987},
                                         Worked{{100.0F, 250.0F}, 90, {15, 6}, 1499.985},
                                         Worked{{300.0F, 187.5F}, 90, {5, 8}, 1499.985}));

TEST(TwoPll, CrossingPeripheralReadsNoActualFrequency) {
    // PLL 0 serves 100 MHz with the smaller error; PLL 1 has to serve 250 MHz as well.
    trees::Tree tree{33.333F, true, {2000.0F, 2000.0F}, {{0, 100.0F}, {1, 100.0F}, {1, 250.0F}}};
    auto solver = trees::build(tree);
    ASSERT_TRUE(solver->runSolution());
    const HBSPeripheral* crossing = solver->getPeripheral("P1");
    EXPECT_EQ("PLL0", crossing->getPllName());
    EXPECT_EQ(13U, crossing->getClkoutDiv());
    EXPECT_EQ(0.0, crossing->getActualFreq());

    tree.allowCross = false;
    solver = trees::build(tree);
    ASSERT_TRUE(solver->runSolution());
    EXPECT_EQ("PLL1", solver->getPeripheral("P1")->getPllName());
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

struct Shape {
    std::vector<unsigned> pllsPerDomain;
    float referenceMhz;
    std::string onePllText;
    std::string twoPllText;

    friend std::ostream& operator<<(std::ostream& out, const Shape& shape) {
        for (const unsigned plls : shape.pllsPerDomain)
            out << "domain of " << plls << ", ";
        return out << "reference " << shape.referenceMhz;
    }
};

class Validation : public testing::TestWithParam<Shape> {};

TEST_P(Validation, SaysInOneLineWhatIsWrong) {
    const auto complaint = [](HBSClockingAlgo&& solver) {
        for (const unsigned plls : GetParam().pllsPerDomain) {
            HBSPowerDomain* domain = solver.addPowerDomain("D");
            for (unsigned i = 0; i < plls; ++i)
                domain->addPll("PLL", false);
        }
        solver.setRefClkFreq(GetParam().referenceMhz);
        CapturedOutput output;
        const bool valid = solver.validateConfig();
        const std::string text = output.text();
        EXPECT_EQ(valid, text.empty());
        return text;
    };
    EXPECT_EQ(GetParam().onePllText, complaint(HBSClockingAlgo1Pll("")));
    EXPECT_EQ(GetParam().twoPllText, complaint(HBSClockingAlgo2Pll("")));
}

const std::string kNoDomain = "No power domain added\n";
const std::string kTooMany = "More than One power domain added\n";
const std::string kNotTwo = "Clocking object expects two plls with this config\n";
const std::string kNoPll = "No PLL added to power domain\n";
const std::string kMorePlls = "More than One PLL added to power domain\n";

INSTANTIATE_TEST_SUITE_P(
    , Validation,
    testing::Values(Shape{{}, 0.0F, kNoDomain, kNoDomain}, Shape{{1}, 1.0F, "", kNotTwo},
                    Shape{{0}, 0.0F, kNoPll, kNotTwo}, Shape{{2}, 0.0F, kMorePlls, kNotTwo},
                    Shape{{1}, 0.0F, kNoPll, kNotTwo}, Shape{{1}, std::nanf(""), "", kNotTwo},
                    Shape{{1, 1}, 1.0F, kTooMany, ""}, Shape{{2, 0}, 0.0F, kTooMany, kNoPll},
                    Shape{{1, 2}, 0.0F, kTooMany, kMorePlls},
                    Shape{{1, 1}, 0.0F, kTooMany, "Input freq. is not set\n"},
                    Shape{{1, 1, 1}, 1.0F, kTooMany, kNotTwo}));

} // namespace
