// The solvers of four and six PLLs against the literal search, bit for bit.

#include <gtest/gtest.h>

#include <map>

#include "HPAParamMgr.h"
#include "clocking/trees46.h"

using trees46::Kind;

namespace {

constexpr std::uint64_t kMaxTuples = 40000;
constexpr std::uint64_t kMaxChunkTuples = 600000;

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

class ThreadCounts : public testing::TestWithParam<Family> {};

TEST_P(ThreadCounts, AgreeWithTheLiteralSearchInChunks) {
    const Family& family = GetParam();
    int compared = 0;
    for (unsigned seed = 0; compared < 3 && seed < 3000; ++seed) {
        const unsigned count = family.fewest + seed % (family.most - family.fewest + 1);
        const reference46::Tree tree = trees46::generate(seed, family.sixPlls, count, family.kind);
        const auto solver = trees46::build(tree);
        setThreads(1);
        const std::uint64_t n =
            solver->runSolution() ? solver->getSearchStatistics().combinations : 0;
        if (n <= 1000 || n > 4000)
            continue;
        for (const int threads : {1, 2, 3, 8, 16}) {
            const auto expected = reference46::Search(tree).solve(threads, kMaxChunkTuples);
            if (!expected)
                break;
            setThreads(threads);
            const auto again = trees46::build(tree);
            ASSERT_TRUE(again->runSolution());
            ASSERT_EQ(*expected, trees46::read(*again)) << "seed " << seed << ", " << threads;
            compared += threads == 16 ? 1 : 0;
        }
    }
    EXPECT_EQ(3, compared);
}

INSTANTIATE_TEST_SUITE_P(, ThreadCounts,
                         testing::Values(Family{"Odd", false, Kind::Odd, 3, 8},
                                         Family{"NearTies", false, Kind::NearTies, 3, 10},
                                         Family{"NearTies", true, Kind::NearTies, 4, 12},
                                         Family{"Rings", true, Kind::Rings, 8, 24}));

} // namespace
