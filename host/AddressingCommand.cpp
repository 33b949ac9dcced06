// hbs addressing: a definition, a config, and the address map that comes of them.

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "host/Command.h"
#include "workbench/addressing/AddressMapJson.h"
#include "workbench/addressing/AddressMapPicture.h"
#include "workbench/addressing/AddressMapTables.h"
#include "workbench/addressing/ConfiguredMap.h"
#include "workbench/addressing/MapChecks.h"
#include "workbench/addressing/MapComparison.h"
#include "workbench/addressing/MapPage.h"
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
    std::vector<std::string> configs;
    std::vector<std::string> saved;
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

/// True if one of the files is the standard output, which then holds that alone.
bool usesOutput(const Options& options) {
    const std::vector<std::string> outputs = options.outputs();
    return std::find(outputs.begin(), outputs.end(), "-") != outputs.end();
}

void refuseInputs(const Options& options) {
    for (const std::string& output : options.outputs())
        if (output != "-" && !output.empty()) {
            tq::refuseInput(output, options.configs);
            tq::refuseInput(output, options.saved);
            tq::refuseDefinition(output);
        }
}

using Maps = std::vector<std::unique_ptr<const tq::ConfiguredMap>>;

std::string titleOf(const tq::ConfiguredMap& map) {
    return map.definition().getModuleName() + ", configured by " +
           (map.configPath().empty() ? "nothing" : map.configPath());
}

void writePictures(const Options& options, const Maps& maps) {
    std::vector<const tq::ConfiguredMap*> all;
    std::vector<std::pair<const tq::AddressMap*, std::string>> pictures;
    for (const auto& map : maps) {
        all.push_back(map.get());
        pictures.emplace_back(&map->map(), titleOf(*map));
    }
    if (!options.svg.empty())
        write(options.svg, tq::drawAddressMaps(pictures));
    if (!options.html.empty())
        write(options.html, tq::makeMapPage(all, maps.front()->definition().getModuleName()));
}

void writeFiles(const Options& options, const tq::ConfiguredMap& map,
                const tq::DiagnosticSink& sink) {
    const std::string& name = map.definition().getModuleName();
    if (!options.report.empty())
        write(options.report, tq::addressingReportJson(map.instance()));
    if (!options.map.empty())
        write(options.map, tq::addressMapJson(map.map(), options.hasRegisters));
    for (const std::string& path : options.exports)
        write(path, tq::exportMapAs(
                        path, tq::mapModelOf(map.map(), name, options.hasRegisters, sink), sink));
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
            std::cout << tq::countsText(findings) << '\n';
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
            std::cout << "\nChecked: " << tq::countsText(checked) << '\n';
        }
    }
    return map.map().blocks().empty() || findings.hasErrors() ? kNoResult : kSuccess;
}

/// The status says whether the maps are the same.
int tell(const Options& options, const std::vector<tq::MapDifference>& differences) {
    if (options.isJson)
        std::cout << tq::differencesJson(differences);
    else if (differences.empty())
        std::cout << "no difference\n";
    else
        tq::printDifferences(std::cout, differences);
    return differences.empty() ? kSuccess : kNoResult;
}

int runOn(const Options& options) {
    // The library looks for its data there.
    setenv("TQ_DATA_PATH", options.data.c_str(), 1);
    refuseInputs(options);
    if (options.configs.size() > 1 && options.isQuestion())
        throw InputError("questions and --check take one --config");
    if (options.configs.size() > 2 && options.html.empty())
        throw InputError("two configs can be compared, and more shown by --html");
    tq::DiagnosticList findings(options.isCheck ? tq::DiagnosticList::kMost : kMostFindings);
    tq::AllowedFindings allowed(options.isCheck ? options.allowed : std::vector<std::string>());
    const tq::DiagnosticSink sink = allowed.filter(findings.sink());
    Maps maps;
    for (const std::string& config :
         options.configs.empty() ? std::vector<std::string>{""} : options.configs)
        maps.push_back(std::make_unique<const tq::ConfiguredMap>(
            options.vlnv, config, sink,
            options.isCheck ? tq::AddressingConfig::Purpose::Check
                            : tq::AddressingConfig::Purpose::Use));
    const tq::ConfiguredMap& map = *maps.front();
    if (options.isCheck) {
        map.check(sink);
        allowed.reportUnused(findings.sink());
    }
    writePictures(options, maps);
    writeFiles(options, map, sink);
    int status = kSuccess;
    if (maps.size() > 1)
        status = tell(options, tq::compareMaps(map.map(), maps[1]->map()));
    else
        status =
            options.isQuestion() ? answer(options, map, findings) : show(options, map, findings);
    if (!options.isCheck || !options.isJson)
        printFindings(findings);
    return status;
}

int run(const Options& options) {
    if (!options.saved.empty())
        return tell(options, tq::compareMaps(tq::JsonFile::read(options.saved.at(0)),
                                             tq::JsonFile::read(options.saved.at(1))));
    if (options.vlnv.empty() || options.data.empty())
        throw InputError("expected a VLNV and --data, or --compare with two saved maps");
    return runOn(options);
}

} // namespace

void declareAddressing(CLI::App& app, int& status) {
    const auto options = std::make_shared<Options>();
    CLI::App* const word = app.add_subcommand(
        "addressing", "Configures a hard block subsystem and prints its address map");
    word->add_option("VLNV", options->vlnv, "The hard block, vendor:library:name:version");
    word->add_option("--data", options->data, "The data area that holds mirrel/hardblocks")
        ->envname("TQ_DATA_PATH");
    word->add_option("--config", options->configs,
                     "Parameters, register values and assigns (JSON); two are compared")
        ->allow_extra_args(false);
    word->add_option("--compare", options->saved, "Compares two maps that --map wrote")
        ->expected(2);
    word->add_flag("--json", options->isJson, "Prints the map or the answers as JSON");
    word->add_option("--report", options->report,
                     "Writes the addressing report to a file, or - for the output");
    word->add_flag("--registers", options->hasRegisters, "Shows each register, in exports too");
    word->add_flag("--check", options->isCheck, "Lists what is wrong; ends with 1 for an error");
    word->add_option("--allow", options->allowed, "Leaves out a finding: KIND or KIND:NAME")
        ->allow_extra_args(false);
    word->add_option("--at", options->at, "Says what lies at an address");
    word->add_option("--from", options->from, "Asks for one initiator, such as cpu0");
    word->add_option("--find", options->find, "Says where what matches a pattern lies");
    word->add_option("--why", options->why, "Says why a sub-block or an interface is on or off");
    word->add_option("--map", options->map,
                     "Writes the map as JSON to a file, or - for the output");
    word->add_option("--svg", options->svg, "Draws the address spaces");
    word->add_option("--html", options->html, "Writes a page to explore the map in a browser");
    word->add_option("--export", options->exports,
                     "Writes the map for other tools, by the ending: " + tq::mapFormatEndings())
        ->allow_extra_args(false);
    word->callback([options, &status] { status = run(*options); });
}

} // namespace host
