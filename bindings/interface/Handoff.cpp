// The hardware handoff.

#include <memory>

#include "bindings/core/Describe.h"
#include "bindings/core/Invoke.h"
#include "bindings/interface/Findings.h"
#include "bindings/interface/Parts.h"
#include "handoff/HBSGenerateService.h"
#include "handoff/HBSHandoff.h"
#include "workbench/addressing/export/MapExport.h"
#include "workbench/handoff/HandoffDiff.h"
#include "workbench/handoff/HandoffJob.h"
#include "workbench/handoff/HandoffMap.h"
#include "workbench/handoff/HandoffNet.h"

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

struct ModuleRow {
    std::string_view name;
    std::string_view instance;
    bool isMaster = false;
    std::vector<std::string_view> ports;
};
template <>
struct RecordOf<ModuleRow> {
    static constexpr const char* name = "HandoffModule";
    static constexpr auto fields =
        std::tuple{field("name", &ModuleRow::name), field("instance", &ModuleRow::instance),
                   field("isMaster", &ModuleRow::isMaster), field("ports", &ModuleRow::ports)};
};

template <>
struct RecordOf<HBSHandoff::Range> {
    using R = HBSHandoff::Range;
    static constexpr const char* name = "HandoffRange";
    static constexpr auto fields = std::tuple{field("slave", &R::slave),
                                              field("instance", &R::instance),
                                              field("base", &R::baseAddress),
                                              field("high", &R::highAddress),
                                              field("baseText", &R::base),
                                              field("highText", &R::high),
                                              field("memoryType", &R::memoryType),
                                              field("isData", &R::isData),
                                              field("isInstruction", &R::isInstruction)};
};
template <>
struct RecordOf<HandoffMap::Span> {
    using S = HandoffMap::Span;
    static constexpr const char* name = "HandoffSpan";
    static constexpr auto fields = std::tuple{field("first", &S::first), field("last", &S::last)};
};
template <>
struct RecordOf<HandoffMap::Overlap> {
    using O = HandoffMap::Overlap;
    static constexpr const char* name = "HandoffOverlap";
    static constexpr auto fields = std::tuple{
        field("before", &O::before), field("after", &O::after), field("shared", &O::shared)};
};
template <>
struct RecordOf<HandoffMap> {
    using M = HandoffMap;
    static constexpr const char* name = "HandoffMap";
    static constexpr auto fields = std::tuple{
        field("master", &M::master), field("ranges", &M::ranges), field("placed", &M::placed),
        field("overlaps", &M::overlaps), field("gaps", &M::gaps)};
};

template <>
struct RecordOf<HandoffNet::End> {
    using E = HandoffNet::End;
    static constexpr const char* name = "HandoffNetEnd";
    static constexpr auto fields =
        std::tuple{field("module", &E::module),   field("port", &E::port),
                   field("isThere", &E::isThere), field("direction", &E::direction),
                   field("kind", &E::kind),       field("signal", &E::signal),
                   field("reason", &E::reason),   field("connects", &E::connects)};
};
template <>
struct RecordOf<HandoffNet> {
    static constexpr const char* name = "HandoffNet";
    static constexpr auto fields =
        std::tuple{field("names", &HandoffNet::names), field("ends", &HandoffNet::ends)};
};

template <>
struct TextsOf<HandoffDifference::Kind> {
    using Kind = HandoffDifference::Kind;
    static constexpr std::array table = {std::pair{Kind::OnlyInA, "only-in-a"},
                                         std::pair{Kind::OnlyInB, "only-in-b"},
                                         std::pair{Kind::Changed, "changed"}};
};
template <>
struct RecordOf<HandoffDifference> {
    using D = HandoffDifference;
    static constexpr const char* name = "HandoffDifference";
    static constexpr auto fields =
        std::tuple{field("kind", &D::kind), field("where", &D::where),
                   field("attribute", &D::attribute), field("a", &D::a), field("b", &D::b)};
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
    return findingsOf(findings.all());
}

HandoffReport runJob(const std::string& job, const std::string& output, bool timeStamp) {
    return runHandoff(readHandoffJob(job), output, timeStamp);
}

// --- a handoff as an object ---

std::string textOf(const HBSHandoff& handoff) {
    return "of " + handoff.topName();
}

