// Address maps as a document for people.

#include "workbench/addressing/export/MapWriters.h"
#include "workbench/text/Text.h"

namespace tq::map_export {

namespace {

/// A text of one line in which no character has a meaning of its own.
std::string plain(std::string_view text) {
    std::string result;
    for (const char c : printable(validUtf8(text))) {
        if (std::string_view("\\`*_{}[]<>()#|~&!").find(c) != std::string_view::npos)
            result += '\\';
        result += c;
    }
    return result;
}

std::string row(std::initializer_list<std::string> cells) {
    std::string text = "|";
    for (const std::string& cell : cells)
        text += " " + cell + " |";
    return text + "\n";
}

std::string optional(const std::optional<std::uint64_t>& number) {
    return number ? hex(*number) : "";
}

void writeRegisters(std::string& text, const Sorted::Block& entry) {
    const MapBlock& block = *entry.block;
    text += "\n## " + plain(block.path) + " at " + hex(block.base) + "\n\n";
    if (!block.description.empty())
        text += plain(block.description) + "\n\n";
    text +=
        row({"address", "offset", "register", "bits", "access", "reset", "value", "description"});
    text += row({"---:", "---:", "---", "---:", "---", "---:", "---:", "---"});
    for (const MapRegister* const reg : entry.registers)
        text += row({hex(block.base + reg->offset), hex(reg->offset), plain(reg->name),
                     std::to_string(reg->width), accessText(reg->access), optional(reg->reset),
                     optional(reg->value), plain(reg->description)});
}

} // namespace

std::string writeMarkdown(const Sorted& map, const DiagnosticSink& /*sink*/) {
    std::string text = "# Address map of " + plain(map.model->name) + "\n\n";
    if (!map.model->description.empty())
        text += plain(map.model->description) + "\n\n";
    text += row({"base", "size", "block", "state", "description"});
    text += row({"---:", "---:", "---", "---", "---"});
    for (const Sorted::Block& entry : map.blocks)
        text += row({hex(entry.block->base), hex(entry.block->size), plain(entry.block->path),
                     entry.block->isOn ? "on" : "off", plain(entry.block->description)});
    for (const Sorted::Block& entry : map.blocks)
        if (!entry.registers.empty())
            writeRegisters(text, entry);
    return text;
}

} // namespace tq::map_export
