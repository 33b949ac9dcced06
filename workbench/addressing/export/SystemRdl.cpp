// Address maps in SystemRDL.

#include "workbench/addressing/export/LegalNames.h"
#include "workbench/addressing/export/MapWriters.h"

namespace tq::map_export {

namespace {

constexpr std::string_view kReserved =
    " abstract accesstype addressingtype addrmap alias all alternate arbiter bit boolean "
    "bothedge compact component componentwidth constraint default donttest dontcompare encode enum "
    "external false field fullalign hw hwdisable inside int internal level longint mem na negedge "
    "nonsticky num number parameter posedge precedence property r rclr ref reg regalign regfile "
    "rset "
    "ruser rw rw1 shared signal signed sharedextbus string struct sw this true type union unsigned "
    "w w1 wclr woclr woset wot wr wset wuser wzc wzs wzt ";

const char* softwareAccess(MapAccess access) {
    switch (access) {
    case MapAccess::ReadOnly:
        return "r";
    case MapAccess::WriteOnly:
        return "w";
    case MapAccess::ReadWrite:
        break;
    }
    return "rw";
}

std::string quoted(std::string_view text) {
    std::string result = "\"";
    for (const char c : comment(text))
        result.append(c == '"' || c == '\\' ? "\\" : "").push_back(c);
    return result + "\"";
}

class Rdl {
public:
    explicit Rdl(const DiagnosticSink& sink) : m_sink(sink) {}

    std::string write(const Sorted& map) {
        m_text = "// Address map of " + comment(map.model->name) + ". Generated; don't edit.\n";
        m_text += "addrmap " +
                  LegalNames(m_sink, kReserved).take(identifier(map.model->name), map.model->name) +
                  " {\n";
        if (!map.model->description.empty())
            m_text += "    desc = " + quoted(map.model->description) + ";\n";
        LegalNames names(m_sink, kReserved);
        for (const Sorted::Block& entry : map.blocks)
            if (entry.block->isOn)
                write(entry, names);
        return m_text + "};\n";
    }

private:
    void write(const Sorted::Block& entry, LegalNames& names) {
        const MapBlock& block = *entry.block;
        if (block.usage == MapUsage::Memory)
            return writeMemory(entry, names);
        std::string registers;
        std::uint64_t end = 0;
        LegalNames inner(m_sink, kReserved);
        for (const MapRegister* const reg : entry.registers) {
            if (reg->offset < end)
                tellNotExported(m_sink, "the register \"" + block.path + "/" + reg->name + "\"",
                                "it overlaps the one before it");
            else if (reg->width == 0 || reg->offset % (accessWidth(*reg) / 8) != 0)
                tellNotExported(m_sink, "the register \"" + block.path + "/" + reg->name + "\"",
                                "it isn't aligned to its size");
            else {
                registers += textOf(*reg, inner);
                end = reg->offset + accessWidth(*reg) / 8;
            }
        }
        if (registers.empty())
            return tellNotExported(m_sink, "the block \"" + block.path + "\"",
                                   "it has no registers");
        m_text += "\n    // " + comment(block.path) + "\n    regfile {\n" + registers + "    } " +
                  names.take(entry.name, block.path) + " @ " + hex(block.base) + ";\n";
    }

    void writeMemory(const Sorted::Block& entry, LegalNames& names) {
        const MapBlock& block = *entry.block;
        if (block.size < 8)
            return tellNotExported(m_sink, "the memory \"" + block.path + "\"",
                                   "it has less than one word of 64 bits");
        m_text += "\n    // " + comment(block.path) +
                  "\n    external mem {\n        mementries = " + hex(block.size / 8) +
                  ";\n        memwidth = 64;\n    } " + names.take(entry.name, block.path) + " @ " +
                  hex(block.base) + ";\n";
    }

    [[nodiscard]] std::string textOf(const MapRegister& reg, LegalNames& names) const {
        std::string text =
            "        reg {\n            regwidth = " + std::to_string(accessWidth(reg)) + ";\n";
        if (!reg.description.empty())
            text += "            desc = " + quoted(reg.description) + ";\n";
        LegalNames inner(m_sink, kReserved);
        std::string fields;
        std::uint64_t used = 0;
        for (const MapField& field : reg.fields) {
            const unsigned width = widthWithin(field, reg);
            const std::uint64_t mask = field.lsb < 64 ? maskOf(width) << field.lsb : 0;
            if (width == 0 || (used & mask) != 0)
                continue;
            used |= mask;
            fields += textOf(reg, field.access, inner.take(identifier(field.name), field.name),
                             field.lsb, width);
        }
        if (fields.empty())
            fields = textOf(reg, reg.access, "VALUE", 0, reg.width);
        return text + fields + "        } " + names.take(identifier(reg.name), reg.name) + " @ " +
               hex(reg.offset) + ";\n";
    }

    static std::string textOf(const MapRegister& reg, MapAccess access, const std::string& name,
                              unsigned lsb, unsigned width) {
        std::string text = std::string("            field { sw = ") + softwareAccess(access) +
                           "; hw = rw; } " + name + "[" + std::to_string(lsb + width - 1) + ":" +
                           std::to_string(lsb) + "]";
        if (reg.reset)
            text += " = " + hex(lsb < 64 ? (*reg.reset >> lsb) & maskOf(width) : 0);
        return text + ";\n";
    }

    const DiagnosticSink& m_sink;
    std::string m_text;
};

} // namespace

std::string writeSystemRdl(const Sorted& map, const DiagnosticSink& sink) {
    return Rdl(sink).write(map);
}

} // namespace tq::map_export
