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

    // A clock of 2500 lies above these requests by less, and by more, than the margin of 0.0001.
    for (const auto& [requestMhz, isServed] : {std::pair{2499.9F, true}, {2499.7F, false}}) {
        candidates.clear();
        noc->setRequestedFreq(requestMhz);
        stages.collectNocMultipliers({noc}, candidates, all);
        EXPECT_EQ(isServed, candidates.count(noc) != 0) << requestMhz;
    }

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
