// Queries of an address map: what lies at an address, where a register is, and why something is on
// or off.
#pragma once

#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "addressing/HBSAddressing.h"
#include "tq_workbench_export.h"
#include "workbench/addressing/AddressViews.h"
#include "workbench/addressing/ConfiguredMap.h"

namespace tq {

class JsonWriter;

/// A register or a block as one initiator sees it, or where it lies if none does.
struct TQ_WORKBENCH_EXPORT MapMatch {
    const AddressViews::View* view = nullptr; ///< null if no initiator sees it
    const AddressViews::Region* region = nullptr;
    const AddressMap::Block* block = nullptr;
    const HABMRegister* reg = nullptr; ///< null for a block
    HABMAddrValue address;
    HABMAddrValue offset; ///< of the address in the register; of a block's match in the block
};

/// What lies at an address for the initiators that `from` names, all if it is empty. Raises
/// `InputError` if there is no such initiator.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<MapMatch>
findAt(const ConfiguredMap& map, const HABMAddrValue& address, const std::string& from = "");

/// The blocks and registers whose path matches a pattern (as `fnmatch`; "*" matches "/" too), for
/// each initiator that sees them and is named. A register is known by its whole path, its block's
/// instance and its name ("uart0/CTRL"), and its name alone; a block by its path. What is switched
/// off is there too, without an initiator.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::vector<MapMatch>
findNamed(const ConfiguredMap& map, const std::string& pattern, const std::string& from = "");

/// Why a sub-block or an interface is on or off.
struct TQ_WORKBENCH_EXPORT MapReason {
    struct Register {
        std::string path;
        HABMAddrValue value;
        std::string source; ///< "FILE:LINE:COLUMN", or what else the value comes from
    };

    std::string path;
    bool isOn = true;
    std::string text;       ///< "(0x0 & 0x1) == 1 is false"
    std::string expression; ///< as the definition has it; empty if there is none
    /// Files that make variables or commands of the expression.
    std::vector<std::string> scripts;
    /// Those that the expression names, and those of a block that its script names: which of the
    /// latter decide isn't known.
    std::vector<Register> registers;
};

/// The reasons of many, each found in constant time on average. The map must outlive this.
class TQ_WORKBENCH_EXPORT MapReasons {
public:
    explicit MapReasons(const ConfiguredMap& map);
    ~MapReasons();
    MapReasons(const MapReasons&) = delete;
    MapReasons& operator=(const MapReasons&) = delete;

    /// Raises `InputError` if the definition has no such sub-block or interface.
    [[nodiscard]] MapReason of(const std::string& path);

private:
    struct Lookup;
    class Explanation;

    std::unique_ptr<Lookup> m_lookup;
};

/// The reason of one; see `MapReasons::of`.
[[nodiscard]] TQ_WORKBENCH_EXPORT MapReason findReason(const ConfiguredMap& map,
                                                       const std::string& path);

/// Prints the matches as a table, and a reason as sentences.
TQ_WORKBENCH_EXPORT void printMatches(std::ostream& out, const ConfiguredMap& map,
                                      const std::vector<MapMatch>& matches);
TQ_WORKBENCH_EXPORT void printReason(std::ostream& out, const MapReason& reason);

/// What was asked, for one JSON object.
struct TQ_WORKBENCH_EXPORT MapAnswers {
    const DiagnosticList* findings = nullptr; ///< null: not asked for, as below
    const std::vector<MapMatch>* matches = nullptr;
    const MapReason* reason = nullptr;
    bool hasMap = false; ///< the members of `addressMapJson` too
    bool hasRegisters = false;
};

/// One JSON object with "findings" (objects with "id", "kind", "severity", "file", "line",
/// "column", "text", "expected"), "counts" (of all findings, also those beyond the list's bound, by
/// severity), "matches" (objects with "from", "space", "block", "register",
/// "address", "offset", "block_offset", "width", "access", "reset", "value", "assign" and "way")
/// and "why" (an object with "path", "on", "reason", "condition", "scripts" and "registers").
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string mapAnswersJson(const ConfiguredMap& map,
                                                             const MapAnswers& answers);

} // namespace tq
