// The hardware handoff.

#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/Findings.h"
#include "bindings/interface/Parts.h"
#include "handoff/HBSGenerateService.h"
#include "handoff/HBSHandoff.h"
#include "workbench/handoff/HandoffJob.h"

namespace tq::bindings {

template <>
struct RecordOf<HandoffReport::Master> {
    static constexpr const char* name = "HandoffMaster";
    static constexpr auto fields = std::tuple{field("name", &HandoffReport::Master::name),
                                              field("ranges", &HandoffReport::Master::ranges)};
};

template <>
struct RecordOf<HandoffReport::Warning> {
    static constexpr const char* name = "HandoffWarning";
    static constexpr auto fields = std::tuple{field("kind", &HandoffReport::Warning::kind),
                                              field("text", &HandoffReport::Warning::text)};
};

template <>
struct RecordOf<HandoffReport> {
    using R = HandoffReport;
    static constexpr const char* name = "HandoffReport";
    static constexpr auto fields = std::tuple{field("document", &R::document),
                                              field("topName", &R::topName),
                                              field("isComplete", &R::isComplete),
                                              field("modules", &R::modules),
                                              field("ports", &R::ports),
                                              field("signals", &R::signals),
                                              field("externalPorts", &R::externalPorts),
                                              field("masters", &R::masters),
                                              field("warnings", &R::warnings)};
};

namespace {

using Texts = std::map<std::string, std::string>;

void generateHandoff(Texts design, Texts system, const std::string& connectivity,
                     const std::string& output) {
    HBSGenerateService::generateHWH(design, system, connectivity, output);
}

std::vector<Finding> checkJob(const std::string& job) {
    DiagnosticList findings;
    static_cast<void>(decideHandoff(readHandoffJob(job, findings.sink()), findings.sink()));
    return findingsOf(findings);
}

HandoffReport runJob(const std::string& job, const std::string& output, bool timeStamp) {
    return runHandoff(readHandoffJob(job), output, timeStamp);
}

} // namespace

void describeHandoff(Interface& interface) {
    Island island{"handoff", "The hardware handoff document.", {}};
    island.functions.push_back(function<&generateHandoff>(
        "generateHWH",
        {required("designParams"), required("systemInfo"), required("connectivityFile"),
         required("outputFile")},
        "Writes the document of a connectivity file for a design and the system's facts.",
        Mode::Slow));
    island.functions.push_back(function<&runJob>(
        "runHandoff", {required("jobFile"), required("outputFile"), optional("timeStamp", {true})},
        "Writes the document of a job file and counts what is in it.", Mode::Slow));
    island.functions.push_back(function<&checkJob>(
        "checkHandoff", {required("jobFile")},
        "What the metadata of a job file loses or has twice, with places; nothing is written.",
        Mode::Slow));
    interface.add(std::move(island));
}

} // namespace tq::bindings
