#include "HSTStringUtils.h"

#include <algorithm>
#include <clocale>
#include <cstdlib>

namespace {

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace

std::string HSTStringUtils::to_upper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), upper);
    return text;
}

double HSTStringUtils::to_double(const std::string& text) {
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", nullptr);
    return strtod_l(text.c_str(), nullptr, classic);
}

bool HSTStringUtils::istarts_with(std::string_view text, std::string_view prefix) {
    return text.size() >= prefix.size() &&
           std::equal(prefix.begin(), prefix.end(), text.begin(),
                      [](char a, char b) { return upper(a) == upper(b); });
}
