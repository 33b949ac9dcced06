#include "handoff/HWHRangeCheck.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "base/Address.h"
#include "handoff/HWHMemoryMaps.h"
#include "handoff/HWHVocabulary.h"

namespace hwh {

namespace {

using base::JsonNode;

struct Range {
    std::uint64_t base = 0;
    std::uint64_t high = 0;
    std::uint32_t slave = 0; ///< number in `Model::slaves`
};

/// The nodes of a slave's addresses, of which the last of each counts.
struct AddressNodes {
    std::optional<JsonNode> base;
    std::optional<JsonNode> high;
};

class RangeCheck {
public:
    RangeCheck(const Model& model, const Findings& findings)
        : m_model(model), m_findings(findings) {}

    void run() {
        for (std::uint32_t slave = 0; slave < m_model.slaves.size(); ++slave)
            addRange(slave);
        std::sort(m_ranges.begin(), m_ranges.end(), [](const Range& a, const Range& b) {
            return a.base != b.base ? a.base < b.base : a.slave < b.slave;
        });
        m_isReached.resize(m_model.slaves.size());
        MemoryMaps maps(m_model);
        bool hasSweptAll = false;
        for (const Module& module : m_model.modules) {
            if (m_model.instances[module.instance].role != Role::Master)
                continue;
            const auto reachable = maps.reachableFrom(module);
            const bool isAll = reachable.size() == m_model.slaves.size();
            if (!isAll || !hasSweptAll)
                sweep(module, reachable);
            hasSweptAll = hasSweptAll || isAll;
        }
    }

private:
    void addRange(std::uint32_t slave);
    [[nodiscard]] std::optional<std::uint64_t> addressAt(const std::optional<JsonNode>& node,
                                                         const char* name,
                                                         const Instance& instance) const;
    void sweep(const Module& master, std::span<const std::uint32_t> reachable);
    void reportOverlap(const Module& master, const Range& before, const Range& range);

    [[nodiscard]] const Instance& instanceOf(std::uint32_t slave) const {
        return m_model.instances[m_model.slaves[slave]];
    }
    [[nodiscard]] AddressNodes nodesOf(const Instance& instance) const {
        AddressNodes nodes;
        m_model.tape->node(instance.node)
            .forEachMember([&](const JsonNode& name, const JsonNode& value) {
                if (name.text() == scalar::kBaseAddress)
                    nodes.base = value;
                else if (name.text() == scalar::kHighAddress)
                    nodes.high = value;
            });
        return nodes;
    }
    [[nodiscard]] std::string described(const Range& range) const {
        const InstanceFacts facts = m_model.factsOf(instanceOf(range.slave));
        return std::string(facts.sdkName)
            .append(" (")
            .append(facts.baseAddress)
            .append(" to ")
            .append(facts.highAddress)
            .append(")");
    }

    const Model& m_model;
    const Findings& m_findings;
    std::vector<Range> m_ranges;                  ///< ordered by base
    std::vector<char> m_isReached;                ///< by slave, from the master that is swept
    std::unordered_set<std::uint64_t> m_reported; ///< pairs of slaves
};

std::optional<std::uint64_t> RangeCheck::addressAt(const std::optional<JsonNode>& node,
                                                   const char* name,
                                                   const Instance& instance) const {
    const std::string who(m_model.text(instance.name));
    if (!node || textOf(*node).empty()) {
        if (!node || node->isString()) // another type is reported as such
            m_findings.warn("missing-address",
                            node.value_or(m_model.tape->node(instance.name.node)),
                            quoted(who) + " has no " + name + ", so its range is open");
        return std::nullopt;
    }
    const auto address = base::readAddress(textOf(*node));
    if (!address)
        m_findings.warn("unreadable-address", *node,
                        quoted(who) + " has the " + name + " " + quoted(textOf(*node)),
                        "an address of up to 64 bits, as in 0xFF000000");
    return address;
}

/// A slave may have no addresses at all.
void RangeCheck::addRange(std::uint32_t slave) {
    const Instance& instance = instanceOf(slave);
    const AddressNodes nodes = nodesOf(instance);
    if (!nodes.base && !nodes.high)
        return;
    const auto base = addressAt(nodes.base, scalar::kBaseAddress, instance);
    const auto high = addressAt(nodes.high, scalar::kHighAddress, instance);
    if (!base || !high)
        return;
    const Range range{*base, *high, slave};
    if (range.high < range.base)
        m_findings.warn("empty-range", *nodes.high,
                        "the range of " + described(range) + " ends before it starts");
    else
        m_ranges.push_back(range);
}

/// A sweep by start address: each range is compared with the one that reaches furthest among those
/// that start before it, so the time is that of sorting.
void RangeCheck::sweep(const Module& master, std::span<const std::uint32_t> reachable) {
    std::fill(m_isReached.begin(), m_isReached.end(), char{0});
    for (const std::uint32_t slave : reachable)
        m_isReached[slave] = 1;
    const Range* furthest = nullptr;
    for (const Range& range : m_ranges) {
        if (m_isReached[range.slave] == 0)
            continue;
        if (furthest != nullptr && range.base <= furthest->high)
            reportOverlap(master, *furthest, range);
        if (furthest == nullptr || range.high > furthest->high)
            furthest = &range;
    }
}

void RangeCheck::reportOverlap(const Module& master, const Range& before, const Range& range) {
    const Instance& a = instanceOf(before.slave);
    const Instance& b = instanceOf(range.slave);
    if (a.moduleName == b.moduleName && before.base == range.base && before.high == range.high)
        return;
    if (!m_reported.insert(std::uint64_t{before.slave} << 32U | range.slave).second)
        return;
    m_findings.warn("overlapping-ranges", *nodesOf(b).base,
                    described(range) + " overlaps " + described(before) + " in the map of " +
                        std::string(master.name),
                    *nodesOf(a).base, "the other range starts here");
}

} // namespace

void checkRanges(const Model& model, const Findings& findings) {
    RangeCheck(model, findings).run();
}

} // namespace hwh
