#include "workbench/requests/AddressingRequest.h"

#include <algorithm>
#include <cstdlib>
#include <ostream>

#include "workbench/addressing/AddressMapJson.h"
#include "workbench/addressing/AddressMapPicture.h"
#include "workbench/addressing/AddressMapTables.h"
#include "workbench/addressing/MapChecks.h"
#include "workbench/addressing/MapPage.h"
#include "workbench/addressing/MapQuestions.h"
#include "workbench/addressing/StubFindings.h"
#include "workbench/addressing/export/AddressMapModel.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/files/InputError.h"
#include "workbench/files/OutputFile.h"
#include "workbench/text/DiagnosticText.h"

namespace tq {

namespace {

[[nodiscard]] std::string titleOf(const ConfiguredMap& configured) {
    return configured.definition().getModuleName() + ", configured by " +
           (configured.configPath().empty() ? "nothing" : configured.configPath());
}

[[nodiscard]] std::vector<MapMatch> matchesOf(const AddressingRequest& request,
                                              const ConfiguredMap& configured) {
    if (!request.at)
        return request.find ? findNamed(configured, *request.find, request.from)
                            : std::vector<MapMatch>();
    const HABMAddrValue address(*request.at);
    if (!address.isValid())
        throw InputError("\"" + *request.at + "\" isn't an address such as 0xFF010004");
    return findAt(configured, address, request.from);
}

} // namespace

bool AddressingRequest::isQuestion() const {
    return isCheck || at || find || why;
}

std::vector<std::string> AddressingRequest::outputs() const {
    std::vector<std::string> files{report, map, svg, html};
    files.insert(files.end(), exports.begin(), exports.end());
    return files;
}

/// What can't be done is said before anything is read or written.
void AddressingRequest::refuse() const {
    for (const std::string& output : outputs()) {
        refuseInput(output, configs);
        refuseInput(output, saved);
        refuseDefinition(output);
    }
    if (std::find(configs.begin(), configs.end(), "") != configs.end())
        throw InputError("--config needs a file");
    if (configs.size() > 1 && isQuestion())
        throw InputError("questions and --check take one --config");
    if (configs.size() > 2 && html.empty())
        throw InputError("two configs can be compared, and more shown by --html");
}

AddressingRequest::Maps AddressingRequest::readMaps(const DiagnosticSink& sink) const {
    const std::vector<std::string> paths = configs.empty() ? std::vector<std::string>{""} : configs;
    const auto purpose =
        isCheck ? AddressingConfig::Purpose::Check : AddressingConfig::Purpose::Use;
    Maps maps;
    for (const std::string& path : paths)
        maps.push_back(std::make_unique<const ConfiguredMap>(vlnv, path, sink, purpose));
    return maps;
}

void AddressingRequest::writePictures(const Maps& maps) const {
    std::vector<const ConfiguredMap*> all;
    std::vector<std::pair<const AddressMap*, std::string>> pictures;
    for (const auto& configured : maps) {
        all.push_back(configured.get());
        pictures.emplace_back(&configured->map(), titleOf(*configured));
    }
    if (!svg.empty())
        writeOutput(svg, drawAddressMaps(pictures));
    if (!html.empty())
        writeOutput(html, makeMapPage(all, maps.front()->definition().getModuleName()));
}

void AddressingRequest::writeFiles(const ConfiguredMap& configured,
                                   const DiagnosticSink& sink) const {
    const std::string& name = configured.definition().getModuleName();
    if (!report.empty())
        writeOutput(report, addressingReportJson(configured.instance()));
    if (!map.empty())
        writeOutput(map, addressMapJson(configured.map(), hasRegisters));
    if (exports.empty())
        return;
    const MapModel model = mapModelOf(configured.map(), name, hasRegisters, sink);
    for (const std::string& path : exports)
        writeOutput(path, exportMapAs(path, model, sink));
}

/// Whether there was an answer, without an error.
Outcome AddressingRequest::answer(const Console& console, const ConfiguredMap& configured,
                                  const DiagnosticList& findings) const {
    const std::vector<MapMatch> matches = matchesOf(*this, configured);
    const bool isSearch = at || find;
    MapReason reason;
    if (why)
        reason = findReason(configured, *why);
    if (isJson) {
        console.out << mapAnswersJson(configured,
                                      {isCheck ? &findings : nullptr, isSearch ? &matches : nullptr,
                                       why ? &reason : nullptr, false});
    } else {
        if (!matches.empty())
            printMatches(console.out, configured, matches);
        else if (isSearch)
            console.note("nothing is there");
        if (why)
            printReason(console.out, reason);
        if (isCheck)
            console.out << countsText(findings) << '\n';
    }
    const bool isMissing = isSearch && matches.empty();
    return isMissing || (isCheck && findings.hasErrors()) ? Outcome::Nothing : Outcome::Found;
}

/// Prints the map, with the counts of what a check finds.
Outcome AddressingRequest::show(const Console& console, const ConfiguredMap& configured,
                                DiagnosticList& findings) const {
    DiagnosticList checked;
    AllowedFindings unlisted(allowed);
    configured.check(unlisted.filter(checked.sink()));
    reportStubs(configured.instance(), findings.sink());
    if (isJson) {
        console.out << mapAnswersJson(configured, {&checked, nullptr, nullptr, true, hasRegisters});
    } else {
        printAddressMap(console.out, configured.map(), hasRegisters);
        console.out << "\nChecked: " << countsText(checked) << '\n';
    }
    return configured.map().blocks().empty() || findings.hasErrors() ? Outcome::Nothing
                                                                     : Outcome::Found;
}

/// Whether the maps are the same.
Outcome AddressingRequest::tell(const Console& console,
                                const std::vector<MapDifference>& differences) const {
    if (isJson)
        console.out << differencesJson(differences);
    else if (differences.empty())
        console.out << "no difference\n";
    else
        printDifferences(console.out, differences);
    return differences.empty() ? Outcome::Found : Outcome::Nothing;
}

Outcome AddressingRequest::runOnConfigs(const Console& console) const {
    // The library looks for its data there.
    setenv("TQ_DATA_PATH", data.c_str(), 1);
    refuse();
    DiagnosticList findings(isCheck ? DiagnosticList::kMost : kMostFindings);
    AllowedFindings unlisted(isCheck ? allowed : std::vector<std::string>());
    const DiagnosticSink sink = unlisted.filter(findings.sink());
    const Maps maps = readMaps(sink);
    const ConfiguredMap& first = *maps.front();
    if (isCheck) {
        first.check(sink);
        unlisted.reportUnused(findings.sink());
    }
    writePictures(maps);
    writeFiles(first, sink);
    Outcome outcome = Outcome::Found;
    if (maps.size() > 1)
        outcome = tell(console, compareMaps(first.map(), maps[1]->map()));
    else
        outcome = isQuestion() ? answer(console, first, findings) : show(console, first, findings);
    if (!isCheck || !isJson)
        console.print(findings);
    return outcome;
}

Outcome AddressingRequest::run(const Console& console) const {
    if (!saved.empty())
        return tell(console, compareMaps(JsonFile::read(saved.at(0)), JsonFile::read(saved.at(1))));
    if (vlnv.empty() || data.empty())
        throw InputError("expected a VLNV and --data, or --compare with two saved maps");
    return runOnConfigs(FileConsole(console, outputs()).get());
}

} // namespace tq
