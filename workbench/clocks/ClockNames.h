// Names of a tree in options, with the nearest known one for a mistyped one.
#pragma once

#include <string>
#include <string_view>

#include "workbench/clocks/ClockTree.h"

namespace tq {

/// Position of the PLL of that name among all, in the order of the file. Raises `InputError`, which
/// begins with `context`, for a name that the tree doesn't have.
[[nodiscard]] std::size_t findPll(const ClockTree& tree, std::string_view name,
                                  const std::string& context);
/// Position of the peripheral of that name, likewise.
[[nodiscard]] std::size_t findPeripheral(const ClockTree& tree, std::string_view name,
                                         const std::string& context);

[[nodiscard]] std::vector<std::string_view> pllNames(const ClockTree& tree);
[[nodiscard]] std::vector<std::string_view> peripheralNames(const ClockTree& tree);

/// A text in two parts, divided at the last such character.
struct Halves {
    std::string left;
    std::string right;
};
/// Raises `InputError` with `context` and `form`, as in "expected PLL.max=MHZ", where the character
/// is missing.
[[nodiscard]] Halves splitAtLast(const std::string& text, char divider, const std::string& context,
                                 const std::string& form);

/// A finite number from 0 up, in the form of the C locale. Raises `InputError` with `context`.
[[nodiscard]] double readNumber(const std::string& text, const std::string& context);

} // namespace tq
