// What `hbs clocks` reports of a run: collected once, printed for people or for programs.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/clocks/ClockTree.h"

namespace tq {

/// A frequency set against its request.
struct GivenClock {
    double mhz = 0.0;
    std::optional<double> errorPercent; ///< signed; none for a request of 0
};

/// A run's result by the names of the tree, in plain values. Frequencies are in MHz.
struct ClockReport {
    /// A PLL as the run set it.
    struct Pll {
        std::string name;
        std::string domain;
        unsigned multiplier = 0;
        unsigned outputDivider = 0;
        unsigned crossDivider = 0; ///< 0 means none
        double mhz = 0.0;
    };
    /// A request and the clock that it got.
    struct Peripheral {
        ClockTree::Peripheral request;
        std::string pll;
        unsigned divider = 0;
        std::optional<GivenClock> given; ///< none for a disabled peripheral
        double pllMhz = 0.0;             ///< what leaves the PLL
        unsigned crossDivider = 0;       ///< that the clock passes on its way; 0 means none

        /// The error in parts per million, without its sign. 0 for a request of 0.
        [[nodiscard]] TQ_WORKBENCH_EXPORT double offPpm() const;
        /// The same as a search counts it: with the largest divider it is 0, a perfect match.
        [[nodiscard]] TQ_WORKBENCH_EXPORT double countedPpm() const;
        /// Whether the error is larger than the allowed one.
        [[nodiscard]] TQ_WORKBENCH_EXPORT bool isBeyondAllowed() const;
    };
    /// Requests that can't be met together, and what becomes of the others without each.
    struct Conflict {
        struct Without {
            std::string name;
            bool allMet = false;            ///< all others of the tree, else those of the set
            std::optional<float> tolerance; ///< at which they are met
        };
        std::vector<Without> members;
    };
    /// The enabled requests by how well they are met, whatever their dividers; each counts once.
    struct Summary {
        unsigned exact = 0; ///< as far as single precision can tell: within 0.1 ppm
        unsigned within10ppm = 0;
        unsigned within1000ppm = 0;
        unsigned within1percent = 0;
        unsigned worse = 0;
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
        /// Settings of the dividers that a combination of multipliers has at most.
        unsigned settingsPerCombination = 0;
    };

    /// One of the best settings, as a whole and against the answer.
    struct Alternative {
        struct Trade {
            std::string peripheral;
            double fromPpm = 0.0; ///< with the answer; both without a sign
            double toPpm = 0.0;
        };
        double sumPpm = 0.0;
        std::optional<double> weightedSumPpm; ///< where there are weights
        std::vector<Pll> plls;
        std::vector<Peripheral> peripherals;
        std::vector<std::string> differences; ///< each other multiplier and source, for people
        std::vector<Trade> trades; ///< each error that changes by more than rounding does
    };

    bool found = false;
    std::optional<Search> search; ///< when it was asked for
    float tolerance = 0.0F;
    float totalError = 0.0F;
    std::optional<float> weightedError; ///< the sum that was searched for, where there are weights
    std::vector<Pll> plls;
    std::vector<Peripheral> peripherals; ///< as declared
    std::vector<Alone> alone;            ///< the enabled ones, as declared, without a solution
    bool takesOtherClocks = false;       ///< whether peripherals may be fed by other domains' PLLs
    /// Where requests aren't met, and it was asked for.
    std::optional<std::vector<Conflict>> conflicts;
    bool hasMoreConflicts = false;         ///< whether there may be more than these
    std::vector<Alternative> alternatives; ///< the answer first; empty unless asked for

    /// Counts the enabled peripherals of a report with a solution.
    [[nodiscard]] TQ_WORKBENCH_EXPORT Summary summary() const;
};

/// What a run came to, in a few numbers: for lists of many runs.
struct ClockOutcome {
    bool found = false;
    float tolerance = 0.0F; ///< the rest is set for a solution
    double sumPpm = 0.0;
    double worstPpm = 0.0;
    std::string worst; ///< the peripheral of the largest error, the first of equals
};

/// The report of a solver that was built from the tree and has run.
[[nodiscard]] TQ_WORKBENCH_EXPORT ClockReport
makeClockReport(const ClockTree& tree, const hbs_clocking::HBSClockingAlgo& solver);

[[nodiscard]] TQ_WORKBENCH_EXPORT ClockOutcome outcomeOf(const ClockReport& report);

/// Adds how the tree's solver searched.
TQ_WORKBENCH_EXPORT void addSearch(ClockReport& report, const hbs_clocking::HBSClockingAlgo& solver,
                                   unsigned pllCount);
/// Adds the conflicts of the tree if not all of its requests are met.
TQ_WORKBENCH_EXPORT void addConflicts(ClockReport& report, const ClockTree& tree);
/// Adds the settings that the solver listed, as its terms asked for.
TQ_WORKBENCH_EXPORT void addAlternatives(ClockReport& report, const ClockTree& tree,
                                         const hbs_clocking::HBSClockingAlgo& solver);
/// A warning for each request that gets more than a tenth off what it asks for.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<Diagnostic> warningsOf(const ClockReport& report);

/// Aligned tables and the tolerance, or what each request could have alone.
TQ_WORKBENCH_EXPORT void printClockTables(const ClockReport& report, std::ostream& out);
/// The same as one JSON object, as schemas/clock_report.schema.json describes it. A clock that
/// isn't finite, of a PLL whose output divider is 0, is null.
TQ_WORKBENCH_EXPORT void printClockJson(const ClockReport& report, std::ostream& out);
/// The tree with its dividers and frequencies as an SVG document; for a solved one.
TQ_WORKBENCH_EXPORT void printClockPicture(const ClockReport& report, float referenceMhz,
                                           std::ostream& out);

} // namespace tq
