// Addresses of the block model as plain numbers, for formats that have no more than 64 bits.
#pragma once

#include <cstdint>
#include <optional>

#include "blockmodel/HABMAddrValue.h"

namespace tq {

/// Empty for an invalid value and for one of more than 64 bits.
[[nodiscard]] inline std::optional<std::uint64_t> numberOf(const HABMAddrValue& value) {
    return value.isValid() && value.log2() < 64 ? std::optional(value.getLowBits()) : std::nullopt;
}

} // namespace tq
