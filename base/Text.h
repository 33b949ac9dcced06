// Texts of ASCII letters, the same in every locale.
#pragma once

#include <algorithm>
#include <string>

namespace base {

/// The text with the letters A to Z made small; other bytes stay.
[[nodiscard]] inline std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return text;
}

} // namespace base
