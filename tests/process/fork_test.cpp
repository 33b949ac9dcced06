// Searches in the children of a process whose own searches have run on several threads.

#include <gtest/gtest.h>

#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>

#include "HPAParamMgr.h"
#include "clocking/trees46.h"

namespace {

constexpr unsigned kSecondsForAChild = 60;
/// Fewer combinations are searched by the calling thread alone.
constexpr std::uint64_t kMostForOneThread = 1000;

/// Whether `action` returns true in a child that then ends as programs do, within the time.
bool holdsInAChild(const std::function<bool()>& action) {
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(kSecondsForAChild);
        std::exit(action() ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    return child > 0 && waitpid(child, &status, 0) == child && status == 0;
}

struct Solved {
    reference46::Tree tree;
    reference46::Solution solution;
};

/// A generated tree that the workers search, with its solution.
Solved solvedOnWorkers(bool sixPlls) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        Solved solved{trees46::generate(seed, sixPlls, 8, trees46::Kind::Ordinary), {}};
        const auto solver = trees46::build(solved.tree);
        if (!solver->runSolution() ||
            solver->getSearchStatistics().combinations <= kMostForOneThread)
            continue;
        solved.solution = trees46::read(*solver);
        return solved;
    }
    ADD_FAILURE() << "no tree was searched on the workers";
    return {};
}

/// Whether this process, and `generations` of children below it, find the same solution.
bool solvesAgain(const Solved& solved, int generations) {
    const auto solver = trees46::build(solved.tree);
    return solver->runSolution() && solved.solution == trees46::read(*solver) &&
           (generations == 0 ||
            holdsInAChild([&] { return solvesAgain(solved, generations - 1); }));
}

class Fork : public testing::TestWithParam<bool> {
protected:
    Fork() { HPAParamMgr::getParamMgr()->setValue("general.maxThreads", "2"); }
    ~Fork() override { HPAParamMgr::getParamMgr()->unsetValue("general.maxThreads"); }
};

TEST_P(Fork, AChildAndItsChildSolveAsTheirParent) {
    const Solved solved = solvedOnWorkers(GetParam());
    EXPECT_TRUE(holdsInAChild([&] { return solvesAgain(solved, 1); }));
    EXPECT_TRUE(solvesAgain(solved, 0)) << "the parent after its children";
}

INSTANTIATE_TEST_SUITE_P(, Fork, testing::Bool(), [](const auto& test) {
    return std::string(test.param ? "SixPlls" : "FourPlls");
});

} // namespace
