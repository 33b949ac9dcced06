// Clock trees of four and six PLLs: families of generated trees, the slowest trees known, a climber
// that looks for slower ones, threads, and the search against the literal one.
//
// Times are processor time. `family` gives the quantiles and the slowest of many trees in
// milliseconds, and the slowest as a ratio to the median of the plain family, since machines
// differ. `climb` changes trees at random for SEARCH_CLIMB_SECONDS (20 by default) and writes the
// slowest one to standard error; lines worth keeping go into SlowTrees.txt.
//
// The literal search of an ordinary tree would run for hours, so it is timed over a slice of its
// combinations and reckoned up: "literal" is its time for the whole step, "times" how much longer
// that is than the solver's whole run.

#include <benchmark/benchmark.h>

#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

#include "HPAParamMgr.h"
#include "SearchTrees.h"
#include "clocking/trees46.h"

namespace {

using reference46::Tree;
using search_trees::Family;
using trees46::Kind;

constexpr float kLadder[] = {0.001F, 0.01F, 0.02F, 0.05F, 0.1F, 0.2F, 0.5F, 1.0F};
constexpr std::uint64_t kMost = 300000; ///< combinations that the literal search can lay out
constexpr double kSliceSeconds = 0.2;

double cpuSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double secondsSince(double start) {
    return cpuSeconds() - start;
}

void setThreads(int count) {
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", std::to_string(count));
}

double timeOf(const reference46::Tree& tree, std::uint64_t& combinations) {
    const auto solver = trees46::build(tree);
    const double start = cpuSeconds();
    combinations = solver->runSolution() ? solver->getSearchStatistics().combinations : 0;
    return secondsSince(start);
}

/// What the literal search would take for the step that the solver ended at.
double literalTimeOf(const reference46::Tree& tree, float tolerance) {
    reference46::Search search(tree);
    const double start = cpuSeconds();
    std::vector<reference46::Combination> combinations;
    for (const float step : kLadder) {
        combinations = search.combinationsOfStep(step);
        if (step == tolerance)
            break;
    }
    const double laidOut = secondsSince(start);
    const double begin = cpuSeconds();
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
            if (combinations < 3000 || combinations > kMost)
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
                const double start = cpuSeconds();
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

double timeOf(const Tree& tree) {
    std::uint64_t combinations = 0;
    return timeOf(tree, combinations);
}

double quantile(const std::vector<double>& sorted, double part) {
    const auto place = static_cast<std::size_t>(part * static_cast<double>(sorted.size()));
    return sorted[std::min(sorted.size() - 1, place)];
}

std::vector<double> timesOf(Family family, bool sixPlls, unsigned peripherals, unsigned count) {
    std::vector<double> times;
    for (unsigned seed = 0; seed < count; ++seed)
        times.push_back(timeOf(search_trees::generate(family, seed, sixPlls, peripherals)));
    std::sort(times.begin(), times.end());
    return times;
}

void family(benchmark::State& state, Family family, bool sixPlls, unsigned peripherals,
            unsigned count) {
    setThreads(1);
    for (auto _ : state) {
        const double plain = quantile(timesOf(Family::Plain, true, 24, 200), 0.5);
        const std::vector<double> times = timesOf(family, sixPlls, peripherals, count);
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        state.counters["p50_ms"] = quantile(times, 0.5) * 1e3;
        state.counters["p99_ms"] = quantile(times, 0.99) * 1e3;
        state.counters["p99.9_ms"] = quantile(times, 0.999) * 1e3;
        state.counters["slowest_ms"] = times.back() * 1e3;
        state.counters["slowest_to_plain"] = times.back() / plain;
        state.counters["resident_MiB"] = static_cast<double>(usage.ru_maxrss) / 1024.0;
    }
}

std::vector<Tree> slowTrees() {
    std::ifstream file(SLOW_TREES_FILE);
    std::vector<Tree> trees;
    for (std::string line; std::getline(file, line);)
        if (!line.empty() && line[0] != '#')
            trees.push_back(search_trees::fromText(line));
    return trees;
}

void slowest(benchmark::State& state) {
    setThreads(static_cast<int>(state.range(0)));
    const std::vector<Tree> trees = slowTrees();
    for (auto _ : state)
        for (const Tree& tree : trees)
            benchmark::DoNotOptimize(timeOf(tree));
    std::vector<double> times;
    for (const Tree& tree : trees)
        times.push_back(timeOf(tree));
    state.counters["trees"] = static_cast<double>(times.size());
    state.counters["slowest_ms"] = *std::max_element(times.begin(), times.end()) * 1e3;
}

/// One climb: from the slowest of some trees on, each change that isn't faster is kept.
double climbOnce(trees::Dice& dice, double end, Tree& worst) {
    const bool sixPlls = !dice.oneIn(4);
    const unsigned peripherals = dice.oneIn(2) ? 24 : 8;
    double time = 0.0;
    for (int i = 0; i < 100 && cpuSeconds() < end; ++i) {
        const Tree tree =
            search_trees::generate(Family::Mixture, dice.below(1000000), sixPlls, peripherals);
        const double own = timeOf(tree);
        worst = own > time ? tree : worst;
        time = std::max(time, own);
    }
    for (int failures = 0; failures < 300 && cpuSeconds() < end; ++failures) {
        Tree tree = worst;
        search_trees::mutate(tree, dice);
        const double own = timeOf(tree) > time ? timeOf(tree) : 0.0; // twice, against noise
        if (own <= time)
            continue;
        time = own;
        worst = tree;
        failures = 0;
    }
    return time;
}

void climb(benchmark::State& state) {
    const char* const text = std::getenv("SEARCH_CLIMB_SECONDS");
    const double seconds = text == nullptr ? 20.0 : std::stod(text);
    const char* const seed = std::getenv("SEARCH_CLIMB_SEED");
    setThreads(1);
    for (auto _ : state) {
        trees::Dice dice(seed == nullptr ? 1U : static_cast<unsigned>(std::stoul(seed)));
        double slowestTime = 0.0;
        for (const double end = cpuSeconds() + seconds; cpuSeconds() < end;) {
            Tree worst;
            const double time = climbOnce(dice, end, worst);
            if (time <= slowestTime)
                continue;
            slowestTime = time;
            std::cerr << "# " << time * 1e3 << " ms\n" << search_trees::toText(worst) << '\n';
        }
        state.counters["slowest_ms"] = slowestTime * 1e3;
    }
}

constexpr auto kMs = benchmark::kMillisecond;
BENCHMARK_CAPTURE(family, plain, Family::Plain, true, 24, 1000)->Iterations(1)->Unit(kMs);
BENCHMARK_CAPTURE(family, mixed, Family::Mixed, true, 24, 1000)->Iterations(1)->Unit(kMs);
BENCHMARK_CAPTURE(family, nearTies, Family::NearTie, true, 24, 1000)->Iterations(1)->Unit(kMs);
BENCHMARK_CAPTURE(family, peripherals8, Family::Mixture, true, 8, 1000)->Iterations(1)->Unit(kMs);
BENCHMARK_CAPTURE(family, peripherals60, Family::Mixture, true, 60, 200)->Iterations(1)->Unit(kMs);
BENCHMARK_CAPTURE(family, peripherals200, Family::Mixture, true, 200, 60)->Iterations(1)->Unit(kMs);
BENCHMARK_CAPTURE(family, peripherals1000, Family::Mixture, true, 1000, 20)
    ->Iterations(1)
    ->Unit(kMs);
BENCHMARK_CAPTURE(family, fourPlls, Family::Mixture, false, 24, 1000)->Iterations(1)->Unit(kMs);
BENCHMARK(slowest)->ArgName("threads")->Arg(1)->Arg(2)->Iterations(3)->Unit(kMs)->UseRealTime();
BENCHMARK(climb)->Iterations(1)->Unit(kMs);
BENCHMARK_CAPTURE(againstLiteral, sixPlls, true)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(againstLiteral, fourPlls, false)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ofSmall, sixPlls, true)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ofSmall, fourPlls, false)->Iterations(1)->Unit(benchmark::kMillisecond);
} // namespace
