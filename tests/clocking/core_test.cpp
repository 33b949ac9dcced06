// What all searches share: dividers, candidates, coverage.

#include <gmock/gmock.h>

#include "clocking/ClockingArithmetic.h"
#include "clocking/HBSClockingAlgo1Pll.h"
#include "support/support.h"

using namespace hbs_clocking;
using testing::ElementsAre;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();

/// Opens the stages of a search to the tests.
class Stages : public HBSClockingAlgo1Pll {
public:
    Stages() : HBSClockingAlgo1Pll("stages") {}
    using HBSClockingAlgo::collectNocMultipliers;
    using HBSClockingAlgo::collectPeripheralMultipliers;
    using HBSClockingAlgo::findBestDivider;
    using HBSClockingAlgo::findBestDividerInSlots;

    std::vector<unsigned> candidates(HBSPeripheral* p) {
        CandidateMap byPeripheral;
        MultiplierSet all;
        collectPeripheralMultipliers({p}, byPeripheral, all);
        return byPeripheral[p];
    }
};

TEST(Dividers, WhatHasNoIntegerSaturates) {
    EXPECT_EQ(0U, saturatedUint32(kNan));
    EXPECT_EQ(0U, saturatedUint32(-3.0F));
    EXPECT_EQ(0xFFFFFFFFU, saturatedUint32(kInfinity));
    EXPECT_EQ(4294967040U, saturatedUint32(4294967040.0F));
    for (const float target : {-1.0F, kNan, kInfinity})
        EXPECT_EQ(0xFFFFFFFFU, nearestDivider(100.0F, target, true)) << target;
    EXPECT_EQ(0xFFFFFFFFU, nearestDivider(kInfinity, 1.0F, true));
    EXPECT_EQ(1U, nearestDivider(99.0F, 100.0F, true));
    EXPECT_EQ(3U, nearestDivider(250.0F, 100.0F, true));
    EXPECT_EQ(4U, nearestDivider(400e6F, 100e6F, false));
}

TEST(Candidates, RequestsNearZeroAndSaturatedOnesAreServedByEveryMultiplierInRange) {
    Stages stages;
    stages.createPllConfig("PLL", "D");
    std::vector<unsigned> inRange;
    for (unsigned mul = 129; mul >= 65; --mul)
        inRange.push_back(mul);
    for (const float request : {0.0F, 0.01F, -7.0F, kNan})
        EXPECT_EQ(inRange, stages.candidates(stages.addPeripheral("P", "D", request, true)));
    HBSPeripheral* refused = stages.addPeripheral("P", "D", 0.0F, true);
    refused->setMaxAllowedPeripheralError(0.0F);
    EXPECT_THAT(stages.candidates(refused), ElementsAre());
    EXPECT_THAT(stages.candidates(stages.addPeripheral("P", "nowhere", 0.0F, true)), ElementsAre());
    for (const float reference : {kNan, kInfinity, -33.333F, 1e38F}) {
        stages.setRefClkFreq(reference);
        EXPECT_FALSE(stages.runSolution());
    }
}

TEST(Candidates, NocRequestTakesDividedVcoClocksAtOrBelowItAndLocksItsDomain) {
    Stages stages;
    stages.setRefClkFreq(100.0F);
    stages.createPllConfig("PLL", "NOC_DOMAIN");
    HBSPeripheral* noc = stages.addPeripheral("noc", "NOC_DOMAIN", 500.0F, true);
    HBSPeripheral* stray = stages.addPeripheral("stray", "D", 500.0F, true);
    CandidateMap candidates;
    MultiplierSet all;
    stages.collectNocMultipliers({noc}, candidates, all);
    EXPECT_THAT(candidates[noc], ElementsAre(40));
    EXPECT_EQ(0.001F, stages.getPowerDomain("NOC_DOMAIN")->getErrorLimit());
    EXPECT_THAT(stages.candidates(noc), ElementsAre()); // the ordinary stage leaves it out

    support::CapturedOutput output;
    stages.setRefClkFreq(1000.0F); // nothing in range, nothing said
    stages.collectNocMultipliers({stray}, candidates, all);
    stages.setRefClkFreq(86.4F); // 25 to 50
    stages.collectNocMultipliers({stray}, candidates, all);
    Stages().collectNocMultipliers({stray}, candidates, all);
    std::string expected;
    for (int mul = 25; mul <= 50; ++mul)
        expected += "Not a noc peripheral. continue...\n";
    EXPECT_EQ(expected + "NOC DOMAIN NOT FOUND\n", output.text());
}

TEST(Coverage, WordZeroNeverCountsAndTheLastWordWraps) {
    const auto covers = [](unsigned mul, std::vector<unsigned> list) {
        MultiplierBits combo{};
        MultiplierBits need{};
        setMultiplierBits({&mul, 1}, combo);
        setMultiplierBits(list, need);
        return anyCommonBit(combo, need);
    };
    EXPECT_FALSE(covers(30, {30, 31}));
    EXPECT_TRUE(covers(32, {30, 32}));
    EXPECT_TRUE(covers(160, {128}));
    EXPECT_FALSE(covers(160, {159, 64}));
}

TEST(Choice, TiesGoToTheFirstClockAndAClockThatIsOffDropsOut) {
    const Stages stages;
    DividerChoice out;
    EXPECT_EQ(0.0F, stages.findBestDivider(std::vector{200.0F, 100.0F}, 100.0F, out));
    EXPECT_EQ(DividerChoice(0, 2), out);
    EXPECT_TRUE(isNoDivider(stages.findBestDivider(std::vector{0.0F, 250.0F}, 100.0F, out)));
    EXPECT_EQ(0.0F, stages.findBestDivider(std::vector{0.0F, 300.0F}, 100.0F, out));
    EXPECT_EQ(DividerChoice(1, 3), out);
    EXPECT_EQ(0.0F, stages.findBestDivider(std::vector{0.0F, 300.0F}, 0.0F, out));
    EXPECT_EQ(DividerChoice(0, 1023), out);
    const std::vector<ClockSlot> slots = {std::nullopt, std::pair{900.0F, 1U}};
    EXPECT_EQ(0.0F, stages.findBestDividerInSlots(slots, 300.0F, out));
    EXPECT_EQ(DividerChoice(1, 3), out);
}

TEST(CrossClocks, LimitEmptiesTheSlotAndDividersComeLargestFirst) {
    ClockSlot slot = std::pair{1000.005F, 1U};
    EXPECT_FALSE(exceedsCrossLimit(1000.0F, slot, 1e-5F));
    EXPECT_TRUE(slot.has_value());
    slot->first = 1000.1F;
    EXPECT_TRUE(exceedsCrossLimit(1000.0F, slot, 1e-5F));
    EXPECT_FALSE(slot.has_value());
    const std::vector<CrossDivCombo> combos = buildCrossDivCombos();
    EXPECT_EQ(64U, combos.size());
    EXPECT_EQ((CrossDivCombo{4, 4, 4, 1}), combos.front());
    EXPECT_EQ((CrossDivCombo{4, 4, 3, 1}), combos[1]);
    EXPECT_EQ((CrossDivCombo{1, 1, 1, 1}), combos.back());
}

} // namespace
