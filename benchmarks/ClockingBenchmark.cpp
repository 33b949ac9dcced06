// The cost of one run of the small solvers, from 4 to 400 peripherals.
//
// "Fits" solves at the first tolerance. "Refused" has a request that nothing serves, so that the
// candidate stage runs for all eight tolerances. "Loose" asks for 0 MHz, which every clock meets
// without an error, and last for 2 MHz, which every multiplier serves with a small one: no
// multiplier or pair of them drops out before the last peripheral has been looked at.

#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <string>
#include <type_traits>

#include "clocking/HBSClockingAlgo1Pll.h"
#include "clocking/HBSClockingAlgo2Pll.h"

namespace {

using namespace hbs_clocking;

void addPeripherals(HBSClockingAlgo& solver, std::int64_t count, float loneRequestMhz, bool loose) {
    static constexpr std::array<float, 6> requestsMhz = {100.0F, 200.0F, 50.0F,
                                                         125.0F, 250.0F, 25.0F};
    for (std::int64_t i = 0; i < count; ++i) {
        const auto place = static_cast<std::size_t>(i);
        float mhz = loose ? 0.0F : requestsMhz[place % requestsMhz.size()];
        if (i == count - 1)
            mhz = loneRequestMhz;
        const std::size_t domain = place % solver.getAllPlls().size();
        solver.addPeripheral(std::to_string(i), domain == 0 ? "D0" : "D1", mhz, true);
    }
}

template <class Solver>
void solve(benchmark::State& state, float loneRequestMhz, bool loose) {
    Solver solver("tree");
    solver.setAllowCrossDomain(true);
    solver.createPllConfig("PLL0", "D0");
    if (std::is_same_v<Solver, HBSClockingAlgo2Pll>)
        solver.createPllConfig("PLL1", "D1");
    addPeripherals(solver, state.range(0), loneRequestMhz, loose);
    for (auto _ : state)
        benchmark::DoNotOptimize(solver.runSolution());
    state.SetComplexityN(state.range(0));
}

void onePll(benchmark::State& state, float loneRequestMhz, bool loose) {
    solve<HBSClockingAlgo1Pll>(state, loneRequestMhz, loose);
}

void twoPlls(benchmark::State& state, float loneRequestMhz, bool loose) {
    solve<HBSClockingAlgo2Pll>(state, loneRequestMhz, loose);
}

#define TQ_CASE(solver, name, loneRequestMhz, loose)                                               \
    BENCHMARK_CAPTURE(solver, name, loneRequestMhz, loose)                                         \
        ->Arg(4)                                                                                   \
        ->Arg(24)                                                                                  \
        ->Arg(100)                                                                                 \
        ->Arg(400)                                                                                 \
        ->Unit(benchmark::kMicrosecond)                                                            \
        ->Complexity(benchmark::oN)

TQ_CASE(onePll, Fits, 100.0F, false);
TQ_CASE(onePll, Refused, 1e9F, false);
TQ_CASE(onePll, Loose, 2.0F, true);
TQ_CASE(twoPlls, Fits, 100.0F, false);
TQ_CASE(twoPlls, Refused, 1e9F, false);
TQ_CASE(twoPlls, Loose, 2.0F, true);

} // namespace
