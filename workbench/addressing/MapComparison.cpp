#include "workbench/addressing/MapComparison.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <map>
#include <ostream>
#include <utility>

#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"

namespace tq {

namespace {

/// What is compared of one map.
struct Content {
    struct Register {
        std::string offset;
        std::string width;
        std::string value;
    };
    struct Block {
        std::string base;
        std::string size;
        std::string interfaces;
        bool isOn = true;
        bool hasRegisters = false;
        std::map<std::string, Register> registers; ///< by name
    };

    std::map<std::string, Block> blocks;
    std::map<std::string, std::string> assigned;   ///< "SPACE: BLOCK" to the ranges
    std::map<std::string, std::string> conditions; ///< of what is off, by path

    void addAssigned(const std::string& key, const std::string& range) {
        std::string& ranges = assigned[key];
        ranges += (ranges.empty() ? "" : ", ") + range;
    }
};

std::string joined(const std::string& interfaces, const std::string& ports) {
    return interfaces + (ports.empty() ? "" : " from " + ports);
}

/// "?" for what can't be computed.
std::string textOf(const HABMAddrValue& value) {
    return value.isValid() ? value.getPrettyHexStringValue(0) : "?";
}

std::string namesOf(const std::vector<const HABMInterface*>& interfaces) {
    std::string all;
    for (const HABMInterface* const interface : interfaces)
        all += (all.empty() ? "" : ", ") + interface->getInterfaceName();
    return all;
}

Content::Block contentOf(const AddressMap& map, const AddressMap::Block& block) {
    Content::Block made;
    made.base = textOf(block.base);
    made.size = textOf(block.size);
    made.isOn = block.instance != nullptr;
    made.interfaces = joined(namesOf(block.access->interfaces), namesOf(block.access->ports));
    made.hasRegisters = true;
    for (const HABMRegister* const reg : AddressMap::registersOf(block))
        made.registers[reg->getName()] = {textOf(reg->getOffset()), std::to_string(reg->getWidth()),
                                          textOf(map.valueOf(block, *reg))};
    return made;
}

/// The same as is read from the map's JSON, which has a bound on its values.
Content contentOf(const AddressMap& map) {
    Content made;
    for (const AddressMap::Block& block : map.blocks())
        made.blocks[block.path] = contentOf(map, block);
    for (const AddressMap::Space& space : map.spaces())
        for (const AddressMap::SpaceEntry& entry : space.assigned)
            made.addAssigned(space.path + ": " + entry.name,
                             textOf(entry.start) + " to " +
                                 textOf(AddressMap::endOf(entry.start, entry.size)) + " " +
                                 HABMAddrAssign::decodeAssignType(entry.assign->getAssignType()));
    for (const AddressMap::Removed& item : map.removed())
        made.conditions[item.path] = item.interface == nullptr ? item.block->getEnablement()
                                                               : item.interface->getEnablement();
    return made;
}

class ContentReader {
public:
    explicit ContentReader(const JsonFile& file) : m_file(file) {}

    Content read() {
        const JsonNode& root = m_file.root();
        for (const JsonNode& node : m_file.array(m_file.require(root, "blocks"))) {
            const std::string path = text(node, "path");
            m_content.blocks[path] = block(node);
        }
        for (const JsonNode& space : m_file.array(m_file.require(root, "spaces")))
            for (const JsonNode& entry : m_file.array(m_file.require(space, "assigned")))
                m_content.addAssigned(text(space, "path") + ": " + text(entry, "name"),
                                      text(entry, "start") + " to " + text(entry, "end") + " " +
                                          text(entry, "type"));
        for (const JsonNode& node : m_file.array(m_file.require(root, "removed")))
            m_content.conditions[text(node, "path")] = text(node, "condition");
        return std::move(m_content);
    }

private:
    /// "?" for null, which the map has for what can't be computed.
    [[nodiscard]] std::string text(const JsonNode& object, const char* key) const {
        const JsonNode& node = m_file.require(object, key);
        return node.kind == JsonNode::Kind::Null ? "?" : m_file.string(node);
    }

    [[nodiscard]] std::string width(const JsonNode& reg) const {
        const JsonNode& node = m_file.require(reg, "width");
        static_cast<void>(m_file.number(node));
        return node.text;
    }

    [[nodiscard]] std::string names(const JsonNode& object, const char* key) const {
        std::string all;
        for (const JsonNode& name : m_file.array(m_file.require(object, key)))
            all += (all.empty() ? "" : ", ") + m_file.string(name);
        return all;
    }

    [[nodiscard]] Content::Block block(const JsonNode& node) const {
        Content::Block made;
        made.base = text(node, "base");
        made.size = text(node, "size");
        made.isOn = m_file.boolean(m_file.require(node, "on"));
        made.interfaces = joined(names(node, "interfaces"), names(node, "ports"));
        if (const JsonNode* const registers = node.find("registers")) {
            made.hasRegisters = true;
            for (const JsonNode& reg : m_file.array(*registers))
                made.registers[text(reg, "name")] = {text(reg, "offset"), width(reg),
                                                     text(reg, "value")};
        }
        return made;
    }

    const JsonFile& m_file;
    Content m_content;
};

/// Calls `visit` with each key that either map has, and the two values; null for one that is
/// missing.
template <class Value, class Visit>
void forEachPair(const std::map<std::string, Value>& before,
                 const std::map<std::string, Value>& after, const Visit& visit) {
    auto a = before.begin();
    auto b = after.begin();
    while (a != before.end() || b != after.end()) {
        const bool hasA = a != before.end() && (b == after.end() || a->first <= b->first);
        const bool hasB = b != after.end() && (a == before.end() || b->first <= a->first);
        visit(hasA ? a->first : b->first, hasA ? &a->second : nullptr, hasB ? &b->second : nullptr);
        if (hasA)
            ++a;
        if (hasB)
            ++b;
    }
}

class Comparison {
public:
    Comparison(const Content& before, const Content& after) : m_before(before), m_after(after) {}

