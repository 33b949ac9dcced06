// The address spaces of a subsystem drawn as an SVG picture.
#pragma once

#include <string>

#include "host/AddressMap.h"

namespace host {

/// A picture with one panel per address space. The strip on the left is true to scale; on the right
/// each assigned block and each gap between them has a height that grows with the logarithm of its
/// size, so that a register block of 4 KB can be read beside a memory of 2 GB. A space that nothing
/// was assigned to shows its windows instead.
[[nodiscard]] std::string drawAddressMap(const AddressMap& map, const std::string& title);

/// The same picture in a page of its own.
[[nodiscard]] std::string drawAddressMapPage(const AddressMap& map, const std::string& title);

} // namespace host
