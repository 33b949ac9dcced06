// Prints every bit of the results of a few hundred generated trees. Built without optimisation and
// with all of it, by whichever compiler there is; all must print the same.

#include <iostream>

#include "HPAParamMgr.h"
#include "clocking/search/SharedExecutor.h"
#include "clocking/trees.h"
#include "clocking/trees46.h"

/// Which thread does a part makes no difference to its bits, and the pool takes long to compile.
void hbs_clocking::runOnSharedExecutor(const std::string&, unsigned count,
                                       const std::function<void(unsigned)>& task) {
    for (unsigned i = 0; i < count; ++i)
        task(i);
}

namespace {

void printSmallTrees() {
    for (unsigned seed = 10000; seed < 10400; ++seed)
        for (const unsigned domains : {1U, 2U}) {
            const auto solver = trees::build(trees::generate(seed, domains));
            solver->runSolution();
            std::cout << trees::describe(*solver);
        }
}

void printLargeTrees() {
    HPAParamMgr::getParamMgr()->setValue("general.maxThreads", "2");
    for (const trees46::Kind kind : {trees46::Kind::Ordinary, trees46::Kind::NearTies})
        for (unsigned seed = 0; seed < 12; ++seed)
            for (const bool sixPlls : {false, true}) {
                const auto solver =
                    trees46::build(trees46::generate(seed, sixPlls, 6 + seed % 5, kind));
                solver->runSolution();
                std::cout << trees::describe(*solver);
            }
}

} // namespace

int main() {
    printSmallTrees();
    printLargeTrees();
}
