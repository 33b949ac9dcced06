// The solvers of four and six PLLs against the literal search, bit for bit.

#include <gtest/gtest.h>

#include <map>

#include "HPAParamMgr.h"
#include "clocking/trees46.h"

using trees46::Kind;

namespace {

constexpr std::uint64_t kMaxTuples = 60000;

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
    std::map<float, int> endedAt;
    int compared = 0;
    for (unsigned seed = 0; compared < 400 && seed < 20000; ++seed) {
        const unsigned count = family.fewest + seed % (family.most - family.fewest + 1);
        const reference46::Tree tree = trees46::generate(seed, family.sixPlls, count, family.kind);
        const int threads = 1 + static_cast<int>(seed % 9);
        const auto expected = reference46::Search(tree).solve(threads, kMaxTuples);
        if (!expected)
            continue;
        setThreads(threads);
        const auto solver = trees46::build(tree);
        ASSERT_EQ(expected->found, solver->runSolution()) << "seed " << seed;
        ASSERT_EQ(*expected, trees46::read(*solver)) << "seed " << seed;
        ++compared;
        ++endedAt[expected->found ? expected->tolerance : -1.0F];
    }
    std::printf("compared %d:", compared);
    for (auto& [t, n] : endedAt)
        std::printf(" %g:%d", static_cast<double>(t), n);
    std::printf("\n");
}

INSTANTIATE_TEST_SUITE_P(, LiteralSearch,
                         testing::Values(Family{"Odd", false, Kind::Odd, 3, 8},
                                         Family{"Odd", true, Kind::Odd, 4, 14},
                                         Family{"Ordinary", false, Kind::Ordinary, 4, 16},
                                         Family{"Ordinary", true, Kind::Ordinary, 6, 24},
                                         Family{"NearTies", false, Kind::NearTies, 3, 10},
                                         Family{"NearTies", true, Kind::NearTies, 4, 12},
                                         Family{"Rings", false, Kind::Rings, 4, 12},
                                         Family{"Rings", true, Kind::Rings, 8, 24}));

} // namespace
