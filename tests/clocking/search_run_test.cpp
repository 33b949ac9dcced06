// Runs of the solvers of four and six PLLs: what they check, print, send and keep.

#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <cmath>
#include <new>

#include "HPAParamMgr.h"
#include "clocking/HBSClockingAlgo4Pll.h"
#include "clocking/HBSClockingAlgo6Pll.h"
#include "clocking/SearchInterruption.h"
#include "clocking/search/SharedExecutor.h"
#include "clocking/trees46.h"
#include "support/support.h"

using namespace hbs_clocking;
using support::CapturedOutput;
using testing::StartsWith;
using trees46::Kind;

namespace {

struct Shape {
    bool sixPlls;
    std::vector<std::pair<const char*, unsigned>> domains; ///< with their number of PLLs
    const char* text;
    bool valid;
};

class Validation : public testing::TestWithParam<Shape> {};

TEST_P(Validation, SaysWhatIsWrong) {
    const Shape& shape = GetParam();
    std::unique_ptr<HBSClockingAlgo> solver;
    if (shape.sixPlls)
        solver = std::make_unique<HBSClockingAlgo6Pll>("x");
    else
        solver = std::make_unique<HBSClockingAlgo4Pll>("x");
    for (const auto& [name, plls] : shape.domains) {
        HBSPowerDomain* domain = solver->addPowerDomain(name);
        for (unsigned i = 0; i < plls; ++i)
            domain->addPll(name + std::to_string(i), false);
    }
    CapturedOutput output;
    EXPECT_EQ(shape.valid, solver->validateConfig());
    EXPECT_EQ(shape.text, output.text());
}

constexpr const char* kNoc = "NOC_DOMAIN";
INSTANTIATE_TEST_SUITE_P(
    , Validation,
    testing::Values(
        Shape{false, {}, "No power domain added\n", false},
        Shape{false,
              {{"A", 1}, {kNoc, 1}, {"B", 1}, {"C", 1}, {"D", 1}},
              "More than four power domain added\n",
              false},
        Shape{false, {{"A", 2}, {kNoc, 0}}, "No PLL added to power domain\n", false},
        Shape{false, {{"A", 2}, {kNoc, 1}}, "More than Two PLL added to power domain\n", false},
        Shape{false,
              {{"A", 1}, {"B", 1}, {kNoc, 1}},
              "NOC_DOMAIN is not added in the desired order.\n",
              true},
        Shape{true, {{"A", 3}, {kNoc, 0}}, "More than Two PLL added to power domain\n", false},
        Shape{true, {{"A", 1}, {kNoc, 2}}, "More than one PLL added to power domain\n", false},
        Shape{true,
              {{"A", 1}, {kNoc, 1}, {"B", 1}},
              "Only one PLL added to power domain, expected two PLLs.\n",
              false},
        Shape{true, {{"A", 1}, {kNoc, 1}, {"B", 2}, {"C", 2}}, "", true}));

/// A tree that solves at the first step, with few combinations.
reference46::Tree smallTree() {
    reference46::Tree tree;
    tree.refMhz = 60.0F;
    tree.domains = {{"A", {2000}}, {kNoc, {2000}}, {"B", {2000}}, {"C", {2000}}};
    tree.peripherals = {
        {"", 1, 960.0F, true, true}, {"", 0, 250.0F}, {"", 2, 130.0F}, {"", 3, 330.0F}};
    return tree;
}

TEST(SearchRun, RefusesATreeWithoutNocPeripheralAndKeepsTheEarlierResult) {
    const auto solver = trees46::build(smallTree());
    ASSERT_TRUE(solver->runSolution());
    const reference46::Solution before = trees46::read(*solver);
    solver->getAllPeripherals()[0]->setNOCPeripheral(false);
    CapturedOutput output;
    EXPECT_FALSE(solver->runSolution());
    EXPECT_EQ("NOC Peripheral is not enabled. Kindly enable noc peripheral\n", output.text());
    EXPECT_EQ(before, trees46::read(*solver));
}

TEST(SearchRun, KeepsTheEarlierResultWhenInterrupted) {
    const auto solver = trees46::build(smallTree());
    ASSERT_TRUE(solver->runSolution());
    const reference46::Solution before = trees46::read(*solver);
    const float limit = solver->getPowerDomainAt(2)->getErrorLimit();
    solver->setMaxCrossDomainFreq(950.0F); // another tree to the store
    SearchInterruption::request();
    EXPECT_THROW(static_cast<void>(solver->runSolution()), SearchInterrupted);
    SearchInterruption::withdraw();
    EXPECT_EQ(before, trees46::read(*solver));
    EXPECT_EQ(limit, solver->getPowerDomainAt(2)->getErrorLimit());
    EXPECT_TRUE(solver->runSolution());
}

TEST(SearchRun, ComplainsOfTwoNocPeripheralsOncePerTuple) {
    reference46::Tree tree = smallTree();
    tree.peripherals.push_back({"", 1, 960.0F, true, true});
    // Each multiplier has one divider, and serves requests this low: the search takes chunks.
    for (std::size_t domain = 1; domain < 4; ++domain)
        tree.domains[domain].pllLimitsMhz = {600.0F};
    tree.peripherals[2].requestMhz = tree.peripherals[3].requestMhz = 1e-3F;
    const auto solver = trees46::build(tree);
    CapturedOutput output;
    const bool found = solver->runSolution();
    const std::string text = output.text();
    reference46::Search literal(tree);
    const auto expected = literal.solve(1, 10000000);
    ASSERT_TRUE(expected);
    EXPECT_GT(solver->getSearchStatistics().combinations, 1000U);
    EXPECT_EQ(*expected, trees46::read(*solver));
    EXPECT_EQ(expected->found, found);
    EXPECT_GT(literal.linesPrinted(), 64U);
    EXPECT_EQ(literal.linesPrinted(),
              static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n')));
    EXPECT_THAT(text, StartsWith("More than one noc peripheral found\n"));
}

TEST(SearchRun, SendsItsTimingAndTakesARepeatedTreeFromTheStore) {
    HPAParamMgr::getParamMgr()->setValue("ybr.enableClockingComputationPrints", "true");
    const auto solver = trees46::build(smallTree());
    support::CapturedMessages messages;
    ASSERT_TRUE(solver->runSolution());
    const reference46::Solution fresh = trees46::read(*solver);
    EXPECT_GT(solver->getSearchStatistics().evaluatedTuples, 0U);
    // The store goes by names and requests: what a peripheral may miss doesn't count.
    solver->getAllPeripherals()[1]->setMaxAllowedPeripheralError(0.0F);
    ASSERT_TRUE(solver->runSolution());
    EXPECT_EQ(0U, solver->getSearchStatistics().combinations);
    EXPECT_EQ(fresh, trees46::read(*solver));
    HPAParamMgr::getParamMgr()->unsetValue("ybr.enableClockingComputationPrints");
    solver->getAllPeripherals()[1]->setMaxAllowedPeripheralError(100.0F);
    solver->setMaxCrossDomainFreq(900.0F); // another tree to the store
    static_cast<void>(solver->runSolution());
    EXPECT_NE(0U, solver->getSearchStatistics().combinations);
    ASSERT_EQ(1U, messages.all().size());
    EXPECT_EQ(0x4000000U, messages.all()[0].mask);
    EXPECT_THAT(messages.lines()[0],
                StartsWith("@91-42@%f%d%f%f%d|60.000000|4|0.000000|0.001000|"));
}

TEST(SearchRun, HandsOnWhatAWorkerThrowsAndWorksAgain) {
    const auto throwing = [](unsigned i) {
        if (i == 1)
            throw std::bad_alloc();
    };
    EXPECT_THROW(runOnSharedExecutor("throws", 3, throwing), std::bad_alloc);
    std::atomic<unsigned> ran = 0;
    runOnSharedExecutor("works", 3, [&](unsigned) { ++ran; });
    EXPECT_EQ(3U, ran);
}

TEST(SearchRun, LooksAtNoManyTimesMoreForChunksThatBeginAmidAHead) {
    std::array<std::uint64_t, 2> evaluated{};
    for (unsigned seed = 0; seed < 60; ++seed)
        for (const unsigned threads : {1U, 2U}) {
            HPAParamMgr::getParamMgr()->setValue("general.maxThreads", std::to_string(threads));
            const Kind kind = seed % 2 == 0 ? Kind::NearTies : Kind::Plain;
            const auto solver = trees46::build(trees46::generate(seed, true, 12, kind));
            if (solver->runSolution())
                evaluated[threads - 1] += solver->getSearchStatistics().evaluatedTuples;
        }
    EXPECT_GT(evaluated[0], 100U);
    EXPECT_LT(evaluated[1], 20 * evaluated[0]);
}

TEST(SearchRun, FollowsOddNumbersWithoutASolutionOrWithOne) {
    for (const float reference : {NAN, INFINITY, -5.0F, 1e30F}) {
        reference46::Tree tree = smallTree();
        tree.refMhz = reference;
        for (const float request : {960.0F, 0.0F, 1e-30F, NAN}) {
            tree.peripherals[0].requestMhz = request;
            const auto solver = trees46::build(tree);
            const bool found = solver->runSolution();
            EXPECT_EQ(found, solver->is_result_found());
        }
    }
}

/// Works a solution's frequencies and limits out from the decisions alone.
void check(const reference46::Tree& tree, const HBSClockingAlgo& solver) {
    const std::vector<HBSPll*> plls = solver.getAllPlls();
    for (const HBSPll* pll : plls) {
        const double mhz =
            static_cast<double>(tree.refMhz) * pll->getVcoMul() / pll->getClkoutDiv();
        ASSERT_NEAR(mhz, pll->getVcoFreq(), mhz * 1e-6);
    }
    double sum = 0.0;
    for (const HBSPeripheral* peripheral : solver.getEnabledPeripherals()) {
        const HBSPll* pll = solver.getPll(peripheral->getPllName());
        const HBSPowerDomain* domain = solver.getPowerDomain(peripheral->getPowerDomainName());
        const bool near = pll->getPowerDomainIndex() == domain->getIndex() ||
                          (domain->getIndex() == 0 && pll->getPowerDomainIndex() == 1);
        const double clock = pll->getVcoFreq() / (near ? 1 : pll->getCrossDomainDiv());
        if (!near) {
            ASSERT_LE(clock, static_cast<double>(tree.maxCrossMhz) * 1.00002);
        }
        const double mhz = clock / peripheral->getClkoutDiv();
        ASSERT_NEAR(mhz, peripheral->getActualFreq(), mhz * 1e-6);
        const double request = static_cast<double>(peripheral->getRequestedFreq());
        if (peripheral->getClkoutDiv() == 1023)
            continue;
        ASSERT_LT(mhz, request * 1.00001);
        ASSERT_LT(std::fabs(request - mhz) / request,
                  static_cast<double>(solver.getToleranceFector()));
        sum += std::fabs(request - mhz) / request;
    }
    ASSERT_NEAR(sum, static_cast<double>(solver.getTotalRelativeError()), 1e-5);
}

TEST(SearchRun, GivesWhatItsDecisionsSay) {
    int solved = 0;
    for (unsigned seed = 0; seed < 120; ++seed) {
        const bool sixPlls = seed % 2 == 0;
        const reference46::Tree tree =
            trees46::generate(seed, sixPlls, 24, seed % 3 == 0 ? Kind::Plain : Kind::Rings);
        const auto solver = trees46::build(tree);
        if (!solver->runSolution())
            continue;
        ASSERT_NO_FATAL_FAILURE(check(tree, *solver)) << "seed " << seed;
        ++solved;
    }
    EXPECT_GT(solved, 60);
}

} // namespace
