// hbs addressing: a definition, a config, and the address map that comes of them.

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "HUTEnv.h"
#include "addressing/HBSAddressing.h"
#include "base/JsonWriter.h"
#include "host/Command.h"
#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/AddressMapJson.h"
#include "workbench/addressing/AddressMapPicture.h"
#include "workbench/addressing/AddressMapTables.h"
#include "workbench/addressing/AddressingConfig.h"
#include "workbench/addressing/StubFindings.h"
#include "workbench/addressing/export/AddressMapModel.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/files/OutputFile.h"

namespace host {

namespace {

struct Options {
    std::string vlnv;
    std::string data;
    std::string config;
    std::string json;
    std::string map;
    std::string svg;
    std::string html;
    std::vector<std::string> exports;
};

void write(const std::string& path, const std::string& text) {
    if (path == "-")
        std::cout << text;
    else
        tq::writeOutput(path, text);
}

/// The files of the data area that an address map may come of.
std::vector<std::string> dataFiles(const std::string& area) {
    namespace fs = std::filesystem;
    std::vector<std::string> files;
    std::error_code error;
    for (fs::recursive_directory_iterator entry(area + "/mirrel/hardblocks", error), end;
         !error && entry != end; entry.increment(error))
        for (const char* extension : {".bmj", ".tcl", ".txt"})
            if (entry->path().extension() == extension)
                files.push_back(entry->path().string());
    return files;
}

/// True if one of the files is the standard output, which then holds that alone.
bool usesOutput(const Options& options) {
    return options.json == "-" || options.map == "-" || options.svg == "-" || options.html == "-";
}

void refuseInputs(const Options& options) {
    std::vector<std::string> outputs{options.json, options.map, options.svg, options.html};
    outputs.insert(outputs.end(), options.exports.begin(), options.exports.end());
    for (const std::string& output : outputs) {
        std::error_code error;
        if (output == "-" || !std::filesystem::is_regular_file(output, error))
            continue;
        tq::refuseInput(output, {options.config});
        tq::refuseInput(output, dataFiles(HUTEnv::getOBLDataDir("mirrel")));
    }
}

const HABMBlock& definitionOf(const Options& options, tq::DiagnosticList& findings) {
    std::string vendor, library, name, version;
    if (!HABMUtils::splitVLNV(options.vlnv, vendor, library, name, version))
        throw InputError("\"" + options.vlnv + "\" isn't of the form vendor:library:name:version");
    const std::string area = HUTEnv::getOBLDataDir("mirrel");
    if (area.empty())
        throw InputError("there is no folder mirrel in " + options.data);
    if (const HABMBlock* definition = HBSAddressing::createSubsystemDefinition(
            options.vlnv, "hbs addressing", findings.sink()))
        return *definition;
    if (findings.hasErrors())
        throw InputError(findings.all().front());
    const std::string file = area + "/mirrel/hardblocks/" + name + "/" + name + ".bmj";
    throw InputError("there is no " + file + "; hbs define makes it from the hard block's tables");
}

std::string jsonText(const HABMBlock& instance) {
    rapidjson::Document document;
    HBSAddressing::generateSurfaceLevelAddressing(instance, document);
    JsonTextBuffer buffer;
    JsonPrettyWriter<JsonTextBuffer> writer(buffer);
    document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

void writeExports(const Options& options, const tq::AddressMap& map, const std::string& name,
                  const tq::DiagnosticSink& sink) {
    for (const std::string& path : options.exports)
        write(path, tq::exportMap(tq::mapModelOf(map, name, true, sink), tq::mapFormatOrFail(path),
                                  sink));
}

int run(const Options& options) {
    // The library looks for its data there.
    setenv("TQ_DATA_PATH", options.data.c_str(), 1);
    refuseInputs(options);
    tq::DiagnosticList findings(kMostFindings);
    const HABMBlock& definition = definitionOf(options, findings);
    const tq::AddressingConfig config =
        options.config.empty() ? tq::AddressingConfig()
                               : tq::AddressingConfig::read(tq::JsonFile::read(options.config),
                                                            definition, findings.sink());
    const auto instance = HBSAddressing::createSubsystemInstance(definition, config.block());
    config.addAssignsTo(*instance);

    const tq::AddressMap map(definition, *instance);
    const std::string title = definition.getModuleName() + ", configured by " +
                              (options.config.empty() ? "nothing" : options.config);
    if (!options.svg.empty())
        write(options.svg, tq::drawAddressMap(map, title));
    if (!options.html.empty())
        write(options.html, tq::drawAddressMapPage(map, title));
    if (!options.json.empty())
        write(options.json, jsonText(*instance));
    if (!options.map.empty())
        write(options.map, tq::addressMapJson(map));
    writeExports(options, map, definition.getModuleName(), findings.sink());
    if (!usesOutput(options))
        tq::printAddressMap(std::cout, map);
    tq::reportStubs(*instance, findings.sink());
    printFindings(findings);
    return map.blocks().empty() || findings.hasErrors() ? kNoResult : kSuccess;
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
    word->add_option("--map", options->map,
                     "Writes the map as JSON to a file, or - for the output");
    word->add_option("--svg", options->svg, "Draws the address spaces");
    word->add_option("--html", options->html, "Draws them in a page");
    word->add_option("--export", options->exports,
                     "Writes the map for other tools, by the ending: " + tq::mapFormatEndings());
    word->callback([options, &status] { status = run(*options); });
}

} // namespace host
