// Address maps as a fragment of a devicetree.

#include <algorithm>
#include <map>
#include <utility>

#include "base/Text.h"
#include "workbench/addressing/export/LegalNames.h"
#include "workbench/addressing/export/MapWriters.h"

namespace tq::map_export {

namespace {

/// The last address of a block; that of memory up to the end of 64 bits stays within them.
std::uint64_t lastOf(const MapBlock& block) {
    const std::uint64_t size = std::max<std::uint64_t>(block.size, 1);
    return block.base > UINT64_MAX - (size - 1) ? UINT64_MAX : block.base + (size - 1);
}

/// Names of nodes have "-" where identifiers have "_", and begin with a letter.
std::string nodeName(std::string name) {
    std::replace(name.begin(), name.end(), '_', '-');
    name.erase(0, std::min(name.find_first_not_of('-'), name.size()));
    name = base::lowered(name);
    const bool hasLetter = !name.empty() && name.front() >= 'a' && name.front() <= 'z';
    return hasLetter ? name : "block-" + name;
}

std::string unitOf(std::uint64_t address) {
    return base::lowered(hex(address).substr(2));
}

class Tree {
public:
    Tree(const Sorted& map, const DiagnosticSink& sink) : m_map(map), m_sink(sink), m_labels(sink) {
        for (const Sorted::Block& entry : map.blocks) {
            const MapBlock& block = *entry.block;
            // The length of all 32 bits takes 33.
            m_isWide = m_isWide || lastOf(block) >= UINT32_MAX || block.size > UINT32_MAX;
            claimUnit(block);
        }
    }

    std::string write() {
        m_text = "/* Address map of " + comment(m_map.model->name) +
                 ". Generated; don't edit. */\n/dts-v1/;\n\n/ {\n";
        cells("    ");
        for (const Sorted::Block& entry : m_map.blocks)
            if (entry.block->usage == MapUsage::Memory)
                write(entry, "    ", "memory");
        writeBus();
        return m_text + "};\n";
    }

private:
    /// Of the nodes of one parent only one can have a unit address; one that is on goes first.
    void claimUnit(const MapBlock& block) {
        if (block.size == 0 || block.usage == MapUsage::Reserved)
            return;
        const MapBlock*& owner = m_units[{block.usage == MapUsage::Memory, block.base}];
        if (owner == nullptr || (block.isOn && !owner->isOn))
            owner = &block;
    }

    void cells(const std::string& indent) {
        const std::string count = m_isWide ? "<2>" : "<1>";
        m_text += indent + "#address-cells = " + count + ";\n";
        m_text += indent + "#size-cells = " + count + ";\n";
    }

    [[nodiscard]] std::string cell(std::uint64_t number) const {
        const std::string low = hex(number & UINT32_MAX);
        return m_isWide ? hex(number >> 32) + " " + low : low;
    }

    /// The register blocks of a bus that passes their addresses on as they are.
    void writeBus() {
        std::uint64_t first = UINT64_MAX;
        std::uint64_t last = 0;
        for (const Sorted::Block& entry : m_map.blocks)
            if (entry.block->usage == MapUsage::Register && entry.block->size != 0) {
                first = std::min(first, entry.block->base);
                last = std::max(last, lastOf(*entry.block));
            }
        if (first > last)
            return;
        const std::string indent(8, ' ');
        // A memory at this address would be a second node with the bus's unit address.
        const bool hasUnit = !m_units.contains({true, first});
        m_text += "\n    soc" + (hasUnit ? "@" + unitOf(first) : "") + " {\n" + indent +
                  "compatible = \"simple-bus\";\n";
        cells(indent);
        // All 2^64 bytes have no length in two cells.
        const std::uint64_t length = last - first == UINT64_MAX ? UINT64_MAX : last - first + 1;
        m_text += indent + (hasUnit ? "ranges = <" + cell(first) + " " + cell(first) + " " +
                                          cell(length) + ">;\n"
                                    : "ranges;\n");
        for (const Sorted::Block& entry : m_map.blocks)
            if (entry.block->usage == MapUsage::Register)
                write(entry, indent, nodeName(entry.name));
        m_text += "    };\n";
    }

    void write(const Sorted::Block& entry, const std::string& indent, const std::string& name) {
        const MapBlock& block = *entry.block;
        if (block.size == 0)
            return tellNotExported(m_sink, "the block \"" + block.path + "\"", "it has no size");
        if (const MapBlock* owner = m_units[{block.usage == MapUsage::Memory, block.base}];
            owner != &block)
            return tellNotExported(m_sink, "the block \"" + block.path + "\"",
                                   "\"" + owner->path + "\" is at its address");
        const std::string unit = unitOf(block.base);
        m_text += "\n" + indent + "/* " + comment(block.path) + " */\n";
        m_text += indent + m_labels.take(base::lowered(entry.name), block.path) + ": " + name +
                  "@" + unit + " {\n";
        const std::string inner = indent + "    ";
        if (block.usage == MapUsage::Memory)
            m_text += inner + "device_type = \"memory\";\n";
        m_text += inner + "reg = <" + cell(block.base) + " " + cell(block.size) + ">;\n";
        if (!block.isOn)
            m_text += inner + "status = \"disabled\";\n";
        m_text += indent + "};\n";
    }

    const Sorted& m_map;
    const DiagnosticSink& m_sink;
    LegalNames m_labels;
    /// The blocks that have nodes, by whether they are memory and by their address.
    std::map<std::pair<bool, std::uint64_t>, const MapBlock*> m_units;
    bool m_isWide = false; ///< addresses or sizes beyond 32 bits
    std::string m_text;
};

} // namespace

std::string writeDevicetree(const Sorted& map, const DiagnosticSink& sink) {
    return Tree(map, sink).write();
}

} // namespace tq::map_export
