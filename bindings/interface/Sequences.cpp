// Configuration sequences, and the numbers that users type into their commands.

#include <algorithm>
#include <cerrno>
#include <memory>

#include "HTCErrors.h"
#include "bindings/core/Describe.h"
#include "bindings/core/Tables.h"
#include "bindings/interface/Parts.h"
#include "cdo/HBSCdoCommandParse.h"
#include "cdo/HBSCdoSequenceMgr.h"
#include "cdo/HBSCdoSequenceWrapper.h"
#include "workbench/cdo/SequenceScript.h"

namespace tq::bindings {

using Step = SequenceScript::Step;
enum class MarkerKind : unsigned {
    Opens = HBSCdoSequenceWrapper::kMarkerOpens,
    Closes = HBSCdoSequenceWrapper::kMarkerCloses
};

template <>
struct TextsOf<MarkerKind> {
    static constexpr std::array table = {std::pair{MarkerKind::Opens, "opens"},
                                         std::pair{MarkerKind::Closes, "closes"}};
};

template <>
struct RecordOf<Step> {
    static constexpr const char* name = "SequenceStep";
    static constexpr auto fields =
        std::tuple{field("line", &Step::line), field("text", &Step::text),
                   field("number", &Step::number), field("failure", &Step::failure)};
};

namespace {

HBSCdoSequenceMgr& manager() {
    return HBSCdoSequenceMgr::getGlobal();
}

std::vector<HBSCdoSequenceWrapper*> getSequences() {
    std::vector<HBSCdoSequenceWrapper*> all;
    manager().getCdoSeqWrapperColl(all);
    std::sort(all.begin(), all.end(),
              [](const auto* a, const auto* b) { return a->getName() < b->getName(); });
    return all;
}

HBSCdoSequenceWrapper* find(const std::string& name) {
    const auto all = getSequences();
    const auto found =
        std::find_if(all.begin(), all.end(), [&](const auto* s) { return s->getName() == name; });
    return found == all.end() ? nullptr : *found;
}

HBSCdoSequenceWrapper* createSequence(const std::string& name) {
    if (find(name) != nullptr) // the manager would lose it
        throw ScriptError(Failure::Kind::Command, "sequence '" + name + "' exists already");
    return manager().createCdoSequenceWrapper(name, nullptr);
}

HBSCdoSequenceWrapper* getSequence(const std::string& name) {
    return manager().getCdoSequenceWrapper(name);
}

/// One that the manager lost, as another took its name, belongs to whoever holds it.
void destroySequence(HBSCdoSequenceWrapper* sequence) {
    const std::string name = sequence->getName();
    if (find(name) == sequence)
        manager().deleteCdoSequenceWrapper(name);
    else
        delete sequence;
}

void expectDeletable(const HBSCdoSequenceWrapper& /*sequence*/) {}

void addMarker(HBSCdoSequenceWrapper& sequence, const std::string& name, MarkerKind kind) {
    sequence.addMarker(name, static_cast<unsigned>(kind));
}

std::string nameOfSequence(const HBSCdoSequenceWrapper& sequence) {
    return sequence.getName();
}

// The parser takes an old ERANGE of anybody's for its own.

std::uint64_t parseAddress(const std::string& text) {
    errno = 0;
    return HBSCdoCommandParse::parseAddress(text);
}

std::uint32_t parseValue(const std::string& text) {
    errno = 0;
    return HBSCdoCommandParse::parseValue(text);
}

std::vector<Step> runScript(const std::string& path) {
    SequenceScript script = SequenceScript::read(path);
    script.run();
    return script.steps();
}

} // namespace

void describeSequences(Interface& interface) {
    using T = HBSCdoSequenceWrapper;
    Describe<T>("HBSCdoSequenceWrapper", "cdo sequence", "sequence",
                "A named configuration sequence, and the check that its markers nest.")
        .called<&nameOfSequence>()
        .deletableBy<&destroySequence, &expectDeletable>()
        .tables(kSequenceTables)
        .property<&T::getName>("name", "The sequence's name.")
        .method<&addMarker>("addMarker", {required("name"), required("kind")},
                            "Opens or closes a marker; kind is \"opens\" or \"closes\".")
        .method<&T::markerCheck>("markerCheck", {}, "Fails while any marker is open.");
    interface.add(infoOf<T>());

    Island island{"cdo", "Configuration sequences.", {}};
    island.functions.push_back(function<&createSequence>(
        "createCdoSequenceWrapper", {required("name")}, "A new sequence of that name."));
    island.functions.push_back(function<&getSequence>("getCdoSequenceWrapper", {required("name")},
                                                      "The sequence of that name."));
    island.functions.push_back(
        function<&getSequences>("getCdoSequenceWrappers", {}, "All sequences, by name."));
    for (Member& member : island.functions)
        if (member.result->kind == Type::Kind::Object)
            member.result = &Convert<HBSCdoSequenceWrapper>::type(); // never none
    island.functions.push_back(function<&parseAddress>(
        "parseAddress", {required("text")}, "A typed address as a number: \"0xF1000000\"."));
    island.functions.push_back(function<&parseValue>("parseValue", {required("text")},
                                                     "A typed value of 32 bits as a number."));
    island.functions.push_back(function<&runScript>(
        "runSequenceScript", {required("path")},
        "Runs a script of sequence commands and tells what came of each line.", Mode::Slow));
    interface.add(std::move(island));
}

} // namespace tq::bindings
