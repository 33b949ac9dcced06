// The sets of requests that can't be met together, against trying every subset.

#include <gmock/gmock.h>

#include <bit>
#include <cmath>

#include "workbench/clock_trees.h"
#include "workbench/clocks/ClockConflicts.h"

namespace {

using Sets = std::vector<std::vector<std::size_t>>;

/// Whether one multiplier serves every request of a list that shares a PLL, from the arithmetic.
bool isMetByOnePll(const tq::ClockTree& tree, const std::vector<std::size_t>& members) {
    for (unsigned mul = 32; mul <= 159; ++mul) {
        const double vco = mul * static_cast<double>(tree.referenceMhz);
        if (vco < 2160 || vco > 4320)
            continue;
        bool all = true;
        for (const std::size_t member : members) {
            const tq::ClockTree::Peripheral& p = tree.peripherals[member];
            const double request = static_cast<double>(p.mhz);
            double limit = 0;
            for (const tq::ClockTree::Domain& domain : tree.domains)
                if (domain.name == p.domain)
                    limit = static_cast<double>(domain.plls.front().maxMhz);
            double mhz = vco;
            while (mhz > limit * 1.00001)
                mhz /= 2;
            const double divider = std::ceil(mhz / request * (1 - 1e-7));
            const double error = std::fabs(request - mhz / divider) / request;
            all = all && error * 100 < static_cast<double>(p.maxErrorPercent);
        }
        if (all)
            return true;
    }
    return false;
}

/// Trees of one and two PLLs are met when each domain's own PLL meets its requests.
bool isMetInSmallTree(const tq::ClockTree& tree, unsigned subset) {
    for (const tq::ClockTree::Domain& domain : tree.domains) {
        std::vector<std::size_t> members;
        for (std::size_t i = 0; i < tree.peripherals.size(); ++i)
            if ((subset >> i & 1U) != 0 && tree.peripherals[i].domain == domain.name)
                members.push_back(i);
        if (!isMetByOnePll(tree, members))
            return false;
    }
    return true;
}

/// By the solver itself, for larger trees; place 0 is the NOC peripheral, which is always in.
bool isMetInLargeTree(tq::ClockTree tree, unsigned subset) {
    for (std::size_t i = 1; i < tree.peripherals.size(); ++i)
        tree.peripherals[i].enabled = (subset >> i & 1U) != 0;
    if (subset == 1) // any clock will do: the solver needs somebody to serve
        tree.peripherals.push_back({"FREE", "D0"});
    const tq::ClockRun run = tq::runClockTree(tree);
    return tq::meetsAllRequests(tree, *run.solver);
}

template <class IsMet>
Sets minimalSets(const tq::ClockTree& tree, unsigned always, const IsMet& isMet) {
    Sets sets;
    const unsigned all = 1U << tree.peripherals.size();
    std::vector<bool> met(all, true);
    for (unsigned subset = 0; subset < all; ++subset)
        if ((subset & always) == always)
            met[subset] = isMet(tree, subset);
    for (unsigned subset = 0; subset < all; ++subset) {
        bool isMinimal = (subset & always) == always && !met[subset];
        std::vector<std::size_t> members;
        for (std::size_t i = 0; i < tree.peripherals.size(); ++i) {
            const unsigned bit = 1U << i;
            if ((subset & bit & ~always) == 0)
                continue;
            members.push_back(i);
            isMinimal = isMinimal && met[subset & ~bit];
        }
        if (isMinimal)
            sets.push_back(members);
    }
    std::sort(sets.begin(), sets.end(), [](const auto& a, const auto& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    return sets;
}

Sets setsOf(const tq::ClockConflicts& conflicts, bool withoutNoc = false) {
    Sets sets;
    for (const tq::ClockConflict& conflict : conflicts.sets) {
        sets.emplace_back();
        for (const tq::ClockConflict::Without& without : conflict.members)
            if (!withoutNoc || without.peripheral != 0)
                sets.back().push_back(without.peripheral);
    }
    std::sort(sets.begin(), sets.end(), [](const auto& a, const auto& b) {
        return a.size() != b.size() ? a.size() < b.size() : a < b;
    });
    return sets;
}

TEST(ClockConflicts, AreAllMinimalSetsOfSmallTrees) {
    unsigned conflicting = 0;
    for (unsigned seed = 0; seed < 60; ++seed) {
        const tq::ClockTree tree =
            clock_trees::generate(seed, 1 + seed % 2, 7, seed % 3 == 0 ? 0.5F : 3.0F);
        const tq::ClockConflicts found = tq::findClockConflicts(tree, 1000);
        EXPECT_TRUE(found.isComplete);
        EXPECT_EQ(minimalSets(tree, 0, isMetInSmallTree), setsOf(found)) << seed;
        conflicting += found.sets.empty() ? 0U : 1U;
    }
    EXPECT_GT(conflicting, 30U);
}

TEST(ClockConflicts, AreMinimalSetsOfLargeTreesWithTheirNocClock) {
    unsigned conflicting = 0;
    for (unsigned seed = 0; seed < 24; ++seed) {
        tq::ClockTree tree = clock_trees::generate(seed, seed % 2 == 0 ? 4 : 6, 6, 0.2F);
        if (seed % 5 == 0)
            tree.maxCrossMhz = 150.0F;
        const tq::ClockConflicts found = tq::findClockConflicts(tree, 1000);
        const Sets expected = minimalSets(tree, 1, isMetInLargeTree);
        const Sets sets = setsOf(found, true);
        // What is met needn't stay met with less, so that not every minimal set comes up.
        EXPECT_THAT(sets, testing::IsSubsetOf(expected)) << seed;
        EXPECT_EQ(sets.empty(), isMetInLargeTree(tree, ~0U)) << seed;
        conflicting += sets.empty() ? 0U : 1U;
    }
    EXPECT_GT(conflicting, 4U);
}

TEST(ClockConflicts, NameTheNocRequestWhereAnotherOneWouldDo) {
    tq::ClockTree tree = clock_trees::generate(1, 4, 1);
    tree.maxCrossMhz = 160.0F; // of 800 MHz, a quarter crosses at 200
    tree.peripherals.push_back({"P", "D2", 100.0F});
    const tq::ClockConflicts found = tq::findClockConflicts(tree);
    ASSERT_EQ((Sets{{0, 1}}), setsOf(found));
    tree.maxCrossMhz = 100.0F; // nothing crosses, whatever the NOC clock is
    EXPECT_EQ((Sets{{1}}), setsOf(tq::findClockConflicts(tree)));
    tree.peripherals[0].mhz = 100.0F; // below what an eighth of any VCO gives
    EXPECT_EQ((Sets{{0}}), setsOf(tq::findClockConflicts(tree)));
}

TEST(ClockConflicts, SayWhatTheOthersGetWithoutEach) {
    tq::ClockTree tree;
    tree.referenceMhz = 24.0F;
    tree.domains = {{"D", {{"PLL", 900.0F}}}};
    for (const auto& [name, mhz] : {std::pair{"A", 600.0F}, {"VIDEO", 702.0F}, {"B", 200.0F}})
        tree.peripherals.push_back({name, "D", mhz, 1.0F});
    const tq::ClockConflicts found = tq::findClockConflicts(tree);
    ASSERT_EQ((Sets{{0, 1}, {1, 2}}), setsOf(found));
    const tq::ClockConflict::Without& withoutVideo = found.sets[0].members[1];
    EXPECT_TRUE(withoutVideo.allMet);
    EXPECT_EQ(0.001F, withoutVideo.tolerance);
    EXPECT_FALSE(found.sets[0].members[0].allMet);
    EXPECT_TRUE(tq::findClockConflicts(clock_trees::generate(3, 2, 8)).sets.empty());
}

TEST(ClockConflicts, TakeFewRunsForTheFirstSetOfALargeTree) {
    for (unsigned seed = 0; seed < 10; ++seed) {
        const tq::ClockTree tree = clock_trees::generate(seed, seed % 2 == 0 ? 2 : 6, 24, 0.5F);
        const tq::ClockConflicts found = tq::findClockConflicts(tree, 1);
        ASSERT_EQ(1U, found.sets.size()) << seed;
        EXPECT_LT(found.solves, 60U) << seed;
    }
}

} // namespace
