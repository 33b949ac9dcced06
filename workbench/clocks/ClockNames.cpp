#include "workbench/clocks/ClockNames.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "diagnostics/NearestName.h"
#include "workbench/files/InputError.h"

namespace tq {

namespace {

[[nodiscard]] std::size_t find(const std::vector<std::string_view>& known, std::string_view name,
                               const std::string& context, const char* what) {
    const auto place = std::find(known.begin(), known.end(), name);
    if (place != known.end())
        return static_cast<std::size_t>(place - known.begin());
    std::string text = context + ": there is no " + what + " \"" + std::string(name) + "\"";
    if (const std::string_view nearest = nearestName(name, known); !nearest.empty())
        text.append("; did you mean \"").append(nearest).append("\"?");
    else
        text.append(", expected ").append(oneOfNames(name, known));
    throw InputError(text);
}

} // namespace

std::vector<std::string_view> pllNames(const ClockTree& tree) {
    std::vector<std::string_view> names;
    for (const ClockTree::Domain& domain : tree.domains)
        for (const ClockTree::Pll& pll : domain.plls)
            names.push_back(pll.name);
    return names;
}

std::vector<std::string_view> peripheralNames(const ClockTree& tree) {
    std::vector<std::string_view> names;
    for (const ClockTree::Peripheral& peripheral : tree.peripherals)
        names.push_back(peripheral.name);
    return names;
}

std::size_t findPll(const ClockTree& tree, std::string_view name, const std::string& context) {
    return find(pllNames(tree), name, context, "PLL");
}

std::size_t findPeripheral(const ClockTree& tree, std::string_view name,
                           const std::string& context) {
    return find(peripheralNames(tree), name, context, "peripheral");
}

Halves splitAtLast(const std::string& text, char divider, const std::string& context,
                   const std::string& form) {
    const std::size_t place = text.rfind(divider);
    if (place == std::string::npos)
        throw InputError(context + ": expected " + form);
    return {text.substr(0, place), text.substr(place + 1)};
}

double readNumber(const std::string& text, const std::string& context) {
    double number = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(number) ||
        number < 0.0)
        throw InputError(context + ": \"" + text + "\" isn't a number from 0 up");
    return number;
}

} // namespace tq
