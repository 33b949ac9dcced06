// The texts of the block model's enumerations, read and shown.
#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

/// The texts of one enumeration. A value may have several; the first is the one that is shown.
template <class Value, std::size_t count>
using HABMEnumTexts = std::array<std::pair<std::string_view, Value>, count>;

/// The value of a text, or `unknown`.
template <class Value, std::size_t count>
Value encodeEnum(const HABMEnumTexts<Value, count>& texts, std::string_view text, Value unknown) {
    for (const auto& [known, value] : texts)
        if (known == text)
            return value;
    return unknown;
}

/// The text of a value; for a number that isn't one of the enumeration's, the first text.
template <class Value, std::size_t count>
std::string decodeEnum(const HABMEnumTexts<Value, count>& texts, Value value) {
    for (const auto& [text, known] : texts)
        if (known == value)
            return std::string(text);
    return std::string(texts.front().first);
}