std::unique_ptr<HBSHandoff> createHandoff(Texts design, Texts system,
                                          const std::string& connectivity) {
    return std::make_unique<HBSHandoff>(std::move(design), std::move(system), connectivity,
                                        messageSink());
}

std::unique_ptr<HBSHandoff> decideJob(const std::string& job) {
    return decideHandoff(readHandoffJob(job, messageSink()), messageSink());
}

std::vector<ModuleRow> modules(const HBSHandoff& handoff) {
    std::vector<ModuleRow> rows;
    rows.reserve(handoff.moduleCount());
    for (std::size_t i = 0; i < handoff.moduleCount(); ++i) {
        const HBSHandoff::Module module = handoff.module(i);
        ModuleRow& row =
            rows.emplace_back(ModuleRow{module.name, module.instance, module.isMaster, {}});
        for (std::size_t p = 0; p < module.portCount; ++p)
            row.ports.push_back(handoff.port(module.firstPort + p).end.port);
    }
    return rows;
}

std::string mapTables(const HBSHandoff& handoff, const std::string& master) {
    return handoffMapTables(handoffMaps(handoff, master));
}

std::string mapJson(const HBSHandoff& handoff, const std::string& master) {
    return handoffMapJson(handoffMaps(handoff, master));
}

std::string exportMaps(const HBSHandoff& handoff, const std::string& format,
                       const std::string& master) {
    const auto known = mapFormatOf("map." + format);
    if (!known)
        raiseArgument("unknown format \"" + format + "\", expected one of: " + mapFormatEndings());
    const DiagnosticSink sink = messageSink();
    return exportMap(handoffMapModel(handoffMaps(handoff, master), handoff.topName(), sink), *known,
                     sink);
}

std::string netTablesOf(const HBSHandoff& handoff, const std::string& end) {
    return netTables(findNet(handoff, end));
}

void describeHandoffObject(Interface& interface) {
    using T = HBSHandoff;
    Describe<T>("HBSHandoff", "handoff document", "handoff",
                "A hardware handoff as it was decided from the metadata, before anything is "
                "written. Never changes.")
        .called<&textOf>()
        .deletable()
        .constructor<&createHandoff>(
            {required("designParams"), required("systemInfo"), required("connectivityFile")},
            "Decides the document of a connectivity file; messages tell what got lost or looks "
            "wrong.",
            Mode::Slow)
        .iterates("modules", nullptr)
        .property<&T::isComplete>("isComplete", "Whether the metadata has all its sections.")
        .property<&T::topName>("topName", "The subsystem's name in the document.")
        .property<&T::topInstance>("topInstance",
                                   "The instance to which connections with the outside go.")
        .property<&modules>("modules", "The modules with their ports, in document order.")
        .method<&handoffMaps>("handoffMaps", {optional("master", {std::string()})},
                              "What each master, or the one that is named, reaches at which "
                              "addresses, with overlaps and gaps.",
                              Mode::Slow)
        .method<&findNet>("findNet", {required("end")},
                          "All that is on the net of MODULE.PORT, and why it has its name.",
                          Mode::Slow)
        .method<&exportMaps>("export", {required("format"), optional("master", {std::string()})},
                             "The maps as a file for other tools, by the ending of such files: h, "
                             "ld, dts, rdl, svd, csv or md.",
                             Mode::Slow)
        .method<&mapTables>("tables", {optional("master", {std::string()})},
                            "The maps as aligned tables.", Mode::Slow)
        .method<&mapJson>("json", {optional("master", {std::string()})},
                          "The same as a JSON document.", Mode::Slow)
        .method<&netTablesOf>("netTables", {required("end")}, "A net as aligned tables.",
                              Mode::Slow)
        .method<&T::writeDocument>("writeDocument", {required("outputFile")},
                                   "Writes the document.", Mode::Slow);
    interface.add(infoOf<T>());
}

} // namespace

void describeHandoff(Interface& interface) {
    describeHandoffObject(interface);
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
    island.functions.push_back(function<&decideJob>(
        "decideHandoff", {required("jobFile")},
        "The handoff of a job file; messages tell what got lost or looks wrong.", Mode::Slow));
    island.functions.push_back(function<&diffHandoffs>(
        "diffHandoffs", {required("a"), required("b")},
        "What differs in two documents by their meaning, order and time stamp aside.", Mode::Slow));
    interface.add(std::move(island));
}

} // namespace tq::bindings
