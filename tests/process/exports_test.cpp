// What the shared libraries export, and what they share with a host that uses the same templates.

#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "HPAParamMgr.h"
#include "clocking/trees46.h"
#include "support/support.h"

/// Another edition of a class that the clock search uses: the thread that it starts has the same
/// type, by name, as the workers of the search.
#pragma GCC visibility push(default)
namespace tf {

class Executor {
public:
    explicit Executor(std::atomic<int>& runs) : m_runs(runs) {}

    void spawn(std::size_t count) { _spawn(count); }
    void join() {
        for (std::thread& thread : m_threads)
            thread.join();
    }

private:
    void _spawn(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            m_threads.emplace_back([this] { ++m_runs; });
    }

    std::atomic<int>& m_runs;
    std::vector<std::thread> m_threads;
};

} // namespace tf
#pragma GCC visibility pop

namespace {

class Exports : public testing::TestWithParam<const char*> {};

TEST_P(Exports, AreOurOwnNamesAlone) {
    const std::regex own("[0-9a-f]+ . "
                         "((typeinfo|typeinfo name|vtable|VTT|guard variable) for |"
                         "(non-virtual|virtual) thunk to )?"
                         "(HBS|HABM|HEX|HUT|HPA|HST|HTC|HXMLW|HAT|HCRapidJson|ComMsg|"
                         "(hbs|hbs_clocking|hardblock|hdi|isl|tq)::).*");
    std::istringstream symbols(
        support::run(std::string("nm -DC --defined-only ") + GetParam()).output);
    int count = 0;
    for (std::string line; std::getline(symbols, line); ++count)
        EXPECT_TRUE(std::regex_match(line.substr(0, 300), own)) << line;
    EXPECT_GT(count, 5);
}

INSTANTIATE_TEST_SUITE_P(, Exports,
                         testing::Values(TQ_ISL_LIBRARY, TQ_COMMON_LIBRARY, TQ_BLOCKMODEL_LIBRARY,
                                         TQ_HBS_LIBRARY, TQ_WORKBENCH_LIBRARY));

TEST(SharedProcess, AHostsThreadsAndTheSearchsWorkersKeepApart) {
    alarm(120); // what mixes them up hangs
    std::atomic<int> runs = 0;
    tf::Executor host(runs);
    host.spawn(3);
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", "2");
    std::uint64_t combinations = 0;
    for (unsigned seed = 0; seed < 20; ++seed) {
        const auto solver =
            trees46::build(trees46::generate(seed, false, 8, trees46::Kind::Ordinary));
        solver->runSolution();
        combinations = std::max(combinations, solver->getSearchStatistics().combinations);
    }
    HPAParamMgr::getParamMgr()->unsetValue("general.maxThreads");
    host.spawn(4);
    host.join();
    alarm(0);
    EXPECT_GT(combinations, 1000U) << "fewer are searched by the calling thread";
    EXPECT_EQ(7, runs);
}

} // namespace
