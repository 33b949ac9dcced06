#include "hardblock/SplitPortName.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <string_view>
#include <system_error>

namespace hardblock {

namespace {

constexpr int kNotYet = -1;

/// As `atoi`, which takes leading blanks and a plus sign; `std::from_chars` doesn't. Saturates,
/// where the behaviour of `atoi` is undefined.
int toInt(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    if (text.size() > 1 && text[0] == '+' && text[1] != '-')
        text.remove_prefix(1);
    int number = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec != std::errc::result_out_of_range)
        return number;
    return text.front() == '-' ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
}

/// The text between the brackets; empty where they are out of order.
std::string_view between(std::string_view text, std::size_t open, std::size_t close) {
    return open < close ? text.substr(open + 1, close - open - 1) : std::string_view();
}

} // namespace

bool splitPortName(const std::string& text, std::string& name, int& right, int& left) {
    const std::size_t open = text.find('[');
    const std::size_t close = text.find(']');
    name = text;
    if (open == std::string::npos || close == std::string::npos)
        return false;
    name.resize(open);

    std::string_view range = between(text, open, close);
    while (!range.empty()) {
        const std::size_t end = std::min(range.find(':'), range.size());
        (left == kNotYet ? left : right) = toInt(range.substr(0, end));
        range.remove_prefix(std::min(end + 1, range.size()));
    }
    if (right != kNotYet)
        return true;
    right = left;
    return left != kNotYet;
}

} // namespace hardblock
