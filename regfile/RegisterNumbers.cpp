#include "regfile/RegisterNumbers.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>

namespace hbs::regfile {

namespace {

constexpr std::uint8_t kPrefix = 16; // x or X
constexpr std::uint8_t kOther = 17;

constexpr std::array<std::uint8_t, 256> kDigits = [] {
    std::array<std::uint8_t, 256> digits{};
    digits.fill(kOther);
    for (std::uint8_t i = 0; i < 10; ++i)
        digits['0' + i] = i;
    for (std::uint8_t i = 0; i < 6; ++i)
        digits['A' + i] = digits['a' + i] = static_cast<std::uint8_t>(10 + i);
    digits['x'] = digits['X'] = kPrefix;
    return digits;
}();

} // namespace

std::uint64_t hexValue(std::string_view text) {
    std::uint64_t value = 0;
    for (const char letter : text) {
        const std::uint8_t digit = kDigits[static_cast<unsigned char>(letter)];
        if (digit == kOther)
            return std::numeric_limits<std::uint64_t>::max();
        value = digit == kPrefix ? 0 : value << 4 | digit;
    }
    return value;
}

std::string hexText(std::uint32_t value) {
    std::string digits;
    for (; value != 0; value >>= 4)
        digits += "0123456789ABCDEF"[value & 0xF];
    std::reverse(digits.begin(), digits.end());
    return digits;
}

std::string absoluteOffset(std::string_view offset, std::string_view baseAddress) {
    std::string term(offset);
    if (const std::size_t plus = term.find('+'); plus != std::string::npos) {
        term.resize(plus);
        std::erase(term, ' ');
    }
    return "0X" + hexText(static_cast<std::uint32_t>(hexValue(term) + hexValue(baseAddress)));
}

int dimValue(const std::string& text) {
    try {
        return std::stoi(text);
    } catch (const std::invalid_argument&) {
        throw std::invalid_argument("invalid stoi argument");
    } catch (const std::out_of_range&) {
        throw std::out_of_range("stoi argument out of range");
    }
}

} // namespace hbs::regfile
