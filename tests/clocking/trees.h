// Generated clock trees of one and two PLLs, and every field of a result as text.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "clocking/HBSClockingAlgo.h"

namespace trees {

struct Peripheral {
    int domain = 0;
    float requestMhz = 0.0F;
    float allowedPercent = 100.0F;
    bool enabled = true;
};

struct Tree {
    float referenceMhz = 33.333F;
    bool allowCross = false;
    std::vector<float> limitsMhz; ///< one domain with one PLL for each
    std::vector<Peripheral> peripherals;
};

/// A tree of one or two domains; the same seed gives the same tree everywhere.
Tree generate(unsigned seed, unsigned domains);

/// The solver for the tree: domains "D0", "D1" with "PLL0", "PLL1", peripherals "P0" and on.
std::unique_ptr<hbs_clocking::HBSClockingAlgo> build(const Tree& tree);

/// All that can be read after a run, floats with all their bits.
std::string describe(const hbs_clocking::HBSClockingAlgo& solver);

// One line each of such a description.
std::string summaryLine(bool found, float tolerance, float total);
std::string pllLine(unsigned mul, unsigned div, double vcoFreq, float errorLimit);
std::string peripheralLine(const std::string& pllName, unsigned div, double actualFreq);

} // namespace trees
