// Exports of address maps for other tools.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "diagnostics/Diagnostic.h"
#include "tq_workbench_export.h"
#include "workbench/addressing/export/MapModel.h"

namespace tq {

/// The formats, by the endings of their files.
enum class MapFormat {
    CHeader,      ///< ".h": macros, for C11 and C++17
    LinkerScript, ///< ".ld": a MEMORY command with each memory, and a symbol for each register
                  ///< block
    Devicetree,   ///< ".dts", ".dtsi": a node for each block
    SystemRdl,    ///< ".rdl": an addrmap
    Svd,          ///< ".svd": CMSIS-SVD, a peripheral for each register block
    Csv,          ///< ".csv": a row for each block and register
    Markdown,     ///< ".md": tables of blocks and registers
};

/// By the ending of a file's name; empty for any other.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::optional<MapFormat> mapFormatOf(std::string_view path);

/// The endings as a list for people: ".h, .ld, …".
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string mapFormatEndings();

/// The whole file. Blocks and registers are written in the order of their addresses. Names are made
/// legal in the format: of a block the path without the part before the last ("uart0/map/regs"
/// is UART0_REGS), unless another block has that name. The sink gets remarks: names that become
/// equal ("name-clash") and what the format can't hold ("not-exported"). Blocks that are
/// switched off are written where a format can mark them (devicetree, CSV, Markdown). Linear in the
/// model, with a logarithm for sorting.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string exportMap(const MapModel& model, MapFormat format,
                                                        const DiagnosticSink& sink = {});

/// The same in the format of a file to be written; raises `InputError` for an unknown ending.
[[nodiscard]] TQ_WORKBENCH_EXPORT std::string
exportMapAs(const std::string& path, const MapModel& model, const DiagnosticSink& sink = {});

} // namespace tq
