#include "workbench/handoff/HandoffJob.h"

#include <filesystem>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "handoff/HBSGenerateService.h"
#include "handoff/HBSJsonReader.h"
#include "workbench/files/InputError.h"
#include "workbench/files/JsonFile.h"

namespace tq {

namespace {

using Texts = std::map<std::string, std::string>;

Texts readTexts(const JsonFile& file, const JsonNode* object) {
    Texts texts;
    if (object != nullptr)
        for (const auto& member : file.object(*object))
            texts[member.name] = file.string(member.value);
    return texts;
}

/// The metadata's parameters, and whether it had all its sections.
struct Metadata {
    HWHParameterTable parameters;
    bool complete = false;
};

Metadata readMetadata(const HandoffJob& job) {
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

void writeDocument(const HandoffJob& job, const std::string& output, bool timeStamp) {
    HPAParamMgr& parameters = *HPAParamMgr::getParamMgr();
    parameters.setValue("project.allowPSSubCoreSplit", job.split ? "true" : "false");
    parameters.setValue("project.NoTimeStamp", timeStamp ? "false" : "true");
    Texts design = job.design; // the library adds to both
    Texts system = job.system;
    HBSGenerateService::generateHWH(design, system, job.connectivity, output);
}

} // namespace

HandoffJob readHandoffJob(const std::string& path) {
    const JsonFile file = JsonFile::read(path);
    const JsonNode& root = file.root();
    file.expectKeys(root, {"connectivity", "system", "design", "split_by_cells"});
    HandoffJob job;
    // A relative path counts from the job's folder.
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    job.connectivity = (folder / file.string(file.require(root, "connectivity"))).string();
    job.system = readTexts(file, root.find("system"));
    job.design = readTexts(file, root.find("design"));
    if (const JsonNode* split = root.find("split_by_cells"))
        job.split = file.boolean(*split);
    return job;
}

HandoffReport runHandoff(const HandoffJob& job, const std::string& output, bool timeStamp) {
    try {
        const Metadata metadata = readMetadata(job);
        writeDocument(job, output, timeStamp);
        HandoffReport report = reportHandoff(output, metadata.parameters, job.design);
        report.isComplete = metadata.complete;
        return report;
    } catch (const HEXError& error) {
        throw InputError(error.what());
    }
}

} // namespace tq
