// Address maps in CMSIS-SVD.

#include <pugixml.hpp>

#include "workbench/addressing/export/LegalNames.h"
#include "workbench/addressing/export/MapWriters.h"
#include "workbench/text/TextStream.h"
#include "workbench/text/XmlNode.h"
#include "workbench/text/XmlText.h"

namespace tq::map_export {

namespace {

void add(pugi::xml_node parent, const char* name, const std::string& text) {
    expectMemory(append(parent, name).text().set(xmlText(text).c_str()));
}

class Svd {
public:
    explicit Svd(const DiagnosticSink& sink) : m_sink(sink), m_names(sink) {}

    std::string write(const Sorted& map) {
        pugi::xml_node device = append(m_document, "device");
        set(device, "schemaVersion", "1.3");
        set(device, "xmlns:xs", "http://www.w3.org/2001/XMLSchema-instance");
        set(device, "xs:noNamespaceSchemaLocation", "CMSIS-SVD.xsd");
        add(device, "name", identifier(map.model->name));
        add(device, "version", "1.0");
        add(device, "description",
            map.model->description.empty() ? map.model->name : map.model->description);
        add(device, "addressUnitBits", "8");
        add(device, "width", "64");
        pugi::xml_node peripherals = append(device, "peripherals");
        for (const Sorted::Block& entry : map.blocks)
            if (entry.block->isOn && entry.block->usage == MapUsage::Register)
                write(peripherals, entry);
        if (!peripherals.first_child()) {
            tellNotExported(m_sink, "a register block", "there is none, and the format needs one");
            append(peripherals, "peripheral"); // readers tell what is missing
        }
        TextStream text;
        m_document.save(text, "  ", pugi::format_default);
        return text.str();
    }

private:
    void write(pugi::xml_node peripherals, const Sorted::Block& entry) {
        const MapBlock& block = *entry.block;
        pugi::xml_node peripheral = append(peripherals, "peripheral");
        add(peripheral, "name", m_names.take(entry.name, block.path));
        add(peripheral, "description", block.description.empty() ? block.path : block.description);
        add(peripheral, "baseAddress", hex(block.base));
        if (block.size != 0) {
            pugi::xml_node range = append(peripheral, "addressBlock");
            add(range, "offset", "0x0");
            add(range, "size", hex(block.size));
            add(range, "usage", "registers");
        }
        if (entry.registers.empty())
            return;
        pugi::xml_node registers = append(peripheral, "registers");
        LegalNames names(m_sink);
        for (const MapRegister* const reg : entry.registers)
            write(registers, *reg, names);
    }

    void write(pugi::xml_node registers, const MapRegister& reg, LegalNames& names) {
        pugi::xml_node node = append(registers, "register");
        add(node, "name", names.take(identifier(reg.name), reg.name));
        if (!reg.description.empty())
            add(node, "description", reg.description);
        add(node, "addressOffset", hex(reg.offset));
        add(node, "size", std::to_string(accessWidth(reg)));
        add(node, "access", accessText(reg.access));
        if (reg.reset) {
            add(node, "resetValue", hex(*reg.reset));
            add(node, "resetMask", hex(maskOf(reg.width)));
        }
        LegalNames inner(m_sink);
        pugi::xml_node fields;
        for (const MapField& field : reg.fields)
            if (const unsigned width = widthWithin(field, reg); width != 0) {
                fields = fields ? fields : append(node, "fields");
                write(fields, field, width, inner);
            }
    }

    static void write(pugi::xml_node fields, const MapField& field, unsigned width,
                      LegalNames& names) {
        pugi::xml_node node = append(fields, "field");
        add(node, "name", names.take(identifier(field.name), field.name));
        if (!field.description.empty())
            add(node, "description", field.description);
        add(node, "bitOffset", std::to_string(field.lsb));
        add(node, "bitWidth", std::to_string(width));
        add(node, "access", accessText(field.access));
    }

    const DiagnosticSink& m_sink;
    LegalNames m_names;
    pugi::xml_document m_document;
};

} // namespace

std::string writeSvd(const Sorted& map, const DiagnosticSink& sink) {
    return Svd(sink).write(map);
}

} // namespace tq::map_export
