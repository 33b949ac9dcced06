#include "workbench/requests/HandoffRequest.h"

#include <ostream>

#include "workbench/addressing/export/MapExport.h"
#include "workbench/files/InputError.h"
#include "workbench/files/OutputFile.h"
#include "workbench/handoff/HandoffDiff.h"
#include "workbench/handoff/HandoffJob.h"
#include "workbench/handoff/HandoffMap.h"
#include "workbench/handoff/HandoffNet.h"
#include "workbench/text/DiagnosticText.h"
#include "workbench/text/Text.h"

namespace tq {

Outcome HandoffRequest::write(const Console& console) const {
    const HandoffJob read = readHandoffJob(job);
    refuseInput(output, {job, read.connectivity});
    const HandoffReport report = runHandoff(read, output, !noTimeStamp);
    console.out << (json ? handoffJson(report) : handoffTables(report));
    if (report.isComplete)
        return Outcome::Found;
    console.note(read.connectivity + R"(: "metadata", its cell, "slaves" or "masters" is missing, )"
                                     "so the handoff isn't complete");
    return Outcome::Nothing;
}

/// A person who asks for the findings gets them all.
Outcome HandoffRequest::runCheck(const Console& console) const {
    DiagnosticList findings;
    (void)decideHandoff(readHandoffJob(job, findings.sink()), findings.sink());
    if (json) {
        console.out << diagnosticsJson(findings.all());
    } else {
        console.print(findings);
        console.out << printable(job) << ": findings: " << findings.count() << '\n';
    }
    return findings.count() == 0 ? Outcome::Found : Outcome::Nothing;
}

Outcome HandoffRequest::showMap(const Console& console) const {
    const HandoffJob read = readHandoffJob(job);
    for (const std::string& path : exports)
        refuseInput(path, {job, read.connectivity});
    const auto handoff = decideHandoff(read);
    const std::vector<HandoffMap> maps = handoffMaps(*handoff, master);
    console.out << (json ? handoffMapJson(maps) : handoffMapTables(maps));
    DiagnosticList findings(kMostFindings);
    if (!exports.empty()) {
        const MapModel model = handoffMapModel(maps, handoff->topName(), findings.sink());
        for (const std::string& path : exports)
            writeOutput(path, exportMapAs(path, model, findings.sink()));
    }
    console.print(findings);
    return maps.empty() ? Outcome::Nothing : Outcome::Found;
}

Outcome HandoffRequest::showNet(const Console& console) const {
    const auto handoff = decideHandoff(readHandoffJob(job));
    const HandoffNet found = findNet(*handoff, net);
    console.out << (json ? netJson(found) : netTables(found));
    return Outcome::Found;
}

Outcome HandoffRequest::showDifferences(const Console& console) const {
    const auto differences = diffHandoffs(documents.at(0), documents.at(1));
    console.out << (json ? handoffDiffJson(differences) : handoffDiffTable(differences));
    return differences.empty() ? Outcome::Found : Outcome::Nothing;
}

Outcome HandoffRequest::run(const Console& console) const {
    if (!documents.empty())
        return showDifferences(console);
    if (job.empty())
        throw InputError("JOB.json or --diff A B is required");
    if (check)
        return runCheck(console);
    if (map)
        return showMap(console);
    if (!net.empty())
        return showNet(console);
    if (output.empty())
        throw InputError("-o FILE, --check, --map or --net is required");
    return write(console);
}

} // namespace tq
