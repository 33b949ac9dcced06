// What `hbs clocks` reports of a run: collected once, printed for people or for programs.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "tq_workbench_export.h"
#include "workbench/clocks/ClockTree.h"

namespace tq {

/// A frequency set against its request.
struct GivenClock {
    double mhz = 0.0;
    std::optional<double> errorPercent; ///< signed; none for a request of 0
};

struct ClockReport {
    struct Pll {
        std::string name;
        std::string domain;
        unsigned multiplier = 0;
        unsigned outputDivider = 0;
        unsigned crossDivider = 0; ///< 0 means none
        double mhz = 0.0;
    };
    struct Peripheral {
        ClockTree::Peripheral request;
        std::string pll;
        unsigned divider = 0;
        std::optional<GivenClock> given; ///< none for a disabled peripheral
    };
    /// What a peripheral of a tree without a solution could have from one PLL under its domain's
    /// highest limit, if nothing else were asked for. Clocks of other domains and the rules of the
    /// NOC clock aren't counted: with them a tree may serve it better, or not at all.
    struct Alone {
        ClockTree::Peripheral request;
        std::optional<GivenClock> nearest; ///< none when no multiplier serves it
        bool allowed = false;              ///< whether it is within the peripheral's allowed error
    };

    /// How a larger tree was searched.
    struct Search {
        std::uint64_t combinations = 0;
        std::uint64_t evaluated = 0;
    };

    bool found = false;
    std::optional<Search> search; ///< when it was asked for
    float tolerance = 0.0F;
    float totalError = 0.0F;
    std::vector<Pll> plls;
    std::vector<Peripheral> peripherals; ///< as declared
    std::vector<Alone> alone;            ///< the enabled ones, as declared, without a solution
    bool takesOtherClocks = false;       ///< whether peripherals may be fed by other domains' PLLs
};

/// The report of a solver that was built from the tree and has run.
[[nodiscard]] TQ_WORKBENCH_EXPORT ClockReport
makeClockReport(const ClockTree& tree, const hbs_clocking::HBSClockingAlgo& solver);

/// Aligned tables and the tolerance, or what each request could have alone.
TQ_WORKBENCH_EXPORT void printClockTables(const ClockReport& report, std::ostream& out);
/// The same as one JSON object.
TQ_WORKBENCH_EXPORT void printClockJson(const ClockReport& report, std::ostream& out);
/// The tree with its dividers and frequencies as an SVG document; for a solved one.
TQ_WORKBENCH_EXPORT void printClockPicture(const ClockReport& report, float referenceMhz,
                                           std::ostream& out);

} // namespace tq
