#include "workbench/addressing/MapComparison.h"

#include <algorithm>
#include <map>
#include <ostream>
#include <utility>

#include "workbench/addressing/AddressMapJson.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"

namespace tq {

namespace {

/// What is compared of one map.
struct Content {
    struct Block {
        std::string base;
        std::string size;
        std::string interfaces;
        bool isOn = true;
        std::map<std::string, std::string> values; ///< of registers, by name
    };

    std::map<std::string, Block> blocks;
    std::map<std::string, std::string> assigned;   ///< "SPACE: BLOCK" to the ranges
    std::map<std::string, std::string> conditions; ///< of what is off, by path
};

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
            for (const JsonNode& entry : m_file.array(m_file.require(space, "assigned"))) {
                std::string& ranges =
                    m_content.assigned[text(space, "path") + ": " + text(entry, "name")];
                ranges += (ranges.empty() ? "" : ", ") + text(entry, "start") + " to " +
                          text(entry, "end") + " " + text(entry, "type");
            }
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
        const std::string ports = names(node, "ports");
        made.interfaces = names(node, "interfaces") + (ports.empty() ? "" : " from " + ports);
        if (const JsonNode* const registers = node.find("registers"))
            for (const JsonNode& reg : m_file.array(*registers))
                made.values[text(reg, "name")] = text(reg, "value");
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
                if (a != nullptr && b != nullptr)
                    compareValues(path, *a, *b);
            });
        std::vector<MapDifference> values;
        values.swap(m_differences);
        m_values = &values;
        forEachPair(m_before.blocks, m_after.blocks,
                    [this](const std::string& path, const Content::Block* a,
                           const Content::Block* b) { compare(path, a, b); });
        forEachPair(m_before.assigned, m_after.assigned,
                    [this](const std::string& path, const std::string* a, const std::string* b) {
                        add("assign", path, a == nullptr ? "" : *a, b == nullptr ? "" : *b);
                    });
        std::move(values.begin(), values.end(), std::back_inserter(m_differences));
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

    void compareValues(const std::string& path, const Content::Block& a, const Content::Block& b) {
        const std::string prefix = path + "/";
        for (const auto& [name, value] : a.values)
            if (const auto found = b.values.find(name);
                found != b.values.end() && found->second != value)
                add("value", std::string(prefix).append(name), value, found->second);
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
        for (const MapDifference& value : *m_values) {
            const std::string name = value.path.substr(value.path.rfind('/') + 1);
            if (value.path.starts_with(path + "/") && condition.find(name) != std::string::npos)
                reason += "; " + name + " is " + value.before + " and " + value.after;
        }
        return reason;
    }

    const Content& m_before;
    const Content& m_after;
    const std::vector<MapDifference>* m_values = nullptr;
    std::vector<MapDifference> m_differences;
};

} // namespace

std::vector<MapDifference> compareMaps(const JsonFile& before, const JsonFile& after) {
    const Content a = ContentReader(before).read();
    const Content b = ContentReader(after).read();
    return Comparison(a, b).run();
}

std::vector<MapDifference> compareMaps(const AddressMap& before, const AddressMap& after) {
    return compareMaps(JsonFile::parse("", addressMapJson(before, true)),
                       JsonFile::parse("", addressMapJson(after, true)));
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
