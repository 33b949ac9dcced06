// Generated clock trees of four and six PLLs, and their solutions by the library.
#pragma once

#include <memory>
#include <string>

#include "clocking/HBSClockingAlgo.h"
#include "clocking/reference46.h"

namespace trees46 {

enum class Kind {
    Odd,      ///< anything that a caller might set, and some things that he shouldn't
    Ordinary, ///< round requests, of which many settings serve many equally well
    Plain,    ///< some round requests, some not, as a person's tree has them
    NearTies, ///< one large error that nothing changes, so that sums differ by the last digits
    Rings     ///< so constrained that domains are covered only together with other clocks
};

/// The same arguments give the same tree everywhere. One NOC peripheral comes first.
reference46::Tree generate(unsigned seed, bool sixPlls, unsigned peripherals, Kind kind);

/// The solver for the tree. Every call names the peripherals anew, save those barred by name, so
/// that the process's store of solutions never knows them.
std::unique_ptr<hbs_clocking::HBSClockingAlgo> build(const reference46::Tree& tree);

/// What can be read after a run, as the literal search would give it.
reference46::Solution read(const hbs_clocking::HBSClockingAlgo& solver);

} // namespace trees46
