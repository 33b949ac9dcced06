// Address maps, and what people ask of them.

#include <memory>
#include <optional>

#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/AddressingParts.h"
#include "bindings/interface/Findings.h"
#include "workbench/addressing/AddressMapJson.h"
#include "workbench/addressing/AddressMapPicture.h"
#include "workbench/addressing/AddressMapTables.h"
#include "workbench/addressing/MapChecks.h"
#include "workbench/addressing/MapQuestions.h"
#include "workbench/addressing/export/AddressMapModel.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/text/TextStream.h"

namespace tq::bindings {

/// An address map with its name for people.
struct ScriptMap {
    AddressMap addresses;
    std::string name;

    [[nodiscard]] const AddressMap& map() const { return addresses; }
};

struct MapRow {
    HABMAddrValue base;
    HABMAddrValue end;
    HABMAddrValue size;
    std::string path;
    std::string name;
    std::string usage;
    bool on = true;
    std::vector<std::string> interfaces;
    std::vector<std::string> ports;
};
template <>
struct RecordOf<MapRow> {
    static constexpr const char* name = "MapBlock";
    static constexpr auto fields =
        std::tuple{field("base", &MapRow::base),  field("end", &MapRow::end),
                   field("size", &MapRow::size),  field("path", &MapRow::path),
                   field("name", &MapRow::name),  field("usage", &MapRow::usage),
                   field("on", &MapRow::on),      field("interfaces", &MapRow::interfaces),
                   field("ports", &MapRow::ports)};
};

struct SpaceRow {
    HABMAddrValue start;
    HABMAddrValue end;
    HABMAddrValue size;
    std::string name;
};
template <>
struct RecordOf<SpaceRow> {
    static constexpr const char* name = "MapSpaceEntry";
    static constexpr auto fields =
        std::tuple{field("start", &SpaceRow::start), field("end", &SpaceRow::end),
                   field("size", &SpaceRow::size), field("name", &SpaceRow::name)};
};

struct MapSpace {
    std::string path;
    std::vector<SpaceRow> windows;
    std::vector<SpaceRow> assigned;
};
template <>
struct RecordOf<MapSpace> {
    static constexpr const char* name = "MapSpace";
    static constexpr auto fields =
        std::tuple{field("path", &MapSpace::path), field("windows", &MapSpace::windows),
                   field("assigned", &MapSpace::assigned)};
};

/// An answer with the names of what it points to.
struct MatchRow {
    std::optional<std::string> initiator;
    std::optional<std::string> space;
    std::string block;
    bool on = true;
    HABMAddrValue address;
    std::optional<std::string> reg;
    HABMAddrValue offset;
    std::optional<std::string> access;
    HABMAddrValue reset;
    HABMAddrValue value;
    std::optional<std::string> assign;
    std::vector<std::string> way;
};
template <>
struct RecordOf<MatchRow> {
    using R = MatchRow;
    static constexpr const char* name = "MapMatch";
    static constexpr auto fields =
        std::tuple{field("initiator", &R::initiator), field("space", &R::space),
                   field("block", &R::block),         field("on", &R::on),
                   field("address", &R::address),     field("register", &R::reg),
                   field("offset", &R::offset),       field("access", &R::access),
                   field("reset", &R::reset),         field("value", &R::value),
                   field("assign", &R::assign),       field("way", &R::way)};
};

template <>
struct RecordOf<MapReason::Register> {
    using R = MapReason::Register;
    static constexpr const char* name = "MapReasonRegister";
    static constexpr auto fields =
        std::tuple{field("path", &R::path), field("value", &R::value), field("source", &R::source)};
};
template <>
struct RecordOf<MapReason> {
    using R = MapReason;
    static constexpr const char* name = "MapReason";
    static constexpr auto fields =
        std::tuple{field("path", &R::path), field("isOn", &R::isOn), field("text", &R::text),
                   field("expression", &R::expression), field("registers", &R::registers)};
};

namespace {

// --- what both kinds of maps tell ---

std::string nameOf(const ScriptMap& map) {
    return map.name;
}
std::string nameOf(const ConfiguredMap& map) {
    return map.definition().getModuleName();
}

template <class M>
std::string describeMap(const M& map) {
    return "of " + nameOf(map);
}

std::vector<std::string> namesOf(const std::vector<const HABMInterface*>& interfaces) {
    std::vector<std::string> names;
    names.reserve(interfaces.size());
    for (const HABMInterface* interface : interfaces)
        names.push_back(interface->getInterfaceName());
    return names;
}

MapRow rowOf(const AddressMap::Block& block) {
    MapRow row{block.base,
               block.end,
               block.size,
               block.path,
               block.definition->getName(),
               HABMAddrBlock::decodeMemoryType(block.definition->getMemoryType()),
               block.instance != nullptr,
               {},
               {}};
    if (block.access) {
        row.interfaces = namesOf(block.access->interfaces);
        row.ports = namesOf(block.access->ports);
    }
    return row;
}

template <class M>
std::vector<MapRow> blocksOf(const M& map) {
    std::vector<MapRow> rows;
    rows.reserve(map.map().blocks().size());
    for (const AddressMap::Block& block : map.map().blocks())
        rows.push_back(rowOf(block));
    return rows;
}

std::vector<SpaceRow> entriesOf(const std::vector<AddressMap::SpaceEntry>& entries) {
    std::vector<SpaceRow> rows;
    rows.reserve(entries.size());
    for (const AddressMap::SpaceEntry& entry : entries)
        rows.push_back(
            {entry.start, AddressMap::endOf(entry.start, entry.size), entry.size, entry.name});
    return rows;
}

template <class M>
std::vector<MapSpace> spacesOf(const M& map) {
    std::vector<MapSpace> rows;
    rows.reserve(map.map().spaces().size());
    for (const AddressMap::Space& space : map.map().spaces())
        rows.push_back({space.path, entriesOf(space.windows), entriesOf(space.assigned)});
    return rows;
}

template <class M>
std::vector<std::string> removedOf(const M& map) {
    std::vector<std::string> paths;
    paths.reserve(map.map().removed().size());
    for (const AddressMap::Removed& removed : map.map().removed())
        paths.push_back(removed.path);
    return paths;
}

template <class M>
std::string tablesOf(const M& map, bool registers) {
    TextStream out;
    printAddressMap(out, map.map(), registers);
    return out.str();
}

template <class M>
std::string jsonOf(const M& map, bool registers) {
    return addressMapJson(map.map(), registers);
}

template <class M>
std::string pictureOf(const M& map) {
    return drawAddressMap(map.map(), nameOf(map));
}

/// The format by the ending, as files have it: "h", "ld", "svd", …
template <class M>
std::string exportOf(const M& map, const std::string& format) {
    const auto known = mapFormatOf("map." + format);
    if (!known)
        raiseArgument("unknown format \"" + format + "\", expected one of: " + mapFormatEndings());
    const DiagnosticSink sink = messageSink();
    return exportMap(mapModelOf(map.map(), nameOf(map), true, sink), *known, sink);
}

template <class M>
std::vector<MapDifference> compare(const M& map, const M& other) {
    return compareMaps(map.map(), other.map());
}

template <class M>
void describeMembers(Describe<M>& description) {
    description.template called<&describeMap<M>>()
        .deletable()
        .iterates("blocks", nullptr)
        .template property<&blocksOf<M>>("blocks", "The address blocks by base, size and path.")
        .template property<&spacesOf<M>>("spaces",
                                         "The address spaces with what initiators see in them.")
        .template property<&removedOf<M>>("removed", "Paths of what the config removed.")
        .template method<&compare<M>>("compare", {required("other")},
                                      "What differs in another map, in the order of the kinds.",
                                      Mode::Slow)
        .template method<&exportOf<M>>(
            "export", {required("format")},
            "The map as a file for other tools, by the ending of such files: h, ld, dts, rdl, svd, "
            "csv or md.",
            Mode::Slow)
        .template method<&tablesOf<M>>("tables", {optional("registers", {false})},
                                       "The map as aligned tables, with its registers if wanted.",
                                       Mode::Slow)
        .template method<&jsonOf<M>>("json", {optional("registers", {false})},
                                     "The same as a JSON document.", Mode::Slow)
        .template method<&pictureOf<M>>("svg", {}, "The address spaces as an SVG picture.",
                                        Mode::Slow);
}

std::unique_ptr<ScriptMap> createMap(Call& call, const HABMBlock& definition,
                                     const HABMBlock& instance) {
    for (std::size_t i = 0; i < 2; ++i) {
        Object& root = std::get<ObjectRef>(call.argument(i).content)->rootObject();
        if (i == 0 || call.needs.front().get() != &root)
            call.needs.emplace_back(&root);
    }
    return std::make_unique<ScriptMap>(
        ScriptMap{AddressMap(definition, instance), definition.getModuleName()});
}

// --- configured maps ---

std::unique_ptr<ConfiguredMap> createConfiguredMap(const std::string& vlnv,
                                                   const std::string& configFile) {
    return std::make_unique<ConfiguredMap>(vlnv, configFile, messageSink());
}

Definition definitionOf(const ConfiguredMap& map) {
    return {&map.definition()};
}
std::string configFileOf(const ConfiguredMap& map) {
    return map.configPath();
}

std::vector<Finding> check(const ConfiguredMap& map, const std::vector<std::string>& allow) {
    DiagnosticList findings;
    AllowedFindings allowed(allow);
    map.check(allowed.filter(findings.sink()));
    allowed.reportUnused(findings.sink());
    return findingsOf(findings.all());
}

std::vector<std::string> wayOf(const ConfiguredMap& map, const MapMatch& match) {
    std::vector<std::string> way;
    for (const HABMInterfaceConnection* const connection :
         map.views().wayTo(*match.view, *match.region)) {
        if (way.empty())
            way.push_back(connection->getSourcePath());
        way.push_back(connection->getTargetPath());
    }
    return way;
}

void addRegister(const ConfiguredMap& map, const MapMatch& match, MatchRow& row) {
    row.reg = match.reg->getName();
    row.access = HABMRegister::decodeRegisterAccess(match.reg->getAccess());
    row.reset = match.reg->getReset();
    row.value = map.map().valueOf(*match.block, *match.reg);
}

std::vector<MatchRow> rowsOf(const ConfiguredMap& map, const std::vector<MapMatch>& matches) {
    std::vector<MatchRow> rows;
    rows.reserve(matches.size());
    for (const MapMatch& match : matches) {
        MatchRow& row = rows.emplace_back();
        row.block = match.block->path;
        row.on = match.block->instance != nullptr;
        row.address = match.address;
        row.offset = match.offset;
        if (match.reg != nullptr)
            addRegister(map, match, row);
        if (match.view == nullptr)
            continue;
        row.initiator = match.view->from;
        row.space = match.view->path;
        if (match.region->assign != nullptr)
            row.assign = match.region->assign->getName();
        row.way = wayOf(map, match);
    }
    return rows;
}

std::vector<MatchRow> at(const ConfiguredMap& map, const HABMAddrValue& address,
                         const std::string& initiator) {
    return rowsOf(map, findAt(map, address, initiator));
}

std::vector<MatchRow> named(const ConfiguredMap& map, const std::string& pattern,
                            const std::string& initiator) {
    return rowsOf(map, findNamed(map, pattern, initiator));
}

void describeConfiguredMap(Interface& interface) {
    Describe<ConfiguredMap> map(
        "ConfiguredMap", "addressing configuredmap", "configured map",
        "The address map of a definition of the data area (TQ_DATA_PATH) and a config file, with "
        "what each initiator sees. It owns all that it is made of.");
    map.constructor<&createConfiguredMap>(
        {required("vlnv"), optional("configFile", {std::string()})},
        "Reads the definition and applies the config; without "
        "one nothing changes. Messages tell what is found.",
        Mode::Slow);
    describeMembers(map);
    map.property<&definitionOf>("definition", "The definition, which the process shares.")
        .property<&configFileOf>("configFile", "The config as it was given; empty for none.")
        .method<&check>("check", {optional("allow", {List{}})},
                        "What is wrong with the map: overlaps, what lies outside of what holds it, "
                        "missing parts. Ids are KIND:NAME; those allowed, or all of a kind, are "
                        "left out.",
                        Mode::Slow)
        .method<&at>("findAt", {required("address"), optional("initiator", {std::string()})},
                     "What lies at an address, for each initiator or the one that is named.",
                     Mode::Slow)
        .method<&named>("findNamed", {required("pattern"), optional("initiator", {std::string()})},
                        "The blocks and registers whose path, INSTANCE/REGISTER or bare name "
                        "matches a pattern such as uart0/*, for each initiator that sees them.",
                        Mode::Slow)
        .method<&findReason>("findReason", {required("path")},
                             "Why a sub-block or an interface is on or off.", Mode::Slow);
    interface.add(infoOf<ConfiguredMap>());
}

} // namespace

void describeAddressMaps(Interface& interface) {
    Describe<ScriptMap> map(
        "AddressMap", "addressing map", "address map",
        "Where the registers and memories of a configured subsystem lie. Ends with its definition "
        "or its instance, and when something is removed from one of them.");
    map.constructor<&createMap>({required("definition"), required("instance")},
                                "The map of an instance of a definition.", Mode::Slow);
    describeMembers(map);
    interface.add(infoOf<ScriptMap>());
    describeConfiguredMap(interface);
}

} // namespace tq::bindings
