// The numbers of a register description file: how their texts are read and written.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace hbs::regfile {

/// Reads every text as hexadecimal: the digits after the last "x" or "X", or all of them. The
/// empty text is 0; a text with any other character gives the all-ones value. Of more than 16
/// digits the last 16 count.
[[nodiscard]] std::uint64_t hexValue(std::string_view text);

/// Upper-case digits without leading zeros; empty for 0.
[[nodiscard]] std::string hexText(std::uint32_t value);

/// "0X" and the digits of base plus offset, cut to 32 bits. Of a sum in the offset only the first
/// term counts.
[[nodiscard]] std::string absoluteOffset(std::string_view offset, std::string_view baseAddress);

/// What `std::stoi` gives, with the texts "invalid stoi argument" and "stoi argument out of range"
/// in its exceptions.
[[nodiscard]] int dimValue(const std::string& text);

} // namespace hbs::regfile
