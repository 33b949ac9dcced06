#include "workbench/text/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <iterator>

namespace tq {

namespace {

struct Character {
    std::uint32_t code = 0;
    std::size_t length = 1;
    bool isValid = false;
};

[[nodiscard]] unsigned byteAt(std::string_view text, std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
}

/// How many bytes the first byte announces; 0 for a byte that can't be the first.
[[nodiscard]] std::size_t announcedLength(unsigned first) {
    if (first < 0x80U)
        return 1;
    if (first >= 0xC2U && first < 0xE0U)
        return 2;
    if (first >= 0xE0U && first < 0xF0U)
        return 3;
    return first >= 0xF0U && first < 0xF5U ? 4 : 0;
}

/// The character at a byte. Overlong forms, surrogates and codes above U+10FFFF aren't valid.
[[nodiscard]] Character characterAt(std::string_view text, std::size_t at) {
    const unsigned first = byteAt(text, at);
    const std::size_t length = announcedLength(first);
    if (length == 0)
        return {};
    constexpr std::array<unsigned, 5> dataBits{0, 0x7F, 0x1F, 0x0F, 0x07};
    std::uint32_t code = first & dataBits[length];
    for (std::size_t i = 1; i < length; ++i) {
        const unsigned next = byteAt(text, at + i);
        if ((next & 0xC0U) != 0x80U)
            return {};
        code = (code << 6U) | (next & 0x3FU);
    }
    constexpr std::array<std::uint32_t, 5> lowest{0, 0, 0x80, 0x800, 0x10000};
    if (code < lowest[length] || code > 0x10FFFFU || (code >= 0xD800U && code < 0xE000U))
        return {};
    return {code, length, true};
}

struct CodeRange {
    std::uint32_t first;
    std::uint32_t last;
};

template <std::size_t N>
[[nodiscard]] bool isIn(const std::array<CodeRange, N>& ranges, std::uint32_t code) {
    const auto next = std::upper_bound(
        ranges.begin(), ranges.end(), code,
        [](std::uint32_t value, const CodeRange& range) { return value < range.first; });
    return next != ranges.begin() && code <= std::prev(next)->last;
}

// What can hide or move text on a terminal: control characters, and those that set directions.
constexpr std::array<CodeRange, 6> kSteering{{{0x00, 0x1F},
                                              {0x7F, 0x9F},
                                              {0x061C, 0x061C},
                                              {0x200E, 0x200F},
                                              {0x2028, 0x202E},
                                              {0x2066, 0x2069}}};
// The common blocks of combining marks.
constexpr std::array<CodeRange, 5> kCombining{
    {{0x0300, 0x036F}, {0x1AB0, 0x1AFF}, {0x1DC0, 0x1DFF}, {0x200B, 0x200D}, {0x20D0, 0x20FF}}};
// East Asian wide and fullwidth blocks, and emoji.
constexpr std::array<CodeRange, 9> kWide{{{0x1100, 0x115F},
                                          {0x2E80, 0x303E},
                                          {0x3041, 0xA4CF},
                                          {0xAC00, 0xD7A3},
                                          {0xF900, 0xFAFF},
                                          {0xFE30, 0xFE6F},
                                          {0xFF00, 0xFF60},
                                          {0x1F300, 0x1F64F},
                                          {0x20000, 0x3FFFD}}};

void appendEscaped(std::string& shown, std::string_view bytes) {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        shown.append("\\x").append(1, digits[byte >> 4U]).append(1, digits[byte & 0xFU]);
    }
}

} // namespace

std::string printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Character character = characterAt(text, at);
        const std::string_view bytes = text.substr(at, character.length);
        if (!character.isValid || isIn(kSteering, character.code))
            appendEscaped(shown, bytes);
        else
            shown.append(bytes);
        at += character.length;
    }
    return shown;
}

std::string validUtf8(std::string_view text) {
    std::string valid;
    valid.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        const Character character = characterAt(text, at);
        valid.append(character.isValid ? text.substr(at, character.length) : "\xEF\xBF\xBD");
        at += character.length;
    }
    return valid;
}

std::size_t displayWidth(std::string_view text) {
    std::size_t width = 0;
    for (std::size_t at = 0; at < text.size();) {
        const Character character = characterAt(text, at);
        if (!isIn(kCombining, character.code))
            width += isIn(kWide, character.code) ? 2U : 1U;
        at += character.length;
    }
    return width;
}

std::string fixedText(double value, int decimals) {
    std::array<char, 512> buffer;
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                      std::chars_format::fixed, std::clamp(decimals, 0, 100));
    return {buffer.data(), result.ptr};
}

} // namespace tq
