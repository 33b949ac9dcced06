// Hard block subsystems: definitions, instances and address maps.

#include <memory>

#include "HUTFile.h"
#include "addressing/HBSAddressing.h"
#include "base/RapidJson.h"
#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/Parts.h"
#include "blockmodel/HABM.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/AddressMapJson.h"
#include "workbench/addressing/AddressMapPicture.h"
#include "workbench/addressing/AddressMapTables.h"
#include "workbench/addressing/AddressingConfig.h"
#include "workbench/addressing/DefinitionReport.h"
#include "workbench/addressing/StubFindings.h"
#include "workbench/addressing/export/AddressMapModel.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/files/InputError.h"
#include "workbench/text/TextStream.h"

namespace tq::bindings {

/// An address map with what scripts ask of it by name.
struct ScriptMap {
    AddressMap map;
    std::string name;
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

/// A definition: the process shares it, and it never changes.
struct Definition {
    const HABMBlock* block;
};
template <>
struct Convert<Definition> {
    static const Type& type() { return Convert<HABMBlock>::type(); }
    static Value to(const Definition& definition, Call&) {
        ObjectRef object = Registry::get().wrap(infoOf<HABMBlock>(),
                                                const_cast<HABMBlock*>(definition.block), nullptr);
        object->part->isConst = true;
        return {std::move(object)};
    }
};

namespace {

Definition createDefinition(const std::string& vlnv, const std::string& context) {
    const HABMBlock* const block = HBSAddressing::createSubsystemDefinition(vlnv, context);
    if (block == nullptr)
        throw ScriptError(Failure::Kind::NotFound,
                          "there is no definition of " + vlnv +
                              " in the data area, which TQ_DATA_PATH names");
    reportStubs(*block, messageSink());
    return {block};
}

std::unique_ptr<HABMBlock> createInstance(const HABMBlock& definition, const HABMBlock& config) {
    return HBSAddressing::createSubsystemInstance(definition, config);
}

std::unique_ptr<HABMBlock> configure(const HABMBlock& definition, const std::string& path) {
    const AddressingConfig config =
        path.empty() ? AddressingConfig()
                     : AddressingConfig::read(JsonFile::read(path), definition, messageSink());
    auto instance = HBSAddressing::createSubsystemInstance(definition, config.block());
    config.addAssignsTo(*instance);
    return instance;
}

std::unique_ptr<HABMBlock> buildDefinition(const std::string& directory, const std::string& name,
                                           bool write) {
    CompiledDefinition definition = compileDefinition(directory, name, messageSink());
    if (write)
        writeDefinition(definition);
    return std::move(definition.block);
}

Value valueOf(const rapidjson::Value& json) {
    if (json.IsObject()) {
        Dict dict;
        for (const auto& member : json.GetObject())
            dict.emplace_back(std::string(member.name.GetString(), member.name.GetStringLength()),
                              valueOf(member.value));
        return {std::move(dict)};
    }
    if (json.IsArray()) {
        List list;
        for (const auto& item : json.GetArray())
            list.push_back(valueOf(item));
        return {std::move(list)};
    }
    if (json.IsString())
        return {std::string(json.GetString(), json.GetStringLength())};
    if (json.IsBool())
        return {json.GetBool()};
    if (json.IsInt64())
        return {static_cast<std::int64_t>(json.GetInt64())};
    if (json.IsNumber())
        return {json.GetDouble()};
    return {};
}

Json surfaceReport(const HABMBlock& block) {
    rapidjson::Document document;
    HBSAddressing::generateSurfaceLevelAddressing(block, document);
    return {valueOf(document)};
}

// --- maps ---

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

std::string nameOfMap(const ScriptMap& map) {
    return "of " + map.name;
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

std::vector<MapRow> blocksOf(const ScriptMap& map) {
    std::vector<MapRow> rows;
    rows.reserve(map.map.blocks().size());
    for (const AddressMap::Block& block : map.map.blocks())
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

std::vector<MapSpace> spacesOf(const ScriptMap& map) {
    std::vector<MapSpace> rows;
    rows.reserve(map.map.spaces().size());
    for (const AddressMap::Space& space : map.map.spaces())
        rows.push_back({space.path, entriesOf(space.windows), entriesOf(space.assigned)});
    return rows;
}

std::vector<std::string> removedOf(const ScriptMap& map) {
    std::vector<std::string> paths;
    paths.reserve(map.map.removed().size());
    for (const AddressMap::Removed& removed : map.map.removed())
        paths.push_back(removed.path);
    return paths;
}

std::string tablesOf(const ScriptMap& map) {
    TextStream out;
    printAddressMap(out, map.map);
    return out.str();
}

std::string jsonOf(const ScriptMap& map) {
    return addressMapJson(map.map);
}

std::string pictureOf(const ScriptMap& map) {
    return drawAddressMap(map.map, map.name);
}

/// The format by the ending, as files have it: "h", "ld", "svd", …
std::string exportOf(const ScriptMap& map, const std::string& format) {
    const auto known = mapFormatOf("map." + format);
    if (!known)
        raiseArgument("unknown format \"" + format + "\", expected one of: " + mapFormatEndings());
    const DiagnosticSink sink = messageSink();
    return exportMap(mapModelOf(map.map, map.name, true, sink), *known, sink);
}

} // namespace

void describeAddressing(Interface& interface) {
    Describe<ScriptMap>("AddressMap", "addressing map", "address map",
                        "Where the registers and memories of a configured subsystem lie. Ends "
                        "with its definition or its instance, and when something is removed from "
                        "one of them.")
        .called<&nameOfMap>()
        .deletable()
        .constructor<&createMap>({required("definition"), required("instance")},
                                 "The map of an instance of a definition.")
        .iterates("blocks", nullptr)
        .property<&blocksOf>("blocks", "The address blocks by base, size and path.")
        .property<&spacesOf>("spaces", "The address spaces with what initiators see in them.")
        .property<&removedOf>("removed", "Paths of what the config removed.")
        .method<&exportOf>("export", {required("format")},
                           "The map as a file for other tools, by the ending of such files: h, "
                           "ld, dts, rdl, svd, csv or md.",
                           Mode::Slow)
        .method<&tablesOf>("tables", {}, "The map as aligned tables.")
        .method<&jsonOf>("json", {}, "The map as a JSON document.")
        .method<&pictureOf>("svg", {}, "The address spaces as an SVG picture.");
    interface.add(infoOf<ScriptMap>());

    Island island{"addressing", "Hard block subsystems and their address maps.", {}};
    island.functions.push_back(function<&createDefinition>(
        "createSubsystemDefinition",
        {required("vlnv"), optional("context", {std::string("script")})},
        "The definition of a hard block, vendor:library:name:version, from the data area that "
        "TQ_DATA_PATH names. It is shared and never changes.",
        Mode::Slow));
    island.functions.push_back(function<&createInstance>(
        "createSubsystemInstance", {required("definition"), required("config")},
        "A new instance of a definition, with the config block applied.", Mode::Slow));
    island.functions.push_back(function<&configure>(
        "configureSubsystem", {required("definition"), optional("configFile", {std::string()})},
        "A new instance of a definition, with a config file and its assigns applied.", Mode::Slow));
    island.functions.push_back(function<&buildDefinition>(
        "buildHardblockDefinition",
        {required("directory"), required("name"), optional("write", {false})},
        "The definition compiled from the text tables below DIRECTORY/NAME/data; messages tell "
        "what became of the rows.",
        Mode::Slow));
    island.functions.push_back(function<&surfaceReport>(
        "generateSurfaceLevelAddressing", {required("block")},
        "The addressing report of a block as other tools read it.", Mode::Slow));
    interface.add(std::move(island));
}

} // namespace tq::bindings
