#include "workbench/handoff/HandoffMap.h"

#include <algorithm>
#include <set>
#include <string_view>
#include <tuple>
#include <utility>

#include "workbench/files/InputError.h"
#include "workbench/text/AddressText.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/Text.h"
#include "workbench/text/TextStream.h"

namespace tq {

namespace {

using Range = HBSHandoff::Range;

bool hasPlace(const Range& range) {
    return range.baseAddress && range.highAddress && *range.baseAddress <= *range.highAddress;
}

/// Finds overlaps and gaps in ranges that are in order.
void compareNeighbours(HandoffMap& map) {
    std::size_t furthest = 0;
    for (std::size_t i = 1; i < map.placed; ++i) {
        const std::uint64_t end = *map.ranges[furthest].highAddress;
        const std::uint64_t base = *map.ranges[i].baseAddress;
        const std::uint64_t high = *map.ranges[i].highAddress;
        if (base <= end)
            map.overlaps.push_back({furthest, i, {base, std::min(end, high)}});
        else if (base - end > 1)
            map.gaps.push_back({end + 1, base - 1});
        if (high > end)
            furthest = i;
    }
}

HandoffMap mapOf(const HBSHandoff& handoff, std::size_t module) {
    HandoffMap map;
    map.master = handoff.module(module).name;
    map.ranges = handoff.ranges(module);
    const auto placed = std::stable_partition(map.ranges.begin(), map.ranges.end(), hasPlace);
    map.placed = static_cast<std::size_t>(placed - map.ranges.begin());
    std::stable_sort(map.ranges.begin(), placed, [](const Range& a, const Range& b) {
        return std::tie(*a.baseAddress, *a.highAddress) < std::tie(*b.baseAddress, *b.highAddress);
    });
    compareNeighbours(map);
    return map;
}

std::string sizeOf(const Range& range) {
    return hasPlace(range) ? sizeText(*range.baseAddress, *range.highAddress) : "?";
}

/// Rows of a table in the order of the addresses: ranges and gaps.
void addRows(Table& table, const HandoffMap& map) {
    auto overlap = map.overlaps.begin();
    auto gap = map.gaps.begin();
    for (std::size_t i = 0; i < map.ranges.size(); ++i) {
        const Range& range = map.ranges[i];
        if (i < map.placed && gap != map.gaps.end() && gap->last < *range.baseAddress) {
            table.addRow({hexText(gap->first), hexText(gap->last), sizeText(gap->first, gap->last),
                          "", "", "", "gap"});
            ++gap;
        }
        std::string remark = i < map.placed ? "" : "has no place";
        if (overlap != map.overlaps.end() && overlap->after == i)
            remark = "overlaps " + std::string(map.ranges[overlap++->before].slave);
        table.addRow({std::string(range.base), std::string(range.high), sizeOf(range),
                      std::string(range.slave), std::string(range.instance),
                      std::string(range.memoryType), remark});
    }
}

void writeRange(JsonWriter& json, const Range& range) {
    json.beginObject();
    json.member("slave", range.slave);
    json.member("instance", range.instance);
    json.member("base", range.base);
    json.member("high", range.high);
    json.member("memory_type", range.memoryType);
    json.member("is_data", range.isData);
    json.member("is_instruction", range.isInstruction);
    json.endObject();
}

void writeSpan(JsonWriter& json, const HandoffMap::Span& span) {
    json.member("base", hexText(span.first));
    json.member("high", hexText(span.last));
}

void writeMap(JsonWriter& json, const HandoffMap& map) {
    json.beginObject();
    json.member("name", map.master);
    json.beginArray("ranges");
    for (const Range& range : map.ranges)
        writeRange(json, range);
    json.endArray();
    json.beginArray("overlaps");
    for (const HandoffMap::Overlap& overlap : map.overlaps) {
        json.beginObject();
        json.beginArray("instances");
        json.value(map.ranges[overlap.before].instance);
        json.value(map.ranges[overlap.after].instance);
        json.endArray();
        writeSpan(json, overlap.shared);
        json.endObject();
    }
    json.endArray();
    json.beginArray("gaps");
    for (const HandoffMap::Span& gap : map.gaps) {
        json.beginObject();
        writeSpan(json, gap);
        json.endObject();
    }
    json.endArray();
    json.endObject();
}

/// The length of all 64 bits has none.
MapBlock blockOf(const Range& range) {
    MapBlock block;
    block.path = range.slave;
    block.description = range.instance == range.slave ? "" : std::string(range.instance);
    block.base = *range.baseAddress;
    const std::uint64_t span = *range.highAddress - *range.baseAddress;
    block.size = span == UINT64_MAX ? span : span + 1;
    block.usage = range.memoryType == "MEMORY" ? MapUsage::Memory : MapUsage::Register;
    return block;
}

} // namespace

std::vector<HandoffMap> handoffMaps(const HBSHandoff& handoff, const std::string& master) {
    std::vector<HandoffMap> maps;
    std::string names;
    for (std::size_t i = 0; i < handoff.moduleCount(); ++i) {
        const HBSHandoff::Module module = handoff.module(i);
        if (!module.isMaster)
            continue;
        names.append(names.empty() ? "" : ", ").append(module.name);
        if (master.empty() || master == module.name)
            maps.push_back(mapOf(handoff, i));
    }
    if (maps.empty() && !master.empty())
        throw InputError("there is no master \"" + master + "\"" +
                         (names.empty() ? "" : ", expected one of: " + names));
    return maps;
}

std::string handoffMapTables(const std::vector<HandoffMap>& maps) {
    using Align = Table::Align;
    TextStream out;
    for (const HandoffMap& map : maps) {
        out << (&map == &maps.front() ? "" : "\n") << "As seen from " << printable(map.master)
            << ":\n";
        Table table({{"base", Align::Right},
                     {"high", Align::Right},
                     {"size", Align::Right},
                     {"slave"},
                     {"instance"},
                     {"memory"},
                     {"remark"}});
        addRows(table, map);
        table.print(out);
    }
    return out.str();
}

std::string handoffMapJson(const std::vector<HandoffMap>& maps) {
    JsonWriter json;
    json.beginObject();
    json.beginArray("masters");
    for (const HandoffMap& map : maps)
        writeMap(json, map);
    json.endArray();
    json.endObject();
    return json.text();
}

MapModel handoffMapModel(const std::vector<HandoffMap>& maps, const std::string& name,
                         const DiagnosticSink& sink) {
    MapModel model;
    model.name = name;
    std::set<std::tuple<std::string_view, std::string_view, std::string_view>> seen;
    for (const HandoffMap& map : maps)
        for (const Range& range : map.ranges) {
            if (!seen.emplace(range.slave, range.base, range.high).second)
                continue;
            if (hasPlace(range))
                model.blocks.push_back(blockOf(range));
            else if (sink)
                sink(makeDiagnostic(Severity::Remark, "not-exported", {},
                                    "the range of \"" + std::string(range.slave) +
                                        "\" isn't in the exported file: it has no place"));
        }
    return model;
}

} // namespace tq
