// hbs addressing: a definition, a config, and the address map that comes of them.

#include <algorithm>
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
#include "workbench/addressing/AddressMapJson.h"
#include "workbench/addressing/AddressMapPicture.h"
#include "workbench/addressing/AddressMapTables.h"
#include "workbench/addressing/ConfiguredMap.h"
#include "workbench/addressing/MapChecks.h"
#include "workbench/addressing/MapQuestions.h"
#include "workbench/addressing/StubFindings.h"
#include "workbench/addressing/export/AddressMapModel.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/files/OutputFile.h"
#include "workbench/text/DiagnosticText.h"

namespace host {

namespace {

struct Options {
    std::string vlnv;
    std::string data;
    std::string config;
    std::string report;
    std::string map;
    std::string svg;
    std::string html;
    std::vector<std::string> exports;
    bool isJson = false;
    bool isCheck = false;
    bool hasRegisters = false;
    std::vector<std::string> allowed;
    std::string at;
    std::string from;
    std::string find;
    std::string why;

    [[nodiscard]] bool isQuestion() const {
        return isCheck || !at.empty() || !find.empty() || !why.empty();
    }
    [[nodiscard]] std::vector<std::string> outputs() const {
        std::vector<std::string> files{report, map, svg, html};
        files.insert(files.end(), exports.begin(), exports.end());
        return files;
    }
};

void write(const std::string& path, const std::string& text) {
    if (path == "-")
        std::cout << text;
    else if (!path.empty())
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
    const std::vector<std::string> outputs = options.outputs();
    return std::find(outputs.begin(), outputs.end(), "-") != outputs.end();
}

void refuseInputs(const Options& options) {
    for (const std::string& output : options.outputs()) {
        std::error_code error;
        if (output == "-" || !std::filesystem::is_regular_file(output, error))
            continue;
        tq::refuseInput(output, {options.config});
        tq::refuseInput(output, dataFiles(HUTEnv::getOBLDataDir("mirrel")));
    }
}

std::string reportText(const HABMBlock& instance) {
    rapidjson::Document document;
    HBSAddressing::generateSurfaceLevelAddressing(instance, document);
    JsonTextBuffer buffer;
    JsonPrettyWriter<JsonTextBuffer> writer(buffer);
    document.Accept(writer);
    return std::string(buffer.GetString(), buffer.GetSize()) + "\n";
}

void writeFiles(const Options& options, const tq::ConfiguredMap& map,
                const tq::DiagnosticSink& sink) {
    const std::string& name = map.definition().getModuleName();
    const std::string title =
        name + ", configured by " + (options.config.empty() ? "nothing" : options.config);
    if (!options.svg.empty())
        write(options.svg, tq::drawAddressMap(map.map(), title));
    if (!options.html.empty())
        write(options.html, tq::drawAddressMapPage(map.map(), title));
    if (!options.report.empty())
        write(options.report, reportText(map.instance()));
    if (!options.map.empty())
        write(options.map, tq::addressMapJson(map.map(), options.hasRegisters));
    for (const std::string& path : options.exports)
        write(path, tq::exportMap(tq::mapModelOf(map.map(), name, true, sink),
                                  tq::mapFormatOrFail(path), sink));
}

std::vector<tq::MapMatch> matchesOf(const Options& options, const tq::ConfiguredMap& map) {
    if (options.at.empty())
        return options.find.empty() ? std::vector<tq::MapMatch>()
                                    : tq::findNamed(map, options.find, options.from);
    const HABMAddrValue address(options.at);
    if (!address.isValid())
        throw InputError("\"" + options.at + "\" isn't an address such as 0xFF010004");
    return tq::findAt(map, address, options.from);
}

std::string countsOf(const tq::DiagnosticList& findings) {
    const auto counted = [&](tq::Severity severity) {
        const std::size_t count = findings.count(severity);
        return std::to_string(count) + " " + tq::severityName(severity) + (count == 1 ? "" : "s");
    };
    return counted(tq::Severity::Error) + ", " + counted(tq::Severity::Warning) + ", " +
           counted(tq::Severity::Remark);
}

/// Answers questions; the status says whether there was an answer without an error.
int answer(const Options& options, const tq::ConfiguredMap& map,
           const tq::DiagnosticList& findings) {
    const std::vector<tq::MapMatch> matches = matchesOf(options, map);
    const bool isSearch = !options.at.empty() || !options.find.empty();
    tq::MapReason reason;
    if (!options.why.empty())
        reason = tq::findReason(map, options.why);
    if (options.isJson) {
        std::cout << tq::mapAnswersJson(map, {options.isCheck ? &findings.all() : nullptr,
                                              isSearch ? &matches : nullptr,
                                              options.why.empty() ? nullptr : &reason, false});
    } else {
        if (!matches.empty())
            tq::printMatches(std::cout, map, matches);
        else if (isSearch)
            std::cerr << "hbs: nothing is there\n";
        if (!options.why.empty())
            tq::printReason(std::cout, reason);
        if (options.isCheck)
            std::cout << countsOf(findings) << '\n';
    }
    const bool isMissing = isSearch && matches.empty();
    return isMissing || (options.isCheck && findings.hasErrors()) ? kNoResult : kSuccess;
}

/// Prints the map, with the counts of what a check finds.
int show(const Options& options, const tq::ConfiguredMap& map, tq::DiagnosticList& findings) {
    tq::DiagnosticList checked;
    tq::AllowedFindings allowed(options.allowed);
    map.check(allowed.filter(checked.sink()));
    tq::reportStubs(map.instance(), findings.sink());
    if (!usesOutput(options)) {
        if (options.isJson) {
            std::cout << tq::mapAnswersJson(
                map, {&checked.all(), nullptr, nullptr, true, options.hasRegisters});
        } else {
            tq::printAddressMap(std::cout, map.map(), options.hasRegisters);
            std::cout << "\nChecked: " << countsOf(checked) << '\n';
        }
    }
    return map.map().blocks().empty() || findings.hasErrors() ? kNoResult : kSuccess;
}

int run(const Options& options) {
    // The library looks for its data there.
    setenv("TQ_DATA_PATH", options.data.c_str(), 1);
    refuseInputs(options);
    tq::DiagnosticList findings(options.isCheck ? tq::DiagnosticList::kMost : kMostFindings);
    tq::AllowedFindings allowed(options.isCheck ? options.allowed : std::vector<std::string>());
    const tq::DiagnosticSink sink = allowed.filter(findings.sink());
    const tq::ConfiguredMap map(options.vlnv, options.config, sink,
                                options.isCheck ? tq::AddressingConfig::Purpose::Check
                                                : tq::AddressingConfig::Purpose::Use);
    if (options.isCheck) {
        map.check(sink);
        allowed.reportUnused(findings.sink());
    }
    writeFiles(options, map, sink);
    const int status =
        options.isQuestion() ? answer(options, map, findings) : show(options, map, findings);
    if (!options.isCheck || !options.isJson)
        printFindings(findings);
    return status;
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
    word->add_flag("--json", options->isJson, "Prints the map or the answers as JSON");
    word->add_option("--report", options->report,
                     "Writes the addressing report to a file, or - for the output");
    word->add_flag("--registers", options->hasRegisters, "Shows each register of the map");
    word->add_flag("--check", options->isCheck, "Lists what is wrong; ends with 1 for an error");
    word->add_option("--allow", options->allowed, "Leaves out a finding: KIND or KIND:NAME");
    word->add_option("--at", options->at, "Says what lies at an address");
    word->add_option("--from", options->from, "Asks for one initiator, such as cpu0");
    word->add_option("--find", options->find, "Says where what matches a pattern lies");
    word->add_option("--why", options->why, "Says why a sub-block or an interface is on or off");
    word->add_option("--map", options->map,
                     "Writes the map as JSON to a file, or - for the output");
    word->add_option("--svg", options->svg, "Draws the address spaces");
    word->add_option("--html", options->html, "Draws them in a page");
    word->add_option("--export", options->exports,
                     "Writes the map for other tools, by the ending: " + tq::mapFormatEndings());
    word->callback([options, &status] { status = run(*options); });
}

} // namespace host
