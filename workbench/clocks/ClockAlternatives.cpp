// The best settings of a tree beside its answer.

#include <cmath>

#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockWiring.h"

namespace tq {

namespace {

using Alternative = ClockReport::Alternative;

/// What leaves a PLL, in single precision as the solvers have it.
[[nodiscard]] double pllMhz(const ClockTree& tree, const hbs_clocking::ClockSetting::Pll& pll) {
    return static_cast<double>(tree.referenceMhz * static_cast<float>(pll.multiplier) /
                               static_cast<float>(pll.outputDivider));
}

void addPlls(const ClockTree& tree, const hbs_clocking::ClockSetting& setting,
             Alternative& alternative) {
    std::size_t place = 0;
    for (const ClockTree::Domain& domain : tree.domains)
        for (const ClockTree::Pll& pll : domain.plls) {
            const hbs_clocking::ClockSetting::Pll& set = setting.plls[place++];
            alternative.plls.push_back({pll.name, domain.name, set.multiplier, set.outputDivider,
                                        set.crossDivider, pllMhz(tree, set)});
        }
}

void addPeripherals(const ClockTree& tree, const hbs_clocking::ClockSetting& setting,
                    Alternative& alternative) {
    std::size_t place = 0;
    for (const ClockTree::Peripheral& peripheral : tree.peripherals) {
        ClockReport::Peripheral line{peripheral, {}, 0, std::nullopt};
        if (peripheral.enabled) {
            const auto [source, divider] = setting.peripherals[place++];
            const ClockReport::Pll& pll = alternative.plls[source];
            const bool across = wayOf(tree, source, domainOf(tree, peripheral)) == ClockWay::Across;
            line.pll = pll.name;
            line.divider = divider;
            line.pllMhz = pll.mhz;
            line.crossDivider = across ? pll.crossDivider : 0;
            const double mhz = (across ? pll.mhz / pll.crossDivider : pll.mhz) / divider;
            line.given = GivenClock{mhz, std::nullopt};
            const double request = static_cast<double>(peripheral.mhz);
            if (request > 0.0)
                line.given->errorPercent = (mhz - request) / request * 100.0;
        }
        alternative.sumPpm += line.countedPpm();
        alternative.peripherals.push_back(std::move(line));
    }
}

void compare(const Alternative& answer, Alternative& other) {
    constexpr double rounding = 0.2; // ppm, of single precision
    for (std::size_t i = 0; i < other.plls.size(); ++i)
        if (other.plls[i].multiplier != answer.plls[i].multiplier)
            other.differences.push_back(other.plls[i].name + " \u00d7 " +
                                        std::to_string(other.plls[i].multiplier));
    for (std::size_t i = 0; i < other.peripherals.size(); ++i) {
        const ClockReport::Peripheral& before = answer.peripherals[i];
        const ClockReport::Peripheral& after = other.peripherals[i];
        if (after.pll != before.pll)
            other.differences.push_back(after.request.name + " from " + after.pll);
        if (std::fabs(after.countedPpm() - before.countedPpm()) > rounding)
            other.trades.push_back({after.request.name, before.countedPpm(), after.countedPpm()});
    }
}

} // namespace

void addAlternatives(ClockReport& report, const ClockTree& tree,
                     const hbs_clocking::HBSClockingAlgo& solver) {
    constexpr double ppm = 1e6;
    for (const hbs_clocking::ClockSetting& setting : solver.getSettings()) {
        Alternative alternative;
        addPlls(tree, setting, alternative);
        addPeripherals(tree, setting, alternative);
        if (!solver.getTerms().weights.empty())
            alternative.weightedSumPpm = static_cast<double>(setting.sum) * ppm;
        if (!report.alternatives.empty())
            compare(report.alternatives.front(), alternative);
        report.alternatives.push_back(std::move(alternative));
    }
}

} // namespace tq
