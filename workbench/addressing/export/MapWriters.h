// The writers of exported maps, one for each format, and what they share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/addressing/export/MapExport.h"

namespace tq::map_export {

/// A model put in order for writing. Texts are UTF-8 of one line.
struct Sorted {
    struct Block {
        const MapBlock* block;
        std::string name; ///< an identifier that no other block has
        std::vector<const MapRegister*> registers;
    };

    const MapModel* model;
    std::vector<Block> blocks;
};

/// Sorts by address, then by path and name.
[[nodiscard]] Sorted sorted(const MapModel& model, const DiagnosticSink& sink);

[[nodiscard]] std::string hex(std::uint64_t number);
/// All bits of a register or a field; `width` up to 64, more counts as 64.
[[nodiscard]] std::uint64_t maskOf(unsigned width);
/// The bytes that a register takes.
[[nodiscard]] std::uint64_t bytesOf(const MapRegister& reg);
/// The smallest power of two that isn't below, at least 8: the width of a register's accesses.
[[nodiscard]] std::uint64_t accessWidth(const MapRegister& reg);
/// A field's bits within its register; 0 for one that lies beyond it.
[[nodiscard]] unsigned widthWithin(const MapField& field, const MapRegister& reg);
/// A text for a comment: one line, without what would end the comment.
[[nodiscard]] std::string comment(std::string_view text);
[[nodiscard]] const char* accessText(MapAccess access);
void tellNotExported(const DiagnosticSink& sink, const std::string& what, const std::string& why);

[[nodiscard]] std::string writeCHeader(const Sorted& map, const DiagnosticSink& sink);
[[nodiscard]] std::string writeLinkerScript(const Sorted& map, const DiagnosticSink& sink);
[[nodiscard]] std::string writeDevicetree(const Sorted& map, const DiagnosticSink& sink);
[[nodiscard]] std::string writeSystemRdl(const Sorted& map, const DiagnosticSink& sink);
[[nodiscard]] std::string writeSvd(const Sorted& map, const DiagnosticSink& sink);
[[nodiscard]] std::string writeCsv(const Sorted& map, const DiagnosticSink& sink);
[[nodiscard]] std::string writeMarkdown(const Sorted& map, const DiagnosticSink& sink);

} // namespace tq::map_export
