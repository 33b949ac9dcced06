// hbs addressing: a definition, a config, and the address map that comes of them.

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <memory>

#include "HUTEnv.h"
#include "HUTFile.h"
#include "addressing/HBSAddressing.h"
#include "host/AddressMap.h"
#include "host/AddressMapPicture.h"
#include "host/AddressingConfig.h"
#include "host/Command.h"
#include "rapidjson_headers.h"

namespace host {

namespace {

struct Options {
    std::string vlnv;
    std::string data;
    std::string config;
    std::string json;
    std::string svg;
    std::string html;
};

void writeOutput(const std::string& path, const std::string& text) {
    if (path == "-") {
        std::cout << text;
        return;
    }
    std::ofstream stream(path, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream)
        throw BadInput("can't write " + path);
}

const HABMBlock& definitionOf(const Options& options) {
    std::string vendor, library, name, version;
    if (!HABMUtils::splitVLNV(options.vlnv, vendor, library, name, version))
        throw BadInput("\"" + options.vlnv + "\" isn't of the form vendor:library:name:version");
    const std::string area = HUTEnv::getOBLDataDir("mirrel");
    if (area.empty())
        throw BadInput("there is no folder mirrel in " + options.data);
    if (const HABMBlock* definition =
            HBSAddressing::createSubsystemDefinition(options.vlnv, "hbs addressing"))
        return *definition;
    const std::string file = area + "/mirrel/hardblocks/" + name + "/" + name + ".bmj";
    if (HUTFile(file).exists())
        throw BadInput("can't read " + file);
    throw BadInput("there is no " + file + "; hbs define makes it from the hard block's tables");
}

std::string jsonText(const HABMBlock& instance) {
    rapidjson::Document document;
    HBSAddressing::generateSurfaceLevelAddressing(instance, document);
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

int run(const Options& options) {
    // The library looks for its data there.
    setenv("TQ_DATA_PATH", options.data.c_str(), 1);
    const HABMBlock& definition = definitionOf(options);
    const AddressingConfig config =
        options.config.empty() ? AddressingConfig()
                               : AddressingConfig::read(JsonFile::read(options.config), definition);
    const auto instance = HBSAddressing::createSubsystemInstance(definition, config.block());
    const auto full = HBSAddressing::decorateSubsystemInstance(definition, HUTFile(options.data));
    config.addAssignsTo(*instance);

    const AddressMap map = surveyAddressing(*full, *instance);
    const std::string title = definition.getModuleName() + ", configured by " +
                              (options.config.empty() ? "nothing" : options.config);
    if (!options.svg.empty())
        writeOutput(options.svg, drawAddressMap(map, title));
    if (!options.html.empty())
        writeOutput(options.html, drawAddressMapPage(map, title));
    if (!options.json.empty())
        writeOutput(options.json, jsonText(*instance));
    if (options.json != "-" && options.svg != "-" && options.html != "-")
        printAddressMap(std::cout, map);
    return map.blocks.empty() ? kNoResult : kSuccess;
}

} // namespace

void declareAddressing(CLI::App& app, int& status) {
    const auto options = std::make_shared<Options>();
    CLI::App* const word = app.add_subcommand(
        "addressing", "Configures a hard block subsystem and prints its address map");
    word->add_option("VLNV", options->vlnv, "The hard block, vendor:library:name:version")
        ->required();
    word->add_option("--data", options->data, "The data area that holds mirrel/hardblocks")
        ->envname("TQ_DATA_PATH")
        ->required();
    word->add_option("--config", options->config, "Parameters, register values and assigns (JSON)");
    word->add_option("--json", options->json, "Writes the report to a file, or - for the output");
    word->add_option("--svg", options->svg, "Draws the address spaces");
    word->add_option("--html", options->html, "Draws them in a page");
    word->callback([options, &status] { status = run(*options); });
}

} // namespace host
