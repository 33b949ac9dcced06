// The address map of each master of a handoff, as the document has it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "handoff/HBSHandoff.h"
#include "tq_workbench_export.h"
#include "workbench/addressing/export/MapModel.h"

namespace tq {

/// What one master reaches. Texts live as long as the handoff.
struct HandoffMap {
    /// Addresses from the first to the last.
    struct Span {
        std::uint64_t first = 0;
        std::uint64_t last = 0;
    };
    /// Two ranges that share addresses; numbers in `ranges`.
    struct Overlap {
        std::size_t before = 0;
        std::size_t after = 0;
        Span shared;
    };

    std::string_view master;
    /// Ordered by address; those whose addresses can't be read or that end before they start come
    /// last.
    std::vector<HBSHandoff::Range> ranges;
    std::size_t placed = 0;        ///< ranges at the front that have their place
    std::vector<Overlap> overlaps; ///< of each range with the one before that reaches furthest
    std::vector<Span> gaps;        ///< between ranges that don't touch
};

/// Of each master in document order, or of the one of that name. Raises `InputError` if there is
/// none of that name.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<HandoffMap>
handoffMaps(const HBSHandoff& handoff, const std::string& master = {});

/// A table for each master.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string handoffMapTables(const std::vector<HandoffMap>& maps);

/// A JSON object with "masters", each with "ranges", "overlaps" and "gaps".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string handoffMapJson(const std::vector<HandoffMap>& maps);

/// The maps in one, for exports: each slave that a master reaches, once. Of the inside and the
/// outside of a piece with one range there is one block. The sink receives ranges that have no
/// place ("not-exported").
[[nodiscard]] TQ_WORKBENCH_EXPORT MapModel handoffMapModel(const std::vector<HandoffMap>& maps,
                                                           const std::string& name,
                                                           const DiagnosticSink& sink = {});

} // namespace tq
