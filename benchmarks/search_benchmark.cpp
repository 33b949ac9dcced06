// Clock trees of four and six PLLs: the search against the literal one, the slowest of a thousand
// trees, growth, and threads.
//
// The literal search of an ordinary tree would run for hours, so it is timed over a slice of its
// combinations and reckoned up: "literal" is its time for the whole step, "times" how much longer
// that is than the solver's whole run. `of1000` gives the slowest run in milliseconds and the
// process's largest resident memory.

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <string>

#include "HPAParamMgr.h"
#include "clocking/trees46.h"

namespace {

using Clock = std::chrono::steady_clock;
using trees46::Kind;

constexpr float kLadder[] = {0.001F, 0.01F, 0.02F, 0.05F, 0.1F, 0.2F, 0.5F, 1.0F};
constexpr std::uint64_t kMost = 300000; ///< combinations that the literal search can lay out
constexpr double kSliceSeconds = 0.2;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

void setThreads(int count) {
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", std::to_string(count));
}

double timeOf(const reference46::Tree& tree, std::uint64_t& combinations) {
    const auto solver = trees46::build(tree);
    const Clock::time_point start = Clock::now();
    combinations = solver->runSolution() ? solver->getSearchStatistics().combinations : 0;
    return secondsSince(start);
}

/// What the literal search would take for the step that the solver ended at.
double literalTimeOf(const reference46::Tree& tree, float tolerance) {
    reference46::Search search(tree);
    const Clock::time_point start = Clock::now();
    std::vector<reference46::Combination> combinations;
    for (const float step : kLadder) {
        combinations = search.combinationsOfStep(step);
        if (step == tolerance)
            break;
    }
    const double laidOut = secondsSince(start);
    const Clock::time_point begin = Clock::now();
    std::size_t done = 0;
    while (done < combinations.size() && secondsSince(begin) < kSliceSeconds) {
        benchmark::DoNotOptimize(search.evaluate(combinations, done, done + 1));
        ++done;
    }
    return laidOut + secondsSince(begin) * static_cast<double>(combinations.size()) /
                         static_cast<double>(done);
}

void againstLiteral(benchmark::State& state, bool sixPlls) {
    setThreads(1);
    for (auto _ : state) {
        double logs = 0.0;
        double least = 1e30;
        int trees = 0;
        for (unsigned seed = 0; trees < 12 && seed < 2000; ++seed) {
            const auto tree = trees46::generate(seed, sixPlls, 12 + seed % 13, Kind::Plain);
            std::uint64_t combinations = 0;
            const double own = timeOf(tree, combinations);
            if (combinations < 1000 || combinations > kMost)
                continue;
            const auto solver = trees46::build(tree);
            solver->runSolution();
            const double times = literalTimeOf(tree, solver->getToleranceFector()) / own;
            logs += std::log(times);
            least = std::min(least, times);
            ++trees;
        }
        state.counters["trees"] = trees;
        state.counters["times_geomean"] = std::exp(logs / std::max(trees, 1));
        state.counters["times_least"] = least;
    }
}

/// Trees so small that the literal search runs whole: the least of its times by the solver's, each
/// the best of three runs.
void ofSmall(benchmark::State& state, bool sixPlls) {
    constexpr std::uint64_t mostTuples = 300000;
    setThreads(1);
    for (auto _ : state) {
        double least = 1e30;
        int trees = 0;
        for (unsigned seed = 0; seed < 600; ++seed) {
            const auto tree = trees46::generate(seed, sixPlls, 4 + seed % 21, Kind::Plain);
            double own = 1e30;
            double literal = 1e30;
            bool isSmall = true;
            for (int run = 0; run < 3 && isSmall; ++run) {
                std::uint64_t combinations = 0;
                own = std::min(own, timeOf(tree, combinations));
                const Clock::time_point start = Clock::now();
                isSmall = reference46::Search(tree).solve(1, mostTuples).has_value();
                literal = std::min(literal, secondsSince(start));
            }
            trees += isSmall ? 1 : 0;
            least = isSmall ? std::min(least, literal / own) : least;
        }
        state.counters["trees"] = trees;
        state.counters["times_least"] = least;
    }
}

void of1000(benchmark::State& state, bool sixPlls, Kind kind) {
    setThreads(1);
    for (auto _ : state) {
        double slowest = 0.0;
        double sum = 0.0;
        for (unsigned seed = 0; seed < 1000; ++seed) {
            std::uint64_t combinations = 0;
            const double own = timeOf(trees46::generate(seed, sixPlls, 24, kind), combinations);
            slowest = std::max(slowest, own);
            sum += own;
        }
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        state.counters["slowest_ms"] = slowest * 1e3;
        state.counters["mean_ms"] = sum;
        state.counters["resident_MiB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
    }
}

/// Ten trees of so many peripherals, on so many threads.
void growth(benchmark::State& state) {
    setThreads(static_cast<int>(state.range(1)));
    for (auto _ : state) {
        for (unsigned seed = 0; seed < 10; ++seed) {
            std::uint64_t combinations = 0;
            benchmark::DoNotOptimize(timeOf(
                trees46::generate(seed, true, static_cast<unsigned>(state.range(0)), Kind::Plain),
                combinations));
        }
    }
}

BENCHMARK_CAPTURE(of1000, sixPlls, true, Kind::Plain)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(of1000, sixPllsOrdinary, true, Kind::Ordinary)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(of1000, fourPlls, false, Kind::Plain)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(againstLiteral, sixPlls, true)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(againstLiteral, fourPlls, false)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ofSmall, sixPlls, true)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ofSmall, fourPlls, false)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(growth)
    ->ArgNames({"peripherals", "threads"})
    ->ArgsProduct({{8, 24, 60, 200}, {1, 2}})
    ->Unit(benchmark::kMillisecond);

} // namespace
