// Clock trees for timing the search: families of generated trees, small changes that a climber
// makes to a tree, and trees as lines of text.
#pragma once

#include <string>

#include "clocking/dice.h"
#include "clocking/reference46.h"

namespace search_trees {

enum class Family {
    Plain,   ///< 33.333 MHz, limits of 2000 MHz
    Mixed,   ///< references of 10 to 90 MHz and limits of 400 to 3000
    NearTie, ///< requests from a dozen round values, and one of 2.5 to 4 GHz
    Mixture  ///< of these and of the test suite's kinds
};

/// The same arguments give the same tree everywhere.
reference46::Tree generate(Family family, unsigned seed, bool sixPlls, unsigned peripherals);

/// Changes one to three things in a tree: a frequency, a limit, the domain of a peripheral.
void mutate(reference46::Tree& tree, trees::Dice& dice);

/// Reference, crossing limit, the PLLs' limits by domain, then the peripherals as domain:request,
/// all in MHz; "n" marks the NOC peripheral, "b" one that is barred by name from some PLLs, "d" a
/// disabled one.
std::string toText(const reference46::Tree& tree);
/// The reverse. Throws `std::invalid_argument` for a line that isn't a tree.
reference46::Tree fromText(const std::string& line);

} // namespace search_trees
