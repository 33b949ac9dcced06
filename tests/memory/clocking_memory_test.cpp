// Clock trees of one, two, four and six PLLs while memory runs out.

#include <gtest/gtest.h>

#include <stdexcept>

#include "HPAParamMgr.h"
#include "clocking/HBSClockingAlgoMgr.h"
#include "memory/trial.h"
#include "workbench/clocks/ClockTree.h"

using namespace hbs_clocking;

namespace {

/// A small tree. No two calls give peripherals of the same names, so that the process's store of
/// solutions never knows a tree.
tq::ClockTree tree(unsigned pllCount) {
    static unsigned made = 0;
    const std::string mark = std::to_string(1'000'000'000 + ++made);
    tq::ClockTree tree;
    tree.pllCount = pllCount;
    const auto addDomain = [&](const std::string& name, unsigned plls) {
        tree.domains.push_back({name, {}});
        for (unsigned i = 0; i < plls; ++i)
            tree.domains.back().plls.push_back(
                {"PLL_" + name + std::to_string(i), 1200.0F, name == "NOC_DOMAIN"});
    };
    const auto add = [&](const std::string& domain, float mhz) {
        tree.peripherals.push_back({"P" + std::to_string(tree.peripherals.size()) + "_" + mark,
                                    domain, mhz, 100.0F, true, domain == "NOC_DOMAIN"});
    };
    addDomain("LOW", 1);
    if (pllCount > 2)
        addDomain("NOC_DOMAIN", 1);
    if (pllCount > 1)
        addDomain("FAST", pllCount == 6 ? 2 : 1);
    if (pllCount > 2)
        addDomain("IO", pllCount == 6 ? 2 : 1);
    for (const auto& domain : tree.domains)
        add(domain.name, domain.name == "NOC_DOMAIN" ? 1000.0F : 100.0F);
    add("LOW", 33.333F);
    return tree;
}

std::string describe(const HBSClockingAlgo& solver) {
    std::string text = std::to_string(solver.is_result_found()) + " " +
                       std::to_string(solver.getToleranceFector()) + " " +
                       std::to_string(solver.getTotalRelativeError());
    for (const HBSPll* pll : solver.getAllPlls())
        text += "\n" + pll->getName() + " " + std::to_string(pll->getVcoMul()) + " " +
                std::to_string(pll->getClkoutDiv());
    for (const HBSPeripheral* p : solver.getAllPeripherals())
        text += "\n" + p->getPllName() + " " + std::to_string(p->getClkoutDiv()) + " " +
                std::to_string(p->getActualFreq());
    return text;
}

/// Builds and solves; where that fails, the same solver has to find the right solution later.
std::string solve(const memory::Attempt& attempt, unsigned pllCount) {
    const tq::ClockTree input = tree(pllCount);
    const auto solver = tq::buildClockSolver(input);
    try {
        attempt([&] { return solver->runSolution(); });
    } catch (const std::bad_alloc&) {
        solver->runSolution();
        if (describe(*solver) != attempt.right())
            throw std::logic_error("the solver is spoilt");
        throw;
    }
    return describe(*solver);
}

struct Case {
    unsigned pllCount;
    int threads;
    std::uint64_t step = 1;
};

class Clocks : public testing::TestWithParam<Case> {};

TEST_P(Clocks, AreSolvedOrTheCallerLearnsThatMemoryRanOut) {
    const auto [pllCount, threads, step] = GetParam();
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", std::to_string(threads));
    const unsigned plls = pllCount;
    memory::run({.operation = [&](const memory::Attempt& attempt) { return solve(attempt, plls); },
                 .step = step});
}

INSTANTIATE_TEST_SUITE_P(, Clocks,
                         testing::Values(Case{1, 1}, Case{2, 1}, Case{4, 1}, Case{6, 1},
                                         Case{4, 2, 7}, Case{6, 2, 7}),
                         [](const auto& param) {
                             return std::to_string(param.param.pllCount) + "Plls" +
                                    std::to_string(param.param.threads) + "Threads";
                         });

TEST(ClockTree, AFirstSearchMakesItsThreadsOrTheCallerLearnsThatMemoryRanOut) {
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", "2");
    memory::run({.operation = [](const memory::Attempt& attempt) { return solve(attempt, 4); },
                 .fresh = true,
                 .step = 7});
}

TEST(ClockTree, ATreeIsBuiltWholeOrNotAtAll) {
    memory::failEachAllocation([](const memory::Attempt& attempt) {
        const tq::ClockTree input = tree(4);
        return attempt([&] { return tq::buildClockSolver(input); })->getAllPlls().back()->getName();
    });
}

TEST(ClockTree, TheListOfSolversStaysAsItWas) {
    memory::failEachAllocation([](const memory::Attempt& attempt) {
        HBSClockingAlgoMgr& manager = *HBSClockingAlgoMgr::getGlobal();
        HBSClockingAlgo* added = nullptr;
        try {
            added = attempt(
                [&] { return manager.addClockingAlgo("a name too long for a short text", 2); });
        } catch (const std::bad_alloc&) {
            if (manager.getClockingAlgo("a name too long for a short text") != nullptr)
                throw std::logic_error("a solver was left behind");
            throw;
        }
        return std::string(manager.deleteClockingAlgo(added) ? "deleted" : "");
    });
}

} // namespace
