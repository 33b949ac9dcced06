// The parts of the search, each by itself.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "clocking/ClockingArithmetic.h"
#include "clocking/search/ChunkLows.h"

using namespace hbs_clocking;

namespace {

Tuple at(unsigned place) {
    Tuple tuple;
    tuple.muls[0] = static_cast<std::uint8_t>(place);
    return tuple;
}

/// The chain as it is defined.
int endOfChain(const std::vector<float>& sums) {
    float best = kWorstTotalError;
    int winner = -1;
    for (std::size_t i = 0; i < sums.size(); ++i) {
        if (!definitelyLess(sums[i], best, kMargin))
            continue;
        best = sums[i];
        winner = static_cast<int>(i);
    }
    return winner;
}

TEST(NearMinimum, IsTheEndOfTheChainAndNotTheSmallest) {
    const float b = 1.0F;
    for (const bool withFirst : {true, false}) {
        NearMinimum sums(1e3, true, 7e-5);
        sums.offer(at(3), b);
        sums.offer(at(2), b * 1.000008F);
        if (withFirst)
            sums.offer(at(1), b * 1.000015F);
        ASSERT_TRUE(sums.isDecided());
        EXPECT_EQ(at(withFirst ? 3 : 2), sums.winner()->tuple);
    }
}

TEST(NearMinimum, TellsTheEndOfAnyChainOfferedInAnyOrder) {
    std::mt19937 engine(1);
    int undecided = 0;
    for (int round = 0; round < 20000; ++round) {
        std::vector<float> sums(1 + engine() % 12);
        const float spread = std::array{1e-6F, 1e-5F, 4e-5F, 0.5F}[engine() % 4];
        for (float& sum : sums)
            sum = engine() % 9 == 0 && spread == 0.5F
                      ? 0.0F
                      : 0.01F + 0.01F * spread * static_cast<float>(engine() % 16);
        std::vector<unsigned> order(sums.size());
        for (unsigned i = 0; i < order.size(); ++i)
            order[i] = i;
        std::shuffle(order.begin(), order.end(), engine);
        for (double band = 3e-5;; band *= 8.0) {
            NearMinimum near(1e3, true, band);
            for (const unsigned place : order)
                near.offer(at(place), sums[place]);
            if (!near.isDecided()) {
                ++undecided;
                continue;
            }
            ASSERT_EQ(at(static_cast<unsigned>(endOfChain(sums))), near.winner()->tuple);
            break;
        }
    }
    EXPECT_GT(undecided, 0) << "a band that always suffices proves nothing of the wider ones";
}

TEST(ChunkLows, TellTheBestOfTheChunksWinnersOfferedInAnyOrder) {
    std::mt19937 engine(2);
    std::array<int, 3> winners{};
    for (int round = 0; round < 20000; ++round) {
        std::vector<float> sums(3 + engine() % 12);
        const float spread = std::array{1e-6F, 1e-5F, 4e-5F}[engine() % 3];
        for (float& sum : sums)
            sum = 0.01F + 0.01F * spread * static_cast<float>(engine() % 16);
        std::vector<unsigned> order(sums.size());
        for (unsigned i = 0; i < order.size(); ++i)
            order[i] = i;
        std::shuffle(order.begin(), order.end(), engine);
        const std::array<std::size_t, 4> edges = {0, 1 + engine() % (sums.size() - 2),
                                                  sums.size() - 1, sums.size()};
        int expected = -1;
        for (std::size_t chunk = 0; chunk < 3; ++chunk) {
            const std::vector<float> part(sums.begin() + static_cast<long>(edges[chunk]),
                                          sums.begin() + static_cast<long>(edges[chunk + 1]));
            if (part.empty())
                continue;
            const int own = endOfChain(part) + static_cast<int>(edges[chunk]);
            if (expected < 0 ||
                sums[static_cast<unsigned>(expected)] > sums[static_cast<unsigned>(own)])
                expected = own;
        }
        std::vector<Combination> starts;
        for (std::size_t chunk = 0; chunk < 3; ++chunk)
            starts.push_back(at(static_cast<unsigned>(edges[chunk])).muls);
        for (double band = 3e-5;; band *= 8.0) {
            ChunkLows lows(starts, 1e3, true, band);
            for (const unsigned place : order)
                lows.offer(at(place), sums[place]);
            if (!lows.isDecided())
                continue;
            ASSERT_EQ(at(static_cast<unsigned>(expected)), lows.winner()->tuple);
            break;
        }
        const auto place = static_cast<std::size_t>(expected);
        ++winners[place < edges[1] ? 0 : place < edges[2] ? 1 : 2];
    }
    for (const int count : winners)
        EXPECT_GT(count, 100);
}

TEST(ChunkLows, LimitASubtreeByTheLowsBeforeItInItsChunk) {
    ChunkLows lows({at(0).muls, at(10).muls}, 1e3, true, 1e-4);
    lows.offer(at(5), 1.0F);
    const double within = lows.limit();
    EXPECT_GT(within, 1.0001);
    EXPECT_NEAR(1.0001, lows.limitBehind({3}, 1), 1e-9) << "before the low";
    EXPECT_LT(lows.limitBehind({7}, 1), 1.0) << "behind it";
    EXPECT_EQ(within, lows.limitBehind({12}, 1)) << "in another chunk";
    EXPECT_EQ(within, lows.limitBehind({}, 0)) << "everywhere";
    EXPECT_EQ(0U, lows.chunkOf({9}, 1));
    EXPECT_EQ(1U, lows.chunkOf({10}, 1));
    EXPECT_EQ(ChunkLows::kSeveral, lows.chunkOf({}, 0));
    EXPECT_EQ(0U, lows.startsWithin({10}, 1).size());
    ASSERT_EQ(1U, lows.startsWithin({}, 0).size());
    EXPECT_EQ(at(10).muls, lows.startsWithin({}, 0)[0]);
}

/// All combinations of six places, by trying.
std::vector<Combination> layOut(const CombinationList& list, const std::vector<std::uint8_t>& all) {
    std::vector<Combination> result;
    const auto count = static_cast<unsigned>(std::pow(all.size(), 6));
    for (unsigned number = 0; number < count; ++number) {
        Combination combination{};
        unsigned rest = number;
        for (auto place = combination.rbegin(); place != combination.rend(); ++place) {
            *place = all[rest % all.size()];
            rest /= static_cast<unsigned>(all.size());
        }
        if (list.contains(combination))
            result.push_back(combination);
    }
    return result;
}

MultiplierMask maskOf(std::initializer_list<unsigned> muls) {
    MultiplierMask mask;
    for (const unsigned mul : muls)
        mask.insert(mul);
    return mask;
}

TEST(CombinationList, KnowsItsSizeAndEachElementWithoutLayingThemOut) {
    using Order = CombinationStage::Order;
    const std::vector<std::uint8_t> all = {70, 80, 90, 100};
    const CombinationList pairs({all, {70, 90}, Order::Any, {{maskOf({70, 80})}}, {}});
    const CombinationList filtered = pairs.extendedBy(
        {all, all, Order::Different, {{maskOf({70})}, {maskOf({90, 100})}}, {0, 1}});
    const CombinationList list = filtered.extendedBy(
        {all, all, Order::Ascending, {{maskOf({80}), true}, {maskOf({70}), false}}, {0, 2}});
    ASSERT_EQ(6U, list.width());
    const std::vector<Combination> expected = layOut(list, all);
    ASSERT_EQ(expected.size(), list.size());
    ASSERT_GT(list.size(), 100U);
    std::vector<Combination> ranged;
    list.forEach(7, list.size() - 5, [&](const Combination& c) { ranged.push_back(c); });
    EXPECT_TRUE(std::equal(ranged.begin(), ranged.end(), expected.begin() + 7, expected.end() - 5));
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_EQ(expected[i], list.at(i));
}

TEST(CombinationList, CountsBeyondThirtyTwoBits) {
    std::vector<std::uint8_t> all;
    for (unsigned mul = 65; mul <= 129; ++mul)
        all.push_back(static_cast<std::uint8_t>(mul));
    const CombinationList pairs({all, all, CombinationStage::Order::Any, {}, {}});
    const CombinationList ordered({all, all, CombinationStage::Order::Different, {}, {}});
    const CombinationList list = pairs.timesList(ordered).timesList(
        CombinationList({all, all, CombinationStage::Order::Ascending, {}, {}}));
    EXPECT_EQ(std::uint64_t{65 * 65} * (65 * 64) * (65 * 32), list.size());
    EXPECT_EQ((Combination{129, 129, 129, 128, 128, 129}), list.at(list.size() - 1));
}

} // namespace
