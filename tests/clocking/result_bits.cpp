// Prints every bit of the results of a few hundred generated trees. Built without optimisation and
// with all of it; both must print the same.

#include <iostream>

#include "clocking/trees.h"

int main() {
    for (unsigned seed = 10000; seed < 10400; ++seed)
        for (const unsigned domains : {1U, 2U}) {
            const auto solver = trees::build(trees::generate(seed, domains));
            solver->runSolution();
            std::cout << trees::describe(*solver);
        }
}
