// Address maps for the linker: memories as regions, register blocks as symbols.

#include <algorithm>

#include "workbench/addressing/export/LegalNames.h"
#include "workbench/addressing/export/MapWriters.h"

namespace tq::map_export {

namespace {

/// Words that the linker's language takes for itself where the name of a region or symbol stands.
constexpr std::string_view kReserved =
    " MEMORY ORIGIN LENGTH SECTIONS PHDRS ENTRY ASSERT PROVIDE HIDDEN SIZEOF ADDR ALIGN o org l "
    "len "
    "ABSOLUTE DEFINED LOADADDR MAX MIN NEXT INCLUDE INPUT GROUP OUTPUT TARGET VERSION STARTUP ";

void writeMemories(std::string& text, const Sorted& map, const DiagnosticSink& sink) {
    LegalNames names(sink, kReserved);
    std::string regions;
    for (const Sorted::Block& entry : map.blocks) {
        const MapBlock& block = *entry.block;
        if (!block.isOn || block.usage != MapUsage::Memory)
            continue;
        if (block.size == 0)
            tellNotExported(sink, "the memory \"" + block.path + "\"", "it has no size");
        else
            regions += "    " + names.take(entry.name, block.path) +
                       " (rwx) : ORIGIN = " + hex(block.base) + ", LENGTH = " + hex(block.size) +
                       "\n";
    }
    if (!regions.empty())
        text += "\nMEMORY\n{\n" + regions + "}\n";
}

void writeSymbols(std::string& text, const Sorted& map, const DiagnosticSink& sink) {
    LegalNames names(sink, kReserved);
    for (const Sorted::Block& entry : map.blocks) {
        const MapBlock& block = *entry.block;
        if (!block.isOn || block.usage != MapUsage::Register)
            continue;
        text += "\n/* " + comment(block.path) + " */\n";
        text += names.take(entry.name + "_base", block.path) + " = " + hex(block.base) + ";\n";
        for (const MapRegister* const reg : entry.registers)
            text +=
                names.take(entry.name + "_" + identifier(reg->name), block.path + "/" + reg->name) +
                " = " + hex(block.base + reg->offset) + ";\n";
    }
}

} // namespace

std::string writeLinkerScript(const Sorted& map, const DiagnosticSink& sink) {
    std::string text =
        "/* Address map of " + comment(map.model->name) + ". Generated; don't edit. */\n";
    writeMemories(text, map, sink);
    writeSymbols(text, map, sink);
    return text;
}

} // namespace tq::map_export
