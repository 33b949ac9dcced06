// The solvers of four and six PLLs against the literal search, bit for bit.

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "HPAParamMgr.h"
#include "clocking/trees46.h"

using trees46::Kind;

namespace {

constexpr std::uint64_t kMaxTuples = 40000;
constexpr std::uint64_t kMaxChunkTuples = 3000000;

void setThreads(int count) {
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", std::to_string(count));
}

struct Family {
    const char* name;
    bool sixPlls;
    Kind kind;
    unsigned fewest, most; ///< peripherals
};

void PrintTo(const Family& family, std::ostream* out) {
    *out << family.name << (family.sixPlls ? "6" : "4");
}

class LiteralSearch : public testing::TestWithParam<Family> {};

TEST_P(LiteralSearch, AgreesInEveryBit) {
    const Family& family = GetParam();
    setThreads(2);
    int solved = 0;
    int refused = 0;
    for (unsigned seed = 0; solved < 200 && seed < 1500; ++seed) {
        const unsigned count = family.fewest + seed % (family.most - family.fewest + 1);
        const reference46::Tree tree = trees46::generate(seed, family.sixPlls, count, family.kind);
        const auto expected = reference46::Search(tree).solve(2, kMaxTuples);
        if (!expected)
            continue;
        const auto solver = trees46::build(tree);
        ASSERT_EQ(expected->found, solver->runSolution()) << "seed " << seed;
        ASSERT_EQ(*expected, trees46::read(*solver)) << "seed " << seed;
        ++(expected->found ? solved : refused);
    }
    EXPECT_GE(solved, 20) << "of which " << refused << " without a solution";
}

INSTANTIATE_TEST_SUITE_P(, LiteralSearch,
                         testing::Values(Family{"Odd", false, Kind::Odd, 3, 8},
                                         Family{"Odd", true, Kind::Odd, 4, 14},
                                         Family{"Ordinary", false, Kind::Ordinary, 4, 16},
                                         Family{"Ordinary", true, Kind::Ordinary, 6, 24},
                                         Family{"NearTies", false, Kind::NearTies, 3, 10},
                                         Family{"Rings", false, Kind::Rings, 4, 12},
                                         Family{"Rings", true, Kind::Rings, 8, 24}));

/// A tree among whose sums some lie so close that another division into chunks has another winner.
struct Tie {
    bool sixPlls;
    Kind kind;
    unsigned seed, peripherals;
};

void PrintTo(const Tie& tie, std::ostream* out) {
    *out << tie.seed;
}

class ThreadCounts : public testing::TestWithParam<Tie> {};

TEST_P(ThreadCounts, MakeTheirOwnWinnersAmongNearTies) {
    const Tie& tie = GetParam();
    const reference46::Tree tree =
        trees46::generate(tie.seed, tie.sixPlls, tie.peripherals, tie.kind);
    std::vector<reference46::Solution> winners;
    for (const int threads : {1, 2, 3, 8, 16}) {
        const auto expected = reference46::Search(tree).solve(threads, kMaxChunkTuples);
        ASSERT_TRUE(expected);
        setThreads(threads);
        const auto solver = trees46::build(tree);
        ASSERT_TRUE(solver->runSolution());
        ASSERT_EQ(*expected, trees46::read(*solver)) << threads << " threads";
        if (std::find(winners.begin(), winners.end(), *expected) == winners.end())
            winners.push_back(*expected);
    }
    EXPECT_GT(winners.size(), 1U) << "nothing is told from a search without chunks";
}

INSTANTIATE_TEST_SUITE_P(, ThreadCounts,
                         testing::Values(Tie{false, Kind::Odd, 2901, 6},
                                         Tie{false, Kind::Odd, 2687, 8},
                                         Tie{false, Kind::NearTies, 2389, 8},
                                         Tie{true, Kind::NearTies, 3245, 9},
                                         Tie{true, Kind::Rings, 1446, 9}));

} // namespace
