// Addresses of the block model as plain numbers, for formats that have no more than 64 bits.
#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string>

#include "blockmodel/HABMAddrValue.h"

namespace tq {

/// Empty for an invalid value and for one of more than 64 bits.
[[nodiscard]] inline std::optional<std::uint64_t> numberOf(const HABMAddrValue& value) {
    if (!value.isValid())
        return std::nullopt;
    const std::string text = value.getHexStringValue(0);
    std::uint64_t number = 0;
    const auto [end, error] =
        std::from_chars(text.data() + 2, text.data() + text.size(), number, 16);
    return error == std::errc() ? std::optional(number) : std::nullopt;
}

} // namespace tq
