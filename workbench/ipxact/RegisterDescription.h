// Register descriptions of IP-XACT and CMSIS-SVD: reading a file, and its registers as people and
// programs want them.
#pragma once

#include <string>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/files/InputError.h"
#include "workbench/ipxact/RegisterListing.h"
#include "workbench/ipxact/RegisterModel.h"

namespace tq::ipxact {

/// Reads a component of any edition of IP-XACT, by its namespace, or a CMSIS-SVD device, and checks
/// it (`unknown-value`, `field-overlap` and so on are findings). Type definitions that it refers to
/// are looked for in the folders of `libraries`.
///
///     const Component component = readDescription("uart.xml", {}, findings.sink());
///     for (const ListedRegister& entry : listRegisters(component)) ...
///
/// Raises `InputError` for a file that can't be read, isn't well-formed, passes the bounds of
/// `ElementTree`, or is none of these.
[[nodiscard]] TQ_WORKBENCH_EXPORT Component readDescription(
    const std::string& path, const std::vector<std::string>& libraries, const DiagnosticSink& sink);

/// What to show of the registers.
struct RegisterSelection {
    std::string pattern = "*"; ///< as `fnmatch`, for the name or the path
    bool withFields = false;   ///< in the table; JSON always has them
};

/// A table of addresses, widths, accesses, resets and paths; empty for no registers. What is
/// unknown is "?".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string registerTable(const Component& component,
                                                            const RegisterSelection& selection);

/// A JSON object of "component", "format", "registers", "summary" and "diagnostics". Addresses and
/// resets are texts ("0x40"), what is unknown is null.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string registerJson(const Component& component,
                                                           const RegisterSelection& selection,
                                                           const std::vector<Diagnostic>& findings);

/// The registers that a selection shows.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::size_t countRegisters(const Component& component,
                                                             const RegisterSelection& selection);

/// What a component holds, arrays not unrolled, and what was passed over.
struct Summary {
    std::size_t memoryMaps = 0;
    std::size_t blocks = 0;
    std::size_t registers = 0;
    std::size_t fields = 0;
    std::size_t interfaces = 0;
    std::size_t leftOut = 0;
};

/// Counts the objects of a component.
[[nodiscard]] TQ_WORKBENCH_EXPORT Summary summaryOf(const Component& component);
/// One line: "2 memory maps, 3 address blocks, 40 registers, 97 fields; 2 elements passed over".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string summaryText(const Summary& summary);

} // namespace tq::ipxact
