// Addresses and sizes of up to 64 bits for people.
#pragma once

#include <array>
#include <charconv>
#include <cstdint>
#include <string>

namespace tq {

/// "0xFF000000".
[[nodiscard]] inline std::string hexText(std::uint64_t number) {
    std::array<char, 16> digits{};
    char* const end = std::to_chars(digits.begin(), digits.end(), number, 16).ptr;
    std::string text = "0x";
    for (const char* digit = digits.begin(); digit != end; ++digit)
        text += *digit >= 'a' ? static_cast<char>(*digit - 'a' + 'A') : *digit;
    return text;
}

/// The bytes from the first address to the last in the largest unit that divides them: "64K", "2G".
[[nodiscard]] inline std::string sizeText(std::uint64_t first, std::uint64_t last) {
    if (last - first == UINT64_MAX)
        return "16E";
    std::uint64_t size = last - first + 1;
    const char* unit = "";
    for (const char* larger : {"K", "M", "G", "T", "P", "E"}) {
        if (size % 1024 != 0)
            break;
        size /= 1024;
        unit = larger;
    }
    return std::to_string(size) + unit;
}

} // namespace tq
