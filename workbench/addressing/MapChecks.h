// Checks of the address map of a configured subsystem.
#pragma once

#include <string>
#include <unordered_set>
#include <vector>

#include "blockmodel/HABM.h"
#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/AddressViews.h"
#include "workbench/addressing/AddressingConfig.h"

namespace tq {

/// What is checked. `hardblocks` is the folder of the hard blocks in the data area, whose tables
/// name the places of findings; it may be empty, and findings have no places then.
struct CheckedMap {
    const HABMBlock& definition;
    const HABMBlock& instance;
    const AddressMap& map;
    const AddressViews& views;
    const AddressingConfig& config;
    std::string hardblocks;
    std::string askedVlnv; ///< that the definition was asked by; empty if it wasn't
};

/// Reports what is wrong with the map. The id of a finding is a kind, ":" and what it is about:
///
/// | kind | severity | what is wrong |
/// |---|---|---|
/// | overlap:A/B | error | an initiator sees two blocks at one address |
/// | more-overlaps:SUBSYSTEM | error | not every overlap is listed |
/// | assigned-twice:BLOCK | error | two assigns put a block over itself |
/// | outside-segment:ASSIGN | error | an assign isn't within its segment |
/// | outside-space:NAME | error | an assign or a segment isn't within its address space |
/// | assign-nowhere:ASSIGN | error | an end of an assign doesn't exist |
/// | assign-off:ASSIGN | warning | an end of an assign is switched off |
/// | outside-block:REGISTER | error | a register reaches beyond its block |
/// | register-overlap:REGISTER | error | a register overlaps one before it |
/// | misaligned:REGISTER | warning | an offset isn't a multiple of the register's size |
/// | no-size:BLOCK | warning | a block has no size |
/// | no-address:BLOCK | error | a block's address can't be computed |
/// | aperture-size:BLOCK | remark | a size isn't a power of two |
/// | aperture-alignment:BLOCK | remark | a block isn't aligned to its size |
/// | unresolved-stub:BLOCK | error | a definition is missing |
/// | recursive-definition:BLOCK | error | a definition contains itself |
/// | other-version:BLOCK | error | a definition was found under another VLNV than asked |
///
/// The names in an overlap are those at which the two paths differ: "overlap:uart0/uart1". Every
/// pair of blocks that overlap is reported once, up to 100,000 overlaps that initiators see; beyond
/// these each block only with the one before it that reaches the furthest. A register is reported
/// once, with the one before it that reaches the furthest. One that is only read and one that is
/// only written may share an address. The time is that of sorting, and of the pairs.
TQ_WORKBENCH_EXPORT void checkMap(const CheckedMap& checked, const DiagnosticSink& sink);

/// Takes the findings that a user doesn't want to see out of a stream of them.
///
///     AllowedFindings allowed({"overlap:uart0/uart1", "aperture-size"});
///     checkMap(checked, allowed.filter(findings.sink()));
///     allowed.reportUnused(findings.sink());
class TQ_WORKBENCH_EXPORT AllowedFindings {
public:
    /// Each is a whole id, in which the two names of a pair may come in either order, or an id as
    /// `headline` prints it, or a kind.
    explicit AllowedFindings(std::vector<std::string> ids);

    /// Passes on what isn't allowed. This object must outlive the result.
    [[nodiscard]] DiagnosticSink filter(DiagnosticSink sink);
    /// A warning "unused-allow" for each id that took nothing out.
    void reportUnused(const DiagnosticSink& sink) const;

private:
    [[nodiscard]] bool takesOut(const std::string& id);

    std::vector<std::string> m_ids;
    std::unordered_set<std::string> m_known;
    std::unordered_set<std::string> m_used;
};

} // namespace tq
