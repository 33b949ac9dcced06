#include "workbench/handoff/HandoffJob.h"

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string_view>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "workbench/files/InputError.h"
#include "workbench/files/JsonFile.h"

namespace tq {

namespace {

using Texts = std::map<std::string, std::string>;

/// Reads the texts of an object by name; of two with one name the later counts.
Texts readTexts(const JsonFile& file, const JsonNode* object, const DiagnosticSink& sink) {
    Texts texts;
    std::map<std::string_view, std::size_t> seen;
    if (object == nullptr)
        return texts;
    for (const auto& member : file.object(*object)) {
        texts[member.name] = file.string(member.value);
        const auto [first, isNew] = seen.try_emplace(member.name, member.offset);
        if (isNew || !sink)
            continue;
        Diagnostic finding =
            makeDiagnostic(Severity::Warning, "duplicate-key", file.placeOf(member.offset),
                           "a second \"" + member.name + "\", which replaces the first");
        finding.notes.push_back({file.placeOf(first->second), "first defined here"});
        sink(std::move(finding));
    }
    return texts;
}

void checkFacts(const JsonFile& file, const JsonNode& system, const DiagnosticSink& sink) {
    const std::initializer_list<std::string_view> known = {
        "family", "device", "package", "speedgrade", "ps_core_name", "cell_name", "SLR_ID"};
    for (const auto& member : system.members)
        if (std::find(known.begin(), known.end(), member.name) == known.end())
            sink(file.unknownKey(member, known, Severity::Warning));
}

/// Words in pairs, as the library takes them: one blank in front of a word doesn't count.
std::size_t countWords(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) {
        text.remove_prefix(text.front() == ' ' ? 1 : 0);
        const std::size_t blank = text.find(' ');
        text = blank == std::string_view::npos ? std::string_view() : text.substr(blank + 1);
    }
    return count;
}

/// Only a text in braces is surely meant as a list of pairs.
void checkComposites(const JsonFile& file, const JsonNode& design, const DiagnosticSink& sink) {
    for (const auto& member : design.members) {
        const std::string_view text = member.value.text;
        if (!text.starts_with('{'))
            continue;
        const Place place = file.placeOf(member.value.offset);
        if (!text.ends_with('}') || text.size() < 2)
            sink(makeDiagnostic(Severity::Warning, "unclosed-composite", place,
                                "\"" + member.name + "\" starts with a brace and ends without one",
                                "{KEY VALUE KEY VALUE ...}"));
        else if (countWords(text.substr(1, text.size() - 2)) % 2 != 0)
            sink(makeDiagnostic(Severity::Warning, "odd-composite", place,
                                "\"" + member.name + "\" has an odd word, which is dropped",
                                "pairs of a key and a value"));
    }
}

} // namespace

HandoffJob readHandoffJob(const std::string& path, const DiagnosticSink& sink) {
    const JsonFile file = JsonFile::read(path);
    const JsonNode& root = file.root();
    file.expectKeys(root, {"connectivity", "system", "design", "split_by_cells"});
    HandoffJob job;
    // A relative path counts from the job's folder.
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    job.connectivity = (folder / file.string(file.require(root, "connectivity"))).string();
    const JsonNode* system = root.find("system");
    const JsonNode* design = root.find("design");
    job.system = readTexts(file, system, sink);
    job.design = readTexts(file, design, sink);
    if (const JsonNode* split = root.find("split_by_cells"))
        job.split = file.boolean(*split);
    if (sink && system != nullptr)
        checkFacts(file, *system, sink);
    if (sink && design != nullptr)
        checkComposites(file, *design, sink);
    return job;
}

std::unique_ptr<HBSHandoff> decideHandoff(const HandoffJob& job, const DiagnosticSink& sink) {
    HPAParamMgr::getParamMgr()->setValue("project.allowPSSubCoreSplit",
                                         job.split ? "true" : "false");
    std::optional<Diagnostic> fatal;
    const auto keepFatal = [&](Diagnostic finding) {
        if (finding.id == "malformed-json" || finding.id == "unreadable-file")
            fatal = std::move(finding);
        else if (sink)
            sink(std::move(finding));
    };
    try {
        return std::make_unique<HBSHandoff>(job.design, job.system, job.connectivity, keepFatal);
    } catch (const HEXError& error) {
        if (fatal)
            throw InputError(*fatal);
        throw InputError(error.what());
    }
}

HandoffReport runHandoff(const HandoffJob& job, const std::string& output, bool timeStamp) {
    HPAParamMgr::getParamMgr()->setValue("project.NoTimeStamp", timeStamp ? "false" : "true");
    DiagnosticList findings;
    const auto handoff = decideHandoff(job, findings.sink());
    try {
        handoff->writeDocument(output);
    } catch (const HEXError& error) {
        throw OutputError(error.what());
    }
    return reportHandoff(*handoff, output, findings.all());
}

} // namespace tq
