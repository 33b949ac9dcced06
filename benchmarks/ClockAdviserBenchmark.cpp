// The adviser against bare runs of the solvers, in CPU time of one thread.

#include <benchmark/benchmark.h>

#include <filesystem>

#include "support/temp_dir.h"
#include "workbench/clock_trees.h"
#include "workbench/clocks/ClockBatch.h"
#include "workbench/clocks/ClockConflicts.h"
#include "workbench/clocks/ClockSweep.h"

namespace {

constexpr unsigned kTrees = 1000;

/// A third each of trees of two, four and six PLLs.
[[nodiscard]] tq::ClockTree treeOf(unsigned seed) {
    return clock_trees::generate(seed, std::array{2U, 4U, 6U}[seed % 3], 24);
}

[[nodiscard]] std::string fileOf(const tq::ClockTree& tree) {
    std::ostringstream out;
    out << "{\"plls\": " << tree.pllCount << ", \"reference_mhz\": " << tree.referenceMhz
        << ", \"domains\": [";
    for (const tq::ClockTree::Domain& domain : tree.domains) {
        out << (&domain == tree.domains.data() ? "" : ", ") << "{\"name\": \"" << domain.name
            << "\", \"plls\": [";
        for (const tq::ClockTree::Pll& pll : domain.plls)
            out << (&pll == domain.plls.data() ? "" : ", ") << "{\"name\": \"" << pll.name
                << "\", \"max_mhz\": " << pll.maxMhz << "}";
        out << "]}";
    }
    out << "], \"peripherals\": [";
    for (const tq::ClockTree::Peripheral& p : tree.peripherals)
        out << (&p == tree.peripherals.data() ? "" : ", ") << "{\"name\": \"" << p.name
            << "\", \"domain\": \"" << p.domain << "\", \"mhz\": " << p.mhz
            << ", \"noc\": " << (p.noc ? "true" : "false") << "}";
    out << "]}";
    return out.str();
}

void bareSolver(benchmark::State& state) {
    std::vector<tq::ClockTree> trees;
    for (unsigned seed = 0; seed < kTrees; ++seed)
        trees.push_back(treeOf(seed));
    tq::LibraryTexts texts;
    for ([[maybe_unused]] auto round : state)
        for (const tq::ClockTree& tree : trees) {
            const auto solver = tq::buildClockSolver(tree);
            solver->setSharesSolutions(false);
            benchmark::DoNotOptimize(solver->runSolution());
        }
    state.SetItemsProcessed(state.iterations() * kTrees);
}
BENCHMARK(bareSolver)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

void batchOfFiles(benchmark::State& state) {
    const support::TempDir dir;
    std::vector<std::string> paths;
    for (unsigned seed = 0; seed < kTrees; ++seed)
        paths.push_back(dir.write(std::to_string(seed) + ".json", fileOf(treeOf(seed))));
    for ([[maybe_unused]] auto round : state)
        benchmark::DoNotOptimize(tq::runClockBatch(paths, nullptr, 1));
    state.SetItemsProcessed(state.iterations() * kTrees);
}
BENCHMARK(batchOfFiles)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

/// Of trees that can't be solved: one run, and the first conflicting set.
void oneRun(benchmark::State& state) {
    const auto plls = static_cast<unsigned>(state.range(0));
    const tq::ClockTree tree = clock_trees::generate(1, plls, 24, 0.5F);
    for ([[maybe_unused]] auto round : state)
        benchmark::DoNotOptimize(tq::runClockTree(tree));
}
BENCHMARK(oneRun)->Arg(2)->Arg(4)->Arg(6)->Unit(benchmark::kMicrosecond);

void firstConflict(benchmark::State& state) {
    const auto plls = static_cast<unsigned>(state.range(0));
    const tq::ClockTree tree = clock_trees::generate(1, plls, 24, 0.5F);
    for ([[maybe_unused]] auto round : state)
        benchmark::DoNotOptimize(tq::findClockConflicts(tree, 1));
}
BENCHMARK(firstConflict)->Arg(2)->Arg(4)->Arg(6)->Unit(benchmark::kMicrosecond);

void sweepOfReferences(benchmark::State& state) {
    const tq::ClockTree tree = tq::readClockTree(
        tq::JsonFile::read(TQ_SOURCE_DIR "/examples/clocks/programmable_soc.json"));
    const tq::ClockSweep sweep = tq::readClockSweep(tree, "reference=20.1:40:0.2");
    for ([[maybe_unused]] auto round : state)
        benchmark::DoNotOptimize(tq::runClockSweep(tree, sweep));
}
BENCHMARK(sweepOfReferences)->Unit(benchmark::kMillisecond);

} // namespace
