// The address spaces of a subsystem drawn as an SVG picture.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/addressing/AddressMap.h"

namespace tq {

/// A picture with one panel per address space. The strip on the left is true to scale; on the right
/// each assigned block and each gap between them has a height that grows with the logarithm of its
/// size, so that a register block of 4 KB can be read beside a memory of 2 GB. A space that nothing
/// was assigned to shows its windows instead.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string drawAddressMap(const AddressMap& map,
                                                             const std::string& title);

/// The pictures of several maps with their titles, side by side; of one map the same as above.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
drawAddressMaps(const std::vector<std::pair<const AddressMap*, std::string>>& maps);

} // namespace tq
