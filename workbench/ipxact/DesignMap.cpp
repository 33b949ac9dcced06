#include "workbench/ipxact/DesignMap.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "workbench/ipxact/Arithmetic.h"
#include "workbench/text/DiagnosticJson.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Table.h"
#include "workbench/text/TextStream.h"

namespace tq::ipxact {

namespace {

/// What lies at some bits of a bus or of an address space.
struct Extent {
    std::string path;
    Number start;     ///< bits
    Number end;       ///< bits, exclusive
    Int128 pitch = 0; ///< bits from word to word on the bus; 0 where unknown
    const MemoryItem* source = nullptr;
};

using Extents = std::vector<Extent>;

bool endsWith(const std::string& text, std::string_view end) {
    return text.size() >= end.size() &&
           std::equal(end.rbegin(), end.rend(), text.rbegin(), [](char a, char b) {
               return a == (b >= 'a' && b <= 'z' ? static_cast<char>(b - 'a' + 'A') : b);
           });
}

Number spanOf(const Number& left, const Number& right) {
    const Number span = minus(left, right);
    return span ? plus(Number(*span < 0 ? -*span : *span), 1) : Number();
}

/// What the address arithmetic needs to know of an interface; 0 where it is unknown.
struct Wires {
    Int128 dataBits = 0;
    Int128 unitBits = 8;  ///< of the least addressable unit
    Int128 lowestBit = 0; ///< of the logical address that is mapped
    bool steers = false;

