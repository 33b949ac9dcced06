#include "HSTStringUtils.h"

#include <algorithm>

namespace {

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace

std::string HSTStringUtils::to_upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), upper);
    return text;
}

bool HSTStringUtils::istarts_with(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(),
                      [](char a, char b) { return upper(a) == upper(b); });
}
