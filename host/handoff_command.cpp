// hbs handoff JOB.json -o FILE: writes a hardware handoff and reports on it.

#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <type_traits>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "handoff/HBSGenerateService.h"
#include "handoff/HBSJsonReader.h"
#include "host/Command.h"
#include "host/HandoffReport.h"
#include "host/JsonTree.h"
#include "host/Table.h"
#include "rapidjson_headers.h"

namespace host {

namespace {

using Texts = std::map<std::string, std::string>;

/// What the command line says.
struct Options {
    std::string job;
    std::string output;
    bool noTimeStamp = false;
    bool json = false;
};

/// What the job file says.
struct Job {
    std::string connectivity;
    Texts system;
    Texts design;
    bool split = false; ///< the metadata is split by cells
};

Texts readTexts(const JsonFile& file, const JsonNode* object) {
    Texts texts;
    if (object != nullptr)
        for (const auto& member : file.object(*object))
            texts[member.name] = file.string(member.value);
    return texts;
}

Job readJob(const std::string& path) {
    const JsonFile file = JsonFile::read(path);
    const JsonNode& root = file.root();
    file.expectKeys(root, {"connectivity", "system", "design", "split_by_cells"});
    Job job;
    // A relative path counts from the job's folder.
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    job.connectivity = (folder / file.string(file.require(root, "connectivity"))).string();
    job.system = readTexts(file, root.find("system"));
    job.design = readTexts(file, root.find("design"));
    if (const JsonNode* split = root.find("split_by_cells"))
        job.split = file.boolean(*split);
    return job;
}

/// The metadata's parameters, and whether it had all its sections.
struct Metadata {
    HWHParameterTable parameters;
    bool complete = false;
};

Metadata readMetadata(const Job& job) {
    Metadata metadata;
    HWHInstanceTable instances;
    HWHExcludedSlavesTable excluded;
    HWHExternalAddressingTable external;
    HWHPortTable ports;
    HWHApertureTable apertures;
    HWHInterfaceEnableTable enables;
    HBSJsonReader reader;
    Texts system = job.system;
    metadata.complete =
        job.split
            ? reader.parseconnectivityjson(job.connectivity, instances, excluded, external, true,
                                           ports, metadata.parameters, apertures, enables, system)
            : reader.parseconnectivityjson(job.connectivity, instances, excluded, external, true,
                                           ports, metadata.parameters, apertures, enables);
    return metadata;
}

void write(Job& job, const Options& options) {
    HPAParamMgr& parameters = *HPAParamMgr::getParamMgr();
    parameters.setValue("project.allowPSSubCoreSplit", job.split ? "true" : "false");
    parameters.setValue("project.NoTimeStamp", options.noTimeStamp ? "true" : "false");
    HBSGenerateService::generateHWH(job.design, job.system, job.connectivity, options.output);
}

void print(const HandoffReport& report, const Options& options) {
    std::cout << "Handoff of " << report.topName << " in " << options.output << "\n\n";
    Table counts({{"", Table::Align::Left}, {"count", Table::Align::Right}});
    counts.addRow({"modules", std::to_string(report.modules)});
    counts.addRow({"ports", std::to_string(report.ports)});
    counts.addRow({"signals", std::to_string(report.signals)});
    counts.addRow({"external ports", std::to_string(report.externalPorts)});
    for (const auto& master : report.masters)
        counts.addRow({"memory ranges of " + master.name, std::to_string(master.ranges)});
    counts.print(std::cout);
    if (report.warnings.empty())
        return;
    Table warnings({{"warning"}, {"where"}});
    for (const auto& warning : report.warnings)
        warnings.addRow({warning.kind, warning.text});
    std::cout << '\n';
    warnings.print(std::cout);
}

void printJson(const HandoffReport& report, const Options& options) {
    rapidjson::StringBuffer buffer;
    rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
    writer.SetIndent(' ', 2);
    const auto member = [&](const char* name, const auto& value) {
        writer.Key(name);
        if constexpr (std::is_convertible_v<decltype(value), std::string>)
            writer.String(std::string(value).c_str());
        else
            writer.Uint64(value);
    };
    writer.StartObject();
    member("document", options.output);
    member("top", report.topName);
    member("modules", report.modules);
    member("ports", report.ports);
    member("signals", report.signals);
    member("external_ports", report.externalPorts);
    writer.Key("masters");
    writer.StartArray();
    for (const auto& master : report.masters) {
        writer.StartObject();
        member("name", master.name);
        member("ranges", master.ranges);
        writer.EndObject();
    }
    writer.EndArray();
    writer.Key("warnings");
    writer.StartArray();
    for (const auto& warning : report.warnings) {
        writer.StartObject();
        member("kind", warning.kind);
        member("text", warning.text);
        writer.EndObject();
    }
    writer.EndArray();
    writer.EndObject();
    std::cout << buffer.GetString() << '\n';
}

int run(const Options& options) {
    Job job = readJob(options.job);
    const Texts design = job.design;
    try {
        const Metadata metadata = readMetadata(job);
        write(job, options);
        const HandoffReport report = reportHandoff(options.output, metadata.parameters, design);
        options.json ? printJson(report, options) : print(report, options);
        if (metadata.complete)
            return kSuccess;
    } catch (const HEXError& error) {
        throw BadInput(error.what());
    }
    std::cerr << "hbs: " << job.connectivity
              << R"(: "metadata", its cell, "slaves" or "masters" is missing, )"
              << "so the handoff isn't complete\n";
    return kNoResult;
}

} // namespace

void declareHandoff(CLI::App& app, int& status) {
    auto* command = app.add_subcommand("handoff", "Writes the hardware handoff document");
    auto options = std::make_shared<Options>();
    command
        ->add_option(
            "job", options->job,
            "JSON file with \"connectivity\" (a path), \"system\" and \"design\" (texts by "
            "name), \"split_by_cells\" (true or false)")
        ->required()
        ->type_name("JOB.json");
    command->add_option("-o,--output", options->output, "Where the document goes")
        ->required()
        ->type_name("FILE");
    command->add_flag("--no-time-stamp", options->noTimeStamp,
                      "Leaves the time out, so that equal jobs give equal files");
    command->add_flag("--json", options->json, "Prints JSON for programs");
    command->callback([options, &status] { status = run(*options); });
}

} // namespace host
