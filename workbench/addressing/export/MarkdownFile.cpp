// Address maps as a document for people.

#include "workbench/addressing/export/MapWriters.h"
#include "workbench/text/CellText.h"

namespace tq::map_export {

namespace {

std::string optional(const std::optional<std::uint64_t>& number) {
    return number ? hex(*number) : "";
}

void writeRegisters(std::string& text, const Sorted::Block& entry) {
    const MapBlock& block = *entry.block;
    text += "\n## " + markdownText(block.path) + " at " + hex(block.base) + "\n\n";
    if (!block.description.empty())
        text += markdownText(block.description) + "\n\n";
    text += markdownRow(
        {"address", "offset", "register", "bits", "access", "reset", "value", "description"});
    text += markdownRow({"---:", "---:", "---", "---:", "---", "---:", "---:", "---"});
    for (const MapRegister* const reg : entry.registers)
        text +=
            markdownRow({hex(block.base + reg->offset), hex(reg->offset), markdownText(reg->name),
                         std::to_string(reg->width), accessText(reg->access), optional(reg->reset),
                         optional(reg->value), markdownText(reg->description)});
}

} // namespace

std::string writeMarkdown(const Sorted& map, const DiagnosticSink& /*sink*/) {
    std::string text = "# Address map of " + markdownText(map.model->name) + "\n\n";
    if (!map.model->description.empty())
        text += markdownText(map.model->description) + "\n\n";
    text += markdownRow({"base", "size", "block", "state", "description"});
    text += markdownRow({"---:", "---:", "---", "---", "---"});
    for (const Sorted::Block& entry : map.blocks)
        text += markdownRow({hex(entry.block->base), hex(entry.block->size),
                             markdownText(entry.block->path), entry.block->isOn ? "on" : "off",
                             markdownText(entry.block->description)});
    for (const Sorted::Block& entry : map.blocks)
        if (!entry.registers.empty())
            writeRegisters(text, entry);
    return text;
}

} // namespace tq::map_export
