#include "cdo/HBSCdoCommandParse.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "HSTStringUtils.h"
#include "HTCErrors.h"

namespace {

constexpr std::size_t kLongestHexValue = 10; // "0x" and eight digits

[[noreturn]] void raiseInvalid(const std::string& text) {
    throw HTCErrors::command_failed("user input '" + text + "' is invalid");
}

[[noreturn]] void raiseOutOfRange(const std::string& text) {
    throw HTCErrors::command_failed("user input '" + text + "' is out of range");
}

/// The base of a text, or the failure of one that can't start a number.
int baseOf(const std::string& text) {
    if (text.empty())
        throw HTCErrors::command_failed("user input is empty");
    if (text.front() == '-')
        raiseInvalid(text);
    return HSTStringUtils::istarts_with(text, "0x") ? 16 : 10;
}

/// Converts as `strtoul` does where `unsigned long` has 32 bits: the bound holds for the digits,
/// and a minus sign then negates in 32 bits.
std::uint32_t toUnsigned32(const char* text, char** end, int base) {
    const std::uint64_t wide = std::strtoull(text, end, base);
    const bool negative = text[std::strspn(text, " \t\n\v\f\r")] == '-';
    // Digits beyond 64 bits have set ERANGE already; what is returned then doesn't matter.
    const std::uint64_t digits = negative ? 0 - wide : wide;
    if (digits > std::numeric_limits<std::uint32_t>::max())
        errno = ERANGE;
    return static_cast<std::uint32_t>(wide);
}

/// Garbage after the digits is reported first, then their range.
void checkConversion(const std::string& text, const char* end) {
    if (end != text.data() + text.size())
        raiseInvalid(text);
    if (errno == ERANGE) {
        errno = 0;
        raiseOutOfRange(text);
    }
}

} // namespace

std::uint64_t HBSCdoCommandParse::parseAddress(const std::string& text) {
    const int base = baseOf(text);
    char* end = nullptr;
    const std::uint64_t address = std::strtoull(text.c_str(), &end, base);
    checkConversion(text, end);
    return address;
}

std::uint32_t HBSCdoCommandParse::parseValue(const std::string& text) {
    const int base = baseOf(text);
    if (base == 16 && text.size() > kLongestHexValue)
        raiseOutOfRange(text);
    char* end = nullptr;
    const std::uint32_t value = toUnsigned32(text.c_str(), &end, base);
    checkConversion(text, end);
    return value;
}