    std::vector<MapDifference> run() {
        // Values first: they are the reasons of what was switched.
        forEachPair(
            m_before.blocks, m_after.blocks,
            [this](const std::string& path, const Content::Block* a, const Content::Block* b) {
                if (a != nullptr && b != nullptr && a->hasRegisters && b->hasRegisters)
                    compareRegisters(path, *a, *b);
            });
        std::vector<MapDifference> registers;
        registers.swap(m_differences);
        for (const MapDifference& difference : registers)
            if (difference.kind == "value")
                m_values.emplace(difference.path, &difference);
        forEachPair(m_before.blocks, m_after.blocks,
                    [this](const std::string& path, const Content::Block* a,
                           const Content::Block* b) { compare(path, a, b); });
        forEachPair(m_before.assigned, m_after.assigned,
                    [this](const std::string& path, const std::string* a, const std::string* b) {
                        add("assign", path, a == nullptr ? "" : *a, b == nullptr ? "" : *b);
                    });
        std::move(registers.begin(), registers.end(), std::back_inserter(m_differences));
        return std::move(m_differences);
    }

private:
    void add(const char* kind, const std::string& path, const std::string& before,
             const std::string& after, const std::string& reason = "") {
        if (before != after)
            m_differences.push_back({kind, path, before, after, reason});
    }

    void compare(const std::string& path, const Content::Block* a, const Content::Block* b) {
        if (a == nullptr)
            return add("appeared", path, "", b->base);
        if (b == nullptr)
            return add("gone", path, a->base, "");
        if (a->isOn != b->isOn)
            add(b->isOn ? "on" : "off", path, a->isOn ? "on" : "off", b->isOn ? "on" : "off",
                reasonOf(path, a->isOn ? m_after : m_before));
        add("moved", path, a->base, b->base);
        add("resized", path, a->size, b->size);
        // What is off has no interfaces.
        if (a->isOn && b->isOn)
            add("interfaces", path, a->interfaces, b->interfaces);
    }

    void compareRegisters(const std::string& path, const Content::Block& a,
                          const Content::Block& b) {
        forEachPair(a.registers, b.registers,
                    [&](const std::string& name, const Content::Register* before,
                        const Content::Register* after) {
                        compare(std::string(path).append("/").append(name), before, after);
                    });
    }

    void compare(const std::string& path, const Content::Register* a, const Content::Register* b) {
        if (a == nullptr)
            return add("appeared", path, "", b->offset);
        if (b == nullptr)
            return add("gone", path, a->offset, "");
        add("moved", path, a->offset, b->offset);
        add("resized", path, a->width, b->width);
        add("value", path, a->value, b->value);
    }

    /// The condition of the block, or of one around it, and the registers it names that differ.
    [[nodiscard]] std::string reasonOf(std::string path, const Content& off) const {
        for (std::size_t slash = path.rfind('/'); !off.conditions.contains(path);
             slash = path.rfind('/')) {
            if (slash == std::string::npos)
                return {};
            path.resize(slash);
        }
        const std::string& condition = off.conditions.at(path);
        std::string reason = condition.empty() ? "" : "stays if " + condition;
        const std::string below = path + "/";
        for (auto at = m_values.lower_bound(below);
             at != m_values.end() && at->first.starts_with(below); ++at) {
            const std::string name = at->first.substr(at->first.rfind('/') + 1);
            if (isNamed(name, condition))
                reason += "; " + name + " is " + at->second->before + " and " + at->second->after;
        }
        return reason;
    }

    /// True if the name stands in the text, not as a part of a longer one.
    static bool isNamed(const std::string& name, const std::string& text) {
        const auto isPart = [&](std::size_t at) {
            return at < text.size() &&
                   (std::isalnum(static_cast<unsigned char>(text[at])) != 0 || text[at] == '_');
        };
        for (std::size_t at = text.find(name); at != std::string::npos;
             at = text.find(name, at + 1))
            if ((at == 0 || !isPart(at - 1)) && !isPart(at + name.size()))
                return true;
        return false;
    }

    const Content& m_before;
    const Content& m_after;
    std::map<std::string, const MapDifference*> m_values; ///< that differ, by path
    std::vector<MapDifference> m_differences;
};

} // namespace

std::vector<MapDifference> compareMaps(const JsonFile& before, const JsonFile& after) {
    const Content a = ContentReader(before).read();
    const Content b = ContentReader(after).read();
    return Comparison(a, b).run();
}

std::vector<MapDifference> compareMaps(const AddressMap& before, const AddressMap& after) {
    const Content a = contentOf(before);
    const Content b = contentOf(after);
    return Comparison(a, b).run();
}

void printDifferences(std::ostream& out, const std::vector<MapDifference>& differences) {
    Table table({{"what"}, {"path"}, {"before"}, {"after"}, {"because"}});
    for (const MapDifference& difference : differences)
        table.addRow({difference.kind, difference.path,
                      difference.before.empty() ? "-" : difference.before,
                      difference.after.empty() ? "-" : difference.after, difference.reason});
    table.print(out);
}

std::string differencesJson(const std::vector<MapDifference>& differences) {
    JsonWriter json;
    json.beginObject();
    json.beginArray("differences");
    for (const MapDifference& difference : differences) {
        json.beginObject();
        json.member("kind", difference.kind);
        json.member("path", difference.path);
        json.member("before", difference.before);
        json.member("after", difference.after);
        json.member("reason", difference.reason);
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return json.text();
}

} // namespace tq
