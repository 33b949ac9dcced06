#include "blockmodel/HABMAddrValue.h"

#include <boost/multiprecision/cpp_int.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstddef>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace {

constexpr std::string_view kUnits = "KMGT";
constexpr unsigned kBitsPerUnit = 10;

bool hasHexPrefix(std::string_view text) {
    return text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

/// Removes a unit from the end of a decimal text and returns its binary logarithm, 0 for none.
unsigned takeUnit(std::string_view& text) {
    if (text.empty())
        return 0;
    const char letter = text.back() >= 'a' && text.back() <= 'z'
                            ? static_cast<char>(text.back() - 'a' + 'A')
                            : text.back();
    const std::size_t unit = kUnits.find(letter);
    if (unit == std::string_view::npos)
        return 0;
    text.remove_suffix(1);
    return kBitsPerUnit * (static_cast<unsigned>(unit) + 1);
}

bool isAllDigits(std::string_view text, bool hexadecimal) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [&](char c) {
        return (c >= '0' && c <= '9') ||
               (hexadecimal && ((c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F')));
    });
}

std::string hexDigits(std::uint64_t number, std::size_t leastDigits) {
    std::array<char, 16> digits;
    const auto result = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16);
    const auto count = static_cast<std::size_t>(result.ptr - digits.data());
    std::string text(count < leastDigits ? leastDigits - count : 0, '0');
    return text.append(digits.data(), count);
}

} // namespace

/// Converts between the two halves and a wide integer for the arithmetic. The integer throws when a
/// result doesn't fit, which `calculate` turns into an invalid value.
struct HABMAddrValue::Wide {
    using Integer = boost::multiprecision::checked_uint128_t;

    static Integer of(const HABMAddrValue& value) {
        return (Integer(value.highHalf()) << 64) | Integer(value.m_low);
    }

    static HABMAddrValue value(const Integer& number) {
        constexpr std::uint64_t kLowHalf = std::numeric_limits<std::uint64_t>::max();
        const auto high = static_cast<std::uint64_t>(Integer(number >> 64));
        if (high >= kValid)
            return {};
        HABMAddrValue value(static_cast<std::uint64_t>(Integer(number & Integer(kLowHalf))));
        value.m_high |= high;
        return value;
    }

    template <class Calculation>
    static HABMAddrValue calculate(Calculation&& calculation) {
        try {
            return value(calculation());
        } catch (const std::runtime_error&) { // too large, or below zero
            return {};
        }
    }

    /// Reads a number of more than 64 bits. Leading zeros are removed first, so that the number of
    /// digits bounds the work: the conversion of a long text is quadratic.
    static HABMAddrValue parse(std::string_view digits, bool hexadecimal, unsigned shift) {
        digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
        if (digits.size() > (hexadecimal ? 32U : 39U))
            return {};
        return calculate([&] {
            const std::string text = (hexadecimal ? "0x" : "") + std::string(digits);
            return Integer(Integer(digits.empty() ? "0" : text) * (Integer(1) << shift));
        });
    }
};

HABMAddrValue::HABMAddrValue(const std::string& text) {
    std::string_view digits = text;
    const bool hexadecimal = hasHexPrefix(digits);
    if (hexadecimal)
        digits.remove_prefix(2);
    const unsigned shift = hexadecimal ? 0 : takeUnit(digits);

    // The usual case, without the wide integer.
    const char* const end = digits.data() + digits.size();
    std::uint64_t number = 0;
    const auto result = std::from_chars(digits.data(), end, number, hexadecimal ? 16 : 10);
    if (result.ec == std::errc() && result.ptr == end && shift == 0)
        *this = HABMAddrValue(number);
    else
        *this = isAllDigits(digits, hexadecimal) ? Wide::parse(digits, hexadecimal, shift)
                                                 : HABMAddrValue();
}

HABMAddrValue HABMAddrValue::plus(const HABMAddrValue& other) const {
    if (!isValid() || !other.isValid())
        return {};
    return Wide::calculate([&] { return Wide::Integer(Wide::of(*this) + Wide::of(other)); });
}

HABMAddrValue HABMAddrValue::minus(const HABMAddrValue& other) const {
    if (!isValid() || !other.isValid())
        return {};
    return Wide::calculate([&] { return Wide::Integer(Wide::of(*this) - Wide::of(other)); });
}

HABMAddrValue HABMAddrValue::roundUpPow2() const {
    if (!isValid())
        return {};
    const HABMAddrValue below = Wide::value(Wide::Integer(1) << log2());
    return below < *this ? below.plus(below) : below;
}

unsigned int HABMAddrValue::log2() const {
    const std::uint64_t high = highHalf();
    const std::uint64_t half = high != 0 ? high : m_low;
    if (half == 0)
        return 0;
    return static_cast<unsigned>(std::bit_width(half)) - 1 + (high != 0 ? 64 : 0);
}

std::string HABMAddrValue::getHexStringValue(const unsigned int& width) const {
    constexpr unsigned kMostBits = 128;
    const std::size_t leastDigits = (std::min(width, kMostBits) + 3) / 4;
    if (highHalf() == 0)
        return "0x" + hexDigits(m_low, leastDigits);
    return "0x" + hexDigits(highHalf(), leastDigits > 16 ? leastDigits - 16 : 0) +
           hexDigits(m_low, 16);
}

std::string HABMAddrValue::getPrettyHexStringValue(const unsigned int& width) const {
    std::string text = getHexStringValue(width);
    std::transform(text.begin() + 2, text.end(), text.begin() + 2, [](char c) {
        return c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return text;
}

std::string HABMAddrValue::getAbrvStringValue() const {
    if (m_low == 0 && highHalf() == 0)
        return getHexStringValue(0);
    const int zeros = m_low != 0 ? std::countr_zero(m_low) : 64 + std::countr_zero(highHalf());
    const std::size_t unit =
        std::min<std::size_t>(static_cast<unsigned>(zeros) / kBitsPerUnit, kUnits.size());
    if (unit == 0)
        return getHexStringValue(0);
    const Wide::Integer count = Wide::of(*this) >> (kBitsPerUnit * unit);
    return count.str() + kUnits[unit - 1];
}
