// Hard block subsystems: definitions, instances and address maps.

#include <memory>

#include "HUTFile.h"
#include "addressing/HBSAddressing.h"
#include "base/RapidJson.h"
#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/AddressingParts.h"
#include "bindings/interface/Parts.h"
#include "blockmodel/HABM.h"
#include "workbench/addressing/AddressingConfig.h"
#include "workbench/addressing/DefinitionReport.h"
#include "workbench/addressing/MapPage.h"
#include "workbench/addressing/StubFindings.h"
#include "workbench/files/InputError.h"

namespace tq::bindings {

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

std::vector<MapDifference> compareFiles(const std::string& before, const std::string& after) {
    return compareMaps(JsonFile::read(before), JsonFile::read(after));
}

std::string makePage(const std::vector<const ConfiguredMap*>& maps, const std::string& title) {
    if (maps.empty())
        raiseArgument("maps: expected at least one");
    return makeMapPage(maps, title.empty() ? maps.front()->definition().getModuleName() : title);
}

} // namespace

void describeAddressing(Interface& interface) {
    describeAddressMaps(interface);
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
    island.functions.push_back(function<&compareFiles>(
        "compareMaps", {required("before"), required("after")},
        "What differs between two maps that were saved as JSON, in the order of the kinds.",
        Mode::Slow));
    island.functions.push_back(function<&makePage>(
        "makeMapPage", {required("maps"), optional("title", {std::string()})},
        "A page for a browser that loads nothing: the configured maps with a search and the "
        "findings of their checks.",
        Mode::Slow));
    island.functions.push_back(function<&surfaceReport>(
        "generateSurfaceLevelAddressing", {required("block")},
        "The addressing report of a block as other tools read it.", Mode::Slow));
    interface.add(std::move(island));
}

} // namespace tq::bindings
