// Random subsystems that are free of faults, and faults planted into them.
#pragma once

#include <array>
#include <memory>
#include <random>
#include <string>

#include "blockmodel/HABM.h"

namespace designs {

using Dice = std::mt19937;

/// A subsystem of two processors with address spaces, a port, and up to nine peripherals of
/// different sizes: the addresses are disjoint, half of the peripherals are assigned to "cpu0", and
/// connections lead from "cpu1" and the port "S_AXI" to all. Without `isClean` addresses overlap,
/// stick out of windows, and assigns may be excluded.
std::unique_ptr<HABMBlock> makeDesign(Dice& dice, bool isClean);

/// A fault and the id of its finding. `plant` changes the definition, or what a config made of
/// the instance.
struct Fault {
    const char* id;
    void (*plant)(HABMBlock& definition);
    void (*plantInInstance)(HABMBlock& instance);
};

/// All faults that a design may get; each may be planted by itself.
extern const std::array<Fault, 18> kFaults;

} // namespace designs
