#include "workbench/clocks/ClockWiring.h"

#include <algorithm>

namespace tq {

ClockWay wayOf(const ClockTree& tree, std::size_t pll, std::size_t domain) {
    constexpr ClockWay N = ClockWay::None;
    constexpr ClockWay D = ClockWay::Direct;
    constexpr ClockWay X = ClockWay::Across;
    static constexpr ClockWay four[4][4] = {{D, N, X, X}, {D, D, X, X}, {N, N, D, X}, {N, N, N, D}};
    static constexpr ClockWay six[6][4] = {{D, N, X, X}, {D, D, X, N}, {N, N, D, X},
                                           {N, N, D, N}, {N, N, N, D}, {N, N, N, D}};
    switch (tree.pllCount) {
    case 1:
        return D;
    case 2:
        return pll == domain || (pll == 0 && tree.allowCrossDomain) ? D : N;
    case 4:
        return four[pll][domain];
    default:
        return six[pll][domain];
    }
}

std::size_t domainOf(const ClockTree& tree, const ClockTree::Peripheral& peripheral) {
    const auto domain = std::find_if(tree.domains.begin(), tree.domains.end(),
                                     [&](const auto& d) { return d.name == peripheral.domain; });
    return static_cast<std::size_t>(domain - tree.domains.begin());
}

bool mayTake(const ClockTree& tree, const ClockTree::Peripheral& peripheral, std::size_t pll) {
    const bool barred = tree.pllCount == 6 && (pll == 1 || pll == 3) &&
                        (peripheral.name == "PSM_REF_CTRL" || peripheral.name == "ASU_REF_CTRL");
    return !barred && wayOf(tree, pll, domainOf(tree, peripheral)) != ClockWay::None;
}

} // namespace tq
