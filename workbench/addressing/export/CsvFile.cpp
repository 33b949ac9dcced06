// Address maps as rows of a spreadsheet.

#include "workbench/addressing/export/MapWriters.h"
#include "workbench/text/CellText.h"

namespace tq::map_export {

namespace {

std::string optional(const std::optional<std::uint64_t>& number) {
    return number ? hex(*number) : "";
}

const char* usageText(MapUsage usage) {
    switch (usage) {
    case MapUsage::Memory:
        return "memory";
    case MapUsage::Reserved:
        return "reserved";
    case MapUsage::Register:
        break;
    }
    return "register";
}

} // namespace

std::string writeCsv(const Sorted& map, const DiagnosticSink& /*sink*/) {
    // Lines end as RFC 4180 has them.
    std::string text = "kind,address,size,block,register,usage,width,access,reset,value,state,"
                       "description\r\n";
    for (const Sorted::Block& entry : map.blocks) {
        const MapBlock& block = *entry.block;
        const std::string path = csvCell(block.path);
        const char* const state = block.isOn ? "on" : "off";
        text += "block," + hex(block.base) + "," + hex(block.size) + "," + path + ",," +
                usageText(block.usage) + ",,,,," + state + "," + csvCell(block.description) +
                "\r\n";
        for (const MapRegister* const reg : entry.registers)
            text += "register," + hex(block.base + reg->offset) + "," + hex(bytesOf(*reg)) + "," +
                    path + "," + csvCell(reg->name) + ",," + std::to_string(reg->width) + "," +
                    accessText(reg->access) + "," + optional(reg->reset) + "," +
                    optional(reg->value) + "," + state + "," + csvCell(reg->description) + "\r\n";
    }
    return text;
}

} // namespace tq::map_export
