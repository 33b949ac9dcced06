// Address maps as macros of C and C++.

#include "workbench/addressing/export/LegalNames.h"
#include "workbench/addressing/export/MapWriters.h"

namespace tq::map_export {

namespace {

/// A constant that is unsigned and wide enough, whatever the compiler takes for an int.
std::string constant(std::uint64_t number) {
    return hex(number) + (number > UINT32_MAX ? "ull" : "ul");
}

class Header {
public:
    explicit Header(const DiagnosticSink& sink) : m_sink(sink), m_names(sink) {}

    std::string write(const Sorted& map) {
        const std::string guard = capital(identifier(map.model->name)) + "_MAP_H";
        m_text = "/* Address map of " + comment(map.model->name) + ". Generated; don't edit. */\n";
        if (!map.model->description.empty())
            m_text += "/* " + comment(map.model->description) + " */\n";
        m_text += "#ifndef " + guard + "\n#define " + guard + "\n";
        for (const Sorted::Block& entry : map.blocks)
            if (entry.block->isOn)
                write(entry);
        return m_text + "\n#endif\n";
    }

private:
    void define(const std::string& name, const std::string& original, std::uint64_t number) {
        m_text += "#define " + m_names.take(name, original) + " " + constant(number) + "\n";
    }

    void write(const Sorted::Block& entry) {
        const MapBlock& block = *entry.block;
        const std::string name = capital(entry.name);
        m_text += "\n/* " + comment(block.path);
        m_text += (block.description.empty() ? "" : ": " + comment(block.description)) + " */\n";
        define(name + "_BASE", block.path, block.base);
        if (block.size != 0)
            define(name + "_SIZE", block.path, block.size);
        LegalNames inner(m_sink);
        for (const MapRegister* const reg : entry.registers)
            write(name + "_" + inner.take(capital(identifier(reg->name)), reg->name), block, *reg);
    }

    void write(const std::string& name, const MapBlock& block, const MapRegister& reg) {
        const std::string original = block.path + "/" + reg.name;
        m_text += "/* " + comment(reg.name) + ", " + std::to_string(reg.width) + " bits, " +
                  accessText(reg.access) +
                  (reg.description.empty() ? "" : ": " + comment(reg.description)) + " */\n";
        define(name + "_OFFSET", original, reg.offset);
        define(name + "_ADDR", original, block.base + reg.offset);
        if (reg.width != 0 && reg.width <= 64)
            define(name + "_MASK", original, maskOf(reg.width));
        if (reg.reset)
            define(name + "_RESET", original, *reg.reset);
        LegalNames inner(m_sink);
        for (const MapField& field : reg.fields)
            if (const unsigned width = widthWithin(field, reg);
                width != 0 && field.lsb + width <= 64)
                write(name + "_" + inner.take(capital(identifier(field.name)), field.name),
                      original, field, width);
    }

    void write(const std::string& name, const std::string& original, const MapField& field,
               unsigned width) {
        define(name + "_SHIFT", original + "/" + field.name, field.lsb);
        define(name + "_MASK", original + "/" + field.name, maskOf(width) << field.lsb);
    }

    const DiagnosticSink& m_sink;
    LegalNames m_names;
    std::string m_text;
};

} // namespace

std::string writeCHeader(const Sorted& map, const DiagnosticSink& sink) {
    return Header(sink).write(map);
}

} // namespace tq::map_export
