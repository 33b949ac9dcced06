// Addresses as texts.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace base {

/// "0x" and hexadecimal digits, or decimal digits, with "_" between them at will. Nothing for any
/// other text, and for what 64 bits can't hold.
[[nodiscard]] inline std::optional<std::uint64_t> readAddress(std::string_view text) {
    const bool isHex = text.starts_with("0x") || text.starts_with("0X");
    std::string digits(text.substr(isHex ? 2 : 0));
    digits.erase(std::remove(digits.begin(), digits.end(), '_'), digits.end());
    std::uint64_t address = 0;
    const char* end = digits.data() + digits.size();
    const auto [stop, error] = std::from_chars(digits.data(), end, address, isHex ? 16 : 10);
    return error == std::errc() && stop == end ? std::optional(address) : std::nullopt;
}

} // namespace base
