// Clock tree files: what they hold, how they are read, and the solver built from one.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "clocking/HBSClockingAlgo.h"
#include "tq_workbench_export.h"
#include "workbench/files/JsonFile.h"

namespace tq {

/// A clock tree file, checked as far as the file alone allows. In JSON:
///
///     {
///       "plls": 2,                  // of the solver: 1, 2, 4 or 6
///       "reference_mhz": 33.333,
///       "max_cross_mhz": 1000,      // the rest of these four have the library's defaults
///       "allow_cross_domain": false,
///       "domains": [
///         { "name": "LOW", "plls": [ { "name": "PLL0", "max_mhz": 2000, "noc": false } ] },
///         ...
///       ],
///       "peripherals": [
///         { "name": "UART", "domain": "LOW", "mhz": 100,
///           "max_error_percent": 100, "enabled": true, "noc": false },
///         ...
///       ]
///     }
///
/// Domains are in the order that the solver expects; trees of 4 and 6 PLLs have four of them, the
/// second named "NOC_DOMAIN", and one enabled peripheral marked "noc". Names are unique within
/// their list, and not empty. Its schema is schemas/clock_tree.schema.json.
struct ClockTree {
    /// A PLL of a domain.
    struct Pll {
        std::string name;       ///< unique in the tree
        float maxMhz = 2000.0F; ///< before the dividers of peripherals
        bool noc = false;       ///< a mark that no solver reads
    };
    /// A power domain with its PLLs, in file order.
    struct Domain {
        std::string name; ///< unique in the tree
        std::vector<Pll> plls;
    };
    /// A request for a clock. A disabled one takes no part in the solution.
    struct Peripheral {
        std::string name;               ///< unique in the tree
        std::string domain;             ///< whose PLLs feed it
        float mhz = 0.0F;               ///< as asked for
        float maxErrorPercent = 100.0F; ///< of that, in either direction
        bool enabled = true;
        bool noc = false; ///< sets the NOC clock of a tree of four or six PLLs
    };

    /// 1, 2, 4 or 6: which solver is used.
    unsigned pllCount = 1;
    float referenceMhz = 33.333F;
    float maxCrossMhz = 1000.0F;   ///< of a clock that goes to another domain
    bool allowCrossDomain = false; ///< whether peripherals may take such clocks
    std::vector<Domain> domains;   ///< as the solver expects them
    std::vector<Peripheral> peripherals;
};

/// Raises `InputError` with the place of what can't be used.
[[nodiscard]] TQ_WORKBENCH_EXPORT ClockTree readClockTree(const JsonFile& file);

/// Called with the tolerance when a search of four or six PLLs begins a step.
using StepObserver = std::function<void(float)>;

/// The solver of the tree's kind, with all that the tree holds. Lists keep their order.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::unique_ptr<hbs_clocking::HBSClockingAlgo>
buildClockSolver(const ClockTree& tree, const StepObserver& observer = {});

} // namespace tq
