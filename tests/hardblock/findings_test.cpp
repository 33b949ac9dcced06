// The findings on hard block metadata, each with its place; what the sink changes, which is
// nothing.

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

#include "hardblock/MetadataReader.h"
#include "support/support.h"

namespace {

using namespace hardblock;
using testing::ElementsAre;
using testing::IsEmpty;

/// Each finding as "id at <text at the place>".
std::vector<std::string> findingsOn(const std::string& text) {
    std::vector<std::string> findings;
    const support::CapturedMessages captured;
    std::istringstream stream(text);
    HardBlocks blocks;
    parseMetadataStream(stream, blocks, "f", [&](const tq::Diagnostic& finding) {
        const tq::Place& place = finding.place;
        EXPECT_EQ("f", place.file);
        findings.push_back(finding.id + " at " +
                           place.lineText.substr(place.column - 1 - place.lineTextOffset, 6));
    });
    return findings;
}

std::string pin(const std::string& members) {
    return R"({"b": {"pins": {"p": {)" + members + "}}}}";
}

std::string portMaps(const std::string& members) {
    return R"({"b": {"interfaces": {"i": {"access_point": {"port_maps": {)" + members + "}}}}}}";
}

TEST(MetadataFindings, ThereAreNoneOnGoodFiles) {
    EXPECT_THAT(
        findingsOn(support::readFile(TQ_SOURCE_DIR "/examples/device/sce/hardblocks/sorrel.json")),
        IsEmpty());
    EXPECT_THAT(findingsOn("{}"), IsEmpty());
    EXPECT_THAT(findingsOn(pin(R"("type": "VECTOR", "direction": "InOut", "default_val": 0,
                                  "size_left": "7", "size_right": true)")),
                IsEmpty());
    EXPECT_THAT(findingsOn(portMaps(R"("x[3:0]": "A[7:4]", "y[3:0]": "A[3:0]", "z": "B[3:0]",
                                       "w[4]": "C", "v": "D[2]")")),
                IsEmpty());
}

TEST(MetadataFindings, NameEachSlip) {
    using Case = std::pair<std::string, const char*>;
    for (
        const auto& [text, finding] :
        {Case{"[]", "wrong-type at []"},
         Case{"{\"b\":\n 5}", "wrong-type at 5}"},
         Case{R"({"b": {"pin": {}}})", "unknown-key at \"pin\":"},
         Case{R"({"b": {"pins": {}, "pins": {}}})", "duplicate-key at \"pins\""},
         Case{R"({"b": {}, "b": {}})", "duplicate-name at \"b\": {"},
         Case{R"({"b": {"pins": {"p": {}, "p": {}}}})", "duplicate-name at \"p\": {"},
         Case{R"({"b": {"interfaces": {"i": {}, "i": {}}}})", "duplicate-name at \"i\": {"},
         Case{R"({"b": {"interfaces": {"i": {"access_point": {"module": 7.5}}}}})",
              "wrong-type at 7.5}}}"},
         Case{R"({"b": {"interfaces": {"i": {"access_point": {"parameters": {"P": "5"}}}}}})",
              "wrong-type at \"5\"}}}"},
         Case{R"({"b": {"interfaces": {"i": {"access_point": {"parameters": {"P": 1, "P": 2}}}}}})",
              "duplicate-name at \"P\": 2"},
         Case{
             R"({"b": {"interfaces": {"i": {"access_point": {"parameters": {"P": 5000000000}}}}}})",
             "number-overflow at 500000"},
         Case{pin(R"("type": "bus")"), "unknown-text at \"bus\"}"},
         Case{pin(R"("direction": "output")"), "unknown-text at \"outpu"},
         Case{pin(R"("default_val": {})"), "wrong-type at {}}}}}"},
         Case{pin(R"("size_left": "seven")"), "unreadable-number at \"seven"},
         Case{pin(R"("size_left": 7.5)"), "wrong-type at 7.5}}}"},
         Case{pin(R"("size_left": 4294967301)"), "number-overflow at 429496"},
         Case{portMaps(R"("x": 5)"), "wrong-type at 5}}}}}"},
         Case{portMaps(R"("x": "A[7")"), "unreadable-range at \"A[7\"}"},
         Case{portMaps(R"("x[a]": "A")"), "unreadable-range at \"x[a]\""},
         Case{portMaps(R"("x[1:2:3]": "A")"), "unreadable-range at \"x[1:2"},
         Case{portMaps(R"("x": "A[0:7]")"), "ascending-range at \"A[0:7"},
         Case{portMaps(R"("x[3:0]": "A[2:0]")"), "range-width at \"A[2:0"},
         Case{portMaps(R"("x[3:0]": "A[3:0]", "y[1:0]": "A[4:3]")"),
              "overlapping-ranges at \"A[4:3"},
         Case{portMaps(R"("x": "A", "y": "A")"), "overlapping-ranges at \"A\"}}}"}})
        EXPECT_THAT(findingsOn(text), ElementsAre(finding)) << text;
}

TEST(MetadataFindings, SayWhyAFileCantBeRead) {
    const support::TempDir folder;
    const auto findingOn = [&](const std::string& path) {
        const support::CapturedMessages captured;
        tq::DiagnosticList findings;
        HardBlocks blocks;
        EXPECT_FALSE(readMetadataFile(HUTFile(path), blocks, path, findings.sink()));
        EXPECT_EQ(1U, findings.count(tq::Severity::Error));
        EXPECT_FALSE(captured.lines().empty());
        return findings.all().empty() ? tq::Diagnostic() : findings.all().front();
    };
    const tq::Diagnostic malformed = findingOn(folder.write("bad", "{\n \"b\": }"));
    EXPECT_EQ("malformed-json", malformed.id);
    EXPECT_EQ(2U, malformed.place.line);
    EXPECT_EQ(7U, malformed.place.column);
    EXPECT_EQ("unreadable-file", findingOn(folder.path().string()).id);
    const std::string packed = support::gzip(R"({"b": {}})");
    EXPECT_EQ("unreadable-file", findingOn(folder.write("cut", packed.substr(0, 20))).id);
}

} // namespace