    /// From one smallest step of the mapped address to the next.
    [[nodiscard]] Int128 step() const {
        return lowestBit > 30 ? 0 : unitBits << static_cast<int>(lowestBit);
    }
    [[nodiscard]] Int128 pitch() const { return dataBits == 0 ? 0 : std::max(dataBits, step()); }
};

/// The bits of a port map: the physical part that is mapped, else the whole port.
Number mappedBits(const PortMap& map, const Component& component) {
    if (map.physicalLeft && map.physicalRight)
        return spanOf(map.physicalLeft, map.physicalRight);
    for (const Port& port : component.ports)
        if (port.name == map.physical && port.left && port.right)
            return spanOf(port.left, port.right);
    return std::nullopt;
}

Wires wiresOf(const BusInterface& interface, const Component& component) {
    Wires wires;
    wires.steers = interface.steersBits;
    wires.unitBits = interface.bitsInLau.value_or(8);
    if (wires.unitBits < 1 || wires.unitBits > 65'536)
        wires.unitBits = 8;
    for (const PortMap& map : interface.ports) {
        if (endsWith(map.logical, "DATA")) {
            const Number bits = mappedBits(map, component);
            if (bits && *bits <= 1'048'576)
                wires.dataBits = std::max(wires.dataBits, *bits);
        } else if (endsWith(map.logical, "ADDR") && map.logicalLeft && map.logicalRight) {
            wires.lowestBit = std::max<Int128>(std::min(*map.logicalLeft, *map.logicalRight), 0);
        }
    }
    return wires;
}

class Mapper {
public:
    Mapper(const Design& design, const DiagnosticSink& sink) : m_design(design), m_sink(sink) {
        for (const Connection& connection : design.connections) {
            m_peers[{connection.first, false}].push_back(&connection);
            m_peers[{connection.second, connection.isInner}].push_back(&connection);
        }
    }

    std::vector<SeenSpace> map() {
        std::vector<SeenSpace> spaces;
        for (std::size_t i = 0; i < m_design.instances.size(); ++i) {
            const Instance& instance = m_design.instances[i];
            if (instance.isHierarchical)
                continue;
            for (const BusInterface& interface : instance.component.interfaces)
                if (interface.mode == InterfaceMode::Initiator && !isBehindBridge(i, interface))
                    addSpace(spaces, spaceOf({i, interface.name}, interface));
        }
        return spaces;
    }

private:
    /// Clocks and interrupts have initiators too, which see nothing.
    static void addSpace(std::vector<SeenSpace>& spaces, SeenSpace space) {
        if (!space.addressSpace.empty() || !space.blocks.empty())
            spaces.push_back(std::move(space));
    }
    [[nodiscard]] const Component& componentOf(const Endpoint& endpoint) const {
        return m_design.instances[endpoint.instance].component;
    }
    [[nodiscard]] const BusInterface* interfaceOf(const Endpoint& endpoint) const {
        for (const BusInterface& one : componentOf(endpoint).interfaces)
            if (one.name == endpoint.interface)
                return &one;
        return nullptr;
    }
    void report(const char* id, const std::string& file, const Mark& mark,
                const std::string& text) {
        if (!m_sink)
            return;
        Place place = placeOfFile(file);
        place.line = mark.line;
        place.column = mark.column;
        m_sink(makeDiagnostic(Severity::Warning, id, std::move(place), text));
    }

    [[nodiscard]] bool isBehindBridge(std::size_t index, const BusInterface& interface) const {
        const Component& component = m_design.instances[index].component;
        for (const BusInterface& other : component.interfaces)
            for (const Bridge& bridge : other.bridges)
                if (bridge.initiator == interface.name)
                    return true;
        for (const MemoryMap& map : component.memoryMaps)
            if (showsSpaceOf(map.items, interface.name))
                return true;
        return false;
    }
    static bool showsSpaceOf(const std::vector<MemoryItem>& items, const std::string& interface) {
        return std::any_of(items.begin(), items.end(), [&](const MemoryItem& item) {
            return (item.kind == MemoryItem::Kind::Subspace && item.initiator == interface) ||
                   showsSpaceOf(item.items, interface);
        });
    }

    SeenSpace spaceOf(const Endpoint& endpoint, const BusInterface& interface) {
        SeenSpace space;
        space.name = m_design.instances[endpoint.instance].path + "/" + interface.name;
        space.addressSpace = interface.addressSpace;
        const AddressSpace* const own = addressSpaceOf(endpoint, interface);
        const Int128 unit = unitOf(own, interface);
        const Number range = own == nullptr ? Number() : times(own->range, unit);
        for (Extent& extent : spaceExtents(endpoint)) {
            if (extent.start && extent.end &&
                (*extent.start < 0 || (range && *extent.end > *range)))
                report("beyond-space", componentOf(endpoint).file, interface.mark,
                       "\"" + extent.path + "\" lies outside the address space of \"" + space.name +
                           "\"");
            space.blocks.push_back({std::move(extent.path), inUnits(extent.start, unit),
                                    inUnits(extent.end, unit), extent.source});
        }
        std::stable_sort(space.blocks.begin(), space.blocks.end(),
                         [](const SeenBlock& a, const SeenBlock& b) {
                             return a.start && (!b.start || *a.start < *b.start);
                         });
        return space;
    }
    /// Rounded down.
    static Number inUnits(const Number& bits, Int128 unit) {
        if (!bits)
            return std::nullopt;
        return *bits / unit - (*bits % unit < 0 ? 1 : 0);
    }
    static Int128 unitOf(const AddressSpace* space, const BusInterface& interface) {
        const Number unit = space == nullptr ? interface.bitsInLau : space->addressUnitBits;
        return unit && *unit >= 1 ? *unit : 8;
    }
    [[nodiscard]] const AddressSpace* addressSpaceOf(const Endpoint& endpoint,
                                                     const BusInterface& interface) const {
        for (const AddressSpace& space : componentOf(endpoint).addressSpaces)
            if (space.name == interface.addressSpace)
                return &space;
        return nullptr;
    }

    /// What lies in the address space of an initiator, in bits of the space.
    Extents spaceExtents(const Endpoint& endpoint) {
        const BusInterface* const interface = interfaceOf(endpoint);
        if (interface == nullptr)
            return {};
        const AddressSpace* const space = addressSpaceOf(endpoint, *interface);
        const Wires wires = wiresOf(*interface, componentOf(endpoint));
        const Number base = times(interface->base, unitOf(space, *interface));
        Extents extents = busExtents(endpoint, *interface, wires);
        const Int128 ratio = wires.dataBits == 0 ? 1 : wires.pitch() / wires.dataBits;
        for (Extent& extent : extents) {
            extent.start = plus(divided(extent.start, ratio), base);
            extent.end = plus(divided(extent.end, ratio), base);
            extent.pitch = 0;
        }
        if (space != nullptr && space->localMap)
            addItems(extents, endpoint, *space->localMap, space->localMap->items,
                     space->name + "/" + space->localMap->name, 0);
        return extents;
    }
    static Number divided(const Number& number, Int128 ratio) {
        return number && ratio > 1 ? Number(*number / ratio) : number;
    }

    /// What an initiator's bus shows.
    Extents busExtents(const Endpoint& endpoint, const BusInterface& interface,
                       const Wires& wires) {
        Extents all;
        for (const Endpoint& peer : peersOf(endpoint)) {
            const BusInterface* const target = interfaceOf(peer);
            if (target == nullptr || target == &interface)
                continue;
            if (target->mode == InterfaceMode::Target)
                append(all, raised(targetExtents(peer, *target), peer, *target, wires));
            else if (target->mode == InterfaceMode::MirroredInitiator)
                append(all, raised(channelExtents(peer, *target), peer, *target, wires));
        }
        return all;
    }
    static void append(Extents& all, Extents more) {
        std::move(more.begin(), more.end(), std::back_inserter(all));
    }
    /// From an interface to the wider one above it.
    Extents raised(Extents extents, const Endpoint& lower, const BusInterface& interface,
                   const Wires& upper) {
        const Wires wires = wiresOf(interface, componentOf(lower));
        if (wires.steers || upper.steers || wires.dataBits == 0)
            return extents;
        for (Extent& extent : extents) {
            const Int128 pitch = extent.pitch == 0 ? wires.dataBits : extent.pitch;
            if (upper.dataBits <= pitch)
                continue;
            extent.start = times(extent.start, upper.dataBits / pitch);
            extent.end = times(extent.end, upper.dataBits / pitch);
            extent.pitch = upper.dataBits;
        }
        return extents;
    }

    /// What a mirrored initiator shows: the mirrored targets of its channels.
    Extents channelExtents(const Endpoint& endpoint, const BusInterface& interface) {
        const Component& component = componentOf(endpoint);
        const Wires wires = wiresOf(interface, component);
        Extents all;
        for (const Channel& channel : component.channels) {
            const auto& names = channel.interfaces;
            if (std::find(names.begin(), names.end(), interface.name) == names.end())
                continue;
            for (const std::string& name : names) {
                const Endpoint other{endpoint.instance, name};
                const BusInterface* const mirrored = interfaceOf(other);
                if (mirrored != nullptr && mirrored->mode == InterfaceMode::MirroredTarget)
                    append(all, raised(mirroredExtents(other, *mirrored), other, *mirrored, wires));
            }
        }
        return all;
    }
    /// What a mirrored target shows: the target that is connected to it, at its remap addresses.
    Extents mirroredExtents(const Endpoint& endpoint, const BusInterface& interface) {
        const Wires wires = wiresOf(interface, componentOf(endpoint));
        Extents below;
        for (const Endpoint& peer : peersOf(endpoint)) {
            const BusInterface* const target = interfaceOf(peer);
            if (target != nullptr && target->mode == InterfaceMode::Target)
                append(below, raised(targetExtents(peer, *target), peer, *target, wires));
        }
        const std::vector<const RemapAddress*> remaps = remapsOf(interface);
        if (remaps.empty())
            return below;
        Extents all;
        for (const RemapAddress* const remap : remaps)
            for (const Extent& extent : below)
                all.push_back(remapped(extent, *remap, wires, endpoint, interface));
        return all;
    }
    /// Those without a state, else all.
    static std::vector<const RemapAddress*> remapsOf(const BusInterface& interface) {
        std::vector<const RemapAddress*> remaps;
        for (const RemapAddress& remap : interface.remaps)
            if (remap.state.empty())
                remaps.push_back(&remap);
        if (remaps.empty() && !interface.remaps.empty())
            remaps.push_back(&interface.remaps.front());
        return remaps;
    }
    Extent remapped(Extent extent, const RemapAddress& remap, const Wires& wires,
                    const Endpoint& endpoint, const BusInterface& interface) {
        const Number range = times(remap.range, wires.unitBits);
        if (range && *range > 0 && extent.start && extent.end && *extent.end > *range) {
            if (*extent.start < *range)
                extent.end = range;
            else
                report("beyond-range", componentOf(endpoint).file, interface.mark,
                       "\"" + extent.path + "\" lies beyond the range of \"" + interface.name +
                           "\"");
        }
        const Number address = times(remap.address, wires.unitBits);
        extent.start = plus(extent.start, address);
        extent.end = plus(extent.end, address);
        return extent;
    }

    /// What a target shows on its bus: its memory map, and what lies behind its bridges.
    Extents targetExtents(const Endpoint& endpoint, const BusInterface& interface) {
        if (!m_open.insert(endpoint).second) {
            report("loop", componentOf(endpoint).file, interface.mark,
                   "\"" + interface.name + "\" is reached from itself");
            return {};
        }
        Extents all;
        const Component& component = componentOf(endpoint);
        for (const MemoryMap& map : component.memoryMaps)
            if (map.name == interface.memoryMap)
                addItems(all, endpoint, map, map.items, map.name, 0);
        for (const Bridge& bridge : interface.bridges)
            if (!bridge.isOpaque)
                append(all, spaceExtents({endpoint.instance, bridge.initiator}));
        m_open.erase(endpoint);
        spread(all, wiresOf(interface, component));
        return all;
    }
    /// Words lie apart where the lowest address bits aren't mapped.
    static void spread(Extents& extents, const Wires& wires) {
        if (wires.dataBits == 0)
            return;
        const Int128 pitch = wires.pitch(), ratio = pitch / wires.dataBits;
        for (Extent& extent : extents) {
            extent.start = times(extent.start, ratio);
            extent.end = times(extent.end, ratio);
            extent.pitch = pitch;
        }
    }

    void addItems(Extents& all, const Endpoint& endpoint, const MemoryMap& map,
                  const std::vector<MemoryItem>& items, const std::string& path,
                  const Number& bank) {
        Number next = bank;
        for (const MemoryItem& item : items) {
            const Number unit = map.addressUnitBits;
            const Number base = item.base ? plus(bank, times(item.base, unit)) : next;
            const Number size = times(extentOf(item), unit);
            const std::string name = path + "/" + item.name;
            if (item.kind == MemoryItem::Kind::Subspace)
                addSubspace(all, endpoint, item, base);
            else if (item.kind == MemoryItem::Kind::Bank && !item.isParallel)
                addItems(all, endpoint, map, item.items, name, base);
            else if (item.kind == MemoryItem::Kind::Bank)
                addParallel(all, endpoint, item, name, base, size);
            else
                addBlock(all, endpoint, item, name, base, size);
            next = plus(next, size);
        }
    }
    /// In address units.
    static Number extentOf(const MemoryItem& item) {
        if (item.kind == MemoryItem::Kind::Block)
            return times(item.range, countOf(item.array));
        Number sum = 0;
        for (const MemoryItem& inner : item.items)
            sum = plus(sum, extentOf(inner));
        return sum;
    }
    /// Blocks beside one another all take the addresses of the bank.
    void addParallel(Extents& all, const Endpoint& endpoint, const MemoryItem& bank,
                     const std::string& path, const Number& base, const Number& size) {
        for (const MemoryItem& item : bank.items) {
            const std::string name = path + "/" + item.name;
            if (item.kind == MemoryItem::Kind::Bank)
                addParallel(all, endpoint, item, name, base, size);
            else if (item.kind == MemoryItem::Kind::Block)
                addBlock(all, endpoint, item, name, base, size);
        }
    }
    void addBlock(Extents& all, const Endpoint& endpoint, const MemoryItem& item,
                  const std::string& path, const Number& base, const Number& size) {
        if (++m_seen == kMostSeen)
            report("too-many-blocks", m_design.file, {},
                   "more than " + std::to_string(kMostSeen) + " blocks are seen");
        if (m_seen < kMostSeen)
            all.push_back({m_design.instances[endpoint.instance].path + "/" + path, base,
                           plus(base, size), 0, &item});
    }
    void addSubspace(Extents& all, const Endpoint& endpoint, const MemoryItem& item,
                     const Number& base) {
        const Endpoint initiator{endpoint.instance, item.initiator};
        const BusInterface* const interface = interfaceOf(initiator);
        if (interface == nullptr)
            return;
        const Segment* const segment = segmentOf(initiator, *interface, item.segment);
        const Int128 unit = unitOf(addressSpaceOf(initiator, *interface), *interface);
        for (Extent& extent : spaceExtents(initiator)) {
            if (segment != nullptr && !clip(extent, *segment, unit))
                continue;
            extent.start = plus(extent.start, base);
            extent.end = plus(extent.end, base);
            all.push_back(std::move(extent));
        }
    }
    [[nodiscard]] const Segment* segmentOf(const Endpoint& initiator, const BusInterface& interface,
                                           const std::string& name) const {
        if (const AddressSpace* const space = addressSpaceOf(initiator, interface))
            for (const Segment& segment : space->segments)
                if (!name.empty() && segment.name == name)
                    return &segment;
        return nullptr;
    }
    /// To the part in the segment, counted from its start; gives false where there is none.
    static bool clip(Extent& extent, const Segment& segment, Int128 unit) {
        const Number from = times(segment.offset, unit);
        const Number to = plus(from, times(segment.range, unit));
        if (from && to && extent.start && extent.end) {
            if (*extent.end <= *from || *extent.start >= *to)
                return false;
            extent.start = std::max(*extent.start, *from);
            extent.end = std::min(*extent.end, *to);
        }
        extent.start = minus(extent.start, from);
        extent.end = minus(extent.end, from);
        return true;
    }

    /// The interfaces of leaves that an interface is connected to, through the borders of
    /// hierarchical instances.
    std::vector<Endpoint> peersOf(const Endpoint& endpoint) {
        std::vector<Endpoint> found;
        std::set<std::pair<Endpoint, bool>> visited;
        collectPeers({endpoint, false}, found, visited);
        return found;
    }
    /// `side.second` says that the interface is seen from inside its instance.
    void collectPeers(const std::pair<Endpoint, bool>& side, std::vector<Endpoint>& found,
                      std::set<std::pair<Endpoint, bool>>& visited) {
        if (!visited.insert(side).second)
            return;
        const auto connections = m_peers.find(side);
        if (connections == m_peers.end())
            return;
        for (const Connection* const connection : connections->second) {
            const bool isFirst = connection->first == side.first && !side.second;
            const Endpoint& other = isFirst ? connection->second : connection->first;
            const bool fromInside = isFirst && connection->isInner;
            const std::pair<Endpoint, bool> beyond{other, !fromInside};
            if (fromInside || m_peers.contains(beyond))
                collectPeers({other, !fromInside}, found, visited);
            else
                found.push_back(other);
        }
    }

    const Design& m_design;
    const DiagnosticSink& m_sink;
    std::map<std::pair<Endpoint, bool>, std::vector<const Connection*>> m_peers;
    std::set<Endpoint> m_open; ///< targets on the way
    std::size_t m_seen = 0;
};

void writeNumber(JsonWriter& json, std::string_view key, const Number& number) {
    json.writeKey(key);
    if (number)
        json.rawNumber(decimalText(*number));
    else
        json.null();
}

} // namespace

std::vector<SeenSpace> mapDesign(const Design& design, const DiagnosticSink& sink) {
    return Mapper(design, sink).map();
}

std::string designMapTable(const std::vector<SeenSpace>& spaces) {
    TextStream out;
    for (const SeenSpace& space : spaces) {
        out << space.name
            << (space.addressSpace.empty() ? "" : ", address space " + space.addressSpace) << '\n';
        Table table({{"start", Table::Align::Right}, {"last", Table::Align::Right}, {"block"}});
        for (const SeenBlock& block : space.blocks)
            table.addRow({block.start ? hexText(*block.start) : "?",
                          block.end ? hexText(*block.end - 1) : "?", block.path});
        if (!table.empty())
            table.print(out);
        out << '\n';
    }
    return out.str();
}

std::string designMapJson(const std::vector<SeenSpace>& spaces,
                          const std::vector<Diagnostic>& findings) {
    JsonWriter json;
    json.beginObject();
    json.beginArray("initiators");
    for (const SeenSpace& space : spaces) {
        json.beginObject();
        json.member("name", space.name);
        json.member("address_space", space.addressSpace);
        json.beginArray("blocks");
        for (const SeenBlock& block : space.blocks) {
            json.beginObject();
            json.member("path", block.path);
            writeNumber(json, "start", block.start);
            writeNumber(json, "end", block.end);
            json.endObject();
        }
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.writeKey("diagnostics");
    writeDiagnostics(json, findings);
    json.endObject();
    return json.text();
}

} // namespace tq::ipxact
