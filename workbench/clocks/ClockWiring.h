// Which clocks reach which domain of a tree. Independent of the solvers, for the checks of their
// results.
#pragma once

#include <cstddef>

#include "workbench/clocks/ClockTree.h"

namespace tq {

enum class ClockWay {
    None,
    Direct,
    Across ///< through the PLL's cross-domain divider
};

/// How the clock of a PLL (its position among all, in the order of the file) comes to the
/// peripherals of a domain. The tree has the shape that its solver expects.
[[nodiscard]] ClockWay wayOf(const ClockTree& tree, std::size_t pll, std::size_t domain);

/// Position of the peripheral's domain.
[[nodiscard]] std::size_t domainOf(const ClockTree& tree, const ClockTree::Peripheral& peripheral);

/// Whether the peripheral may take the PLL's clock: two peripherals of trees of six PLLs are barred
/// from two of them by name.
[[nodiscard]] bool mayTake(const ClockTree& tree, const ClockTree::Peripheral& peripheral,
                           std::size_t pll);

} // namespace tq
