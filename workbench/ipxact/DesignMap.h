// What each initiator of a design sees at which addresses, through channels and bridges.
#pragma once

#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/ipxact/Design.h"

namespace tq::ipxact {

/// An address block as an initiator sees it. Addresses count in the units of the initiator's
/// address space; they may be negative, where the initiator can't reach them.
struct SeenBlock {
    std::string path; ///< instance, memory map and block
    Number start;
    Number end; ///< exclusive
    const MemoryItem* source = nullptr;
};

/// What one initiator sees.
struct SeenSpace {
    std::string name;              ///< instance and interface: "cpu0/M_AXI"
    std::string addressSpace;      ///< empty where the interface has none
    std::vector<SeenBlock> blocks; ///< by start, unknown ones last
};

/// Computes what the initiators of a design see; interfaces on the far side of a bridge are
/// on the way and aren't listed themselves, nor are those without an address space that see
/// nothing.
///
/// From the target up: a block lies at its base address in its memory map; a remap address of a
/// mirrored target is added, and its range, where it isn't 0, cuts off what lies beyond it; a
/// subspace map shows an address space (or a segment of it) at its base address; an initiator's
/// base address is added on the way into its address space. Where an interface is wider than the
/// one below it, and neither steers bits, each word of the narrow one takes a word of the wide one,
/// so addresses grow by the ratio of the widths. The same holds where the lowest mapped bit of an
/// interface's address spaces its words apart. Widths are those of the data ports, by the names of
/// the logical ports.
///
/// The design must outlive the result. Blocks outside of what can be addressed, loops and values
/// that can't be computed are findings; at most `kMostSeen` blocks are listed in all.
inline constexpr std::size_t kMostSeen = 100'000;
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<SeenSpace> mapDesign(const Design& design,
                                                                   const DiagnosticSink& sink);

/// A table of blocks for each initiator; empty for none.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string designMapTable(const std::vector<SeenSpace>& spaces);

/// A JSON object of "initiators", each with "name", "address_space" and "blocks" of "path", "start"
/// and "end" (exclusive), which are numbers, or null where unknown; and of "diagnostics".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
designMapJson(const std::vector<SeenSpace>& spaces, const std::vector<Diagnostic>& findings);

} // namespace tq::ipxact
