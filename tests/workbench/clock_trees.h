// Clock trees for the tests of the adviser: generated ones, and texts made of them.
#pragma once

#include <sstream>
#include <string>

#include "clocking/dice.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/clocks/ClockTree.h"

namespace clock_trees {

/// The same arguments give the same tree everywhere. Peripherals are named "P0" and on.
inline tq::ClockTree generate(unsigned seed, unsigned plls, unsigned peripherals,
                              float allowedPercent = 100.0F) {
    trees::Dice dice(seed * 8 + plls);
    tq::ClockTree tree;
    tree.pllCount = plls;
    tree.referenceMhz = dice.pick(std::array{24.0F, 26.0F, 33.333F, 38.4F});
    tree.allowCrossDomain = dice.oneIn(2);
    const unsigned domains = plls > 2 ? 4 : plls;
    for (unsigned d = 0; d < domains; ++d) {
        tree.domains.push_back({plls > 2 && d == 1 ? "NOC_DOMAIN" : "D" + std::to_string(d), {}});
        for (unsigned i = 0; i < (plls == 6 && d > 1 ? 2U : 1U); ++i)
            tree.domains.back().plls.push_back({"PLL" + std::to_string(d) + std::to_string(i),
                                                dice.pick(std::array{1200.0F, 1600.0F, 2000.0F})});
    }
    if (plls > 2)
        tree.peripherals.push_back({"NOC", "NOC_DOMAIN", 800.0F, 100.0F, true, true});
    while (tree.peripherals.size() < peripherals) {
        unsigned domain = dice.below(domains);
        if (plls > 2 && domain == 1)
            domain = 0;
        const float mhz = dice.oneIn(2) ? dice.between(8.0F, 600.0F)
                                        : dice.pick(std::array{50.0F, 100.0F, 125.0F, 250.0F});
        tree.peripherals.push_back({"P" + std::to_string(tree.peripherals.size()),
                                    tree.domains[domain].name, mhz, allowedPercent});
    }
    return tree;
}

/// What `hbs clocks --json` prints of a tree.
inline std::string solutionJson(const tq::ClockTree& tree) {
    const tq::ClockRun run = tq::runClockTree(tree);
    std::ostringstream json;
    tq::printClockJson(tq::makeClockReport(tree, *run.solver), json);
    return json.str();
}

} // namespace clock_trees
