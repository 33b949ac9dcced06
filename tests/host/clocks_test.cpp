// `hbs clocks`: tree files in, tables and JSON out.

#include <gmock/gmock.h>

#include <pugixml.hpp>
#include <sstream>

#include "support/support.h"
#include "workbench/clocks/ClockReport.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/clocks/ClockTree.h"
#include "workbench/clocks/export/ClockExport.h"

using testing::HasSubstr;

namespace {

constexpr const char* kSmallTree = TQ_SOURCE_DIR "/examples/clocks/serial_buses.json";

tq::ClockTree read(const std::string& text) {
    return tq::readClockTree(tq::JsonFile::parse("t.json", text));
}

/// A good tree of two lines with one text replaced.
std::string with(const std::string& from, const std::string& to) {
    std::string text = R"({"plls": 1, "reference_mhz": 33.333, "domains": [{"name": "D", "plls":
[{"name": "P"}]}], "peripherals": [{"name": "U", "domain": "D", "mhz": 100}]})";
    return text.replace(text.find(from), from.size(), to);
}

TEST(ClockTreeFile, ComplainsWithPlaceAndExpectation) {
    struct Case {
        std::string from, to, complaint;
    };
    const std::vector<Case> cases = {
        {"\"plls\": 1", "\"plls\": 3", "t.json:1:10: error: expected 1"},
        {"\"plls\": 1", "\"plls\": 4", "t.json:1:49: error: expected four domains"},
        {"33.333", "0", "t.json:1:30: error: expected a number above 0"},
        {"33.333", "1e-60", "t.json:1:30: error: expected a number above 0"},
        {"33.333", "1e39", "t.json:1:30: error: expected a number above 0"},
        {"33.333", "\"a\"", "t.json:1:30: error: expected a number, found a text"},
        {"[{\"name\": \"P\"}]", "[{\"name\": \"\"}]", "t.json:2:11: error: expected a name"},
        {"[{\"name\": \"P\"}]", "[{\"name\": \"P\"}, {\"name\": \"P\"}]",
         "t.json:2:26: error: a second one named \"P\""},
        {"\"domain\": \"D\"", "\"domain\": \"E\"", "t.json:2:60: error: there is no domain \"E\""},
        {"100}", "-1}", "t.json:2:72: error: expected a number from 0 up"},
        {"100}", "1, \"max_error_percent\": 101}",
         "t.json:2:96: error: expected a number from 0 to 100"},
        {"\"mhz\": 100", "\"enabled\": true", "t.json:2:36: error: the key \"mhz\" is missing"},
        {"\"mhz\": 100", "\"hz\": 1",
         "t.json:2:65: error: unknown key \"hz\", expected one of: name,"},
    };
    for (const Case& c : cases) {
        std::string complaint;
        try {
            static_cast<void>(read(with(c.from, c.to)));
        } catch (const tq::InputError& error) {
            complaint = error.what();
        }
        EXPECT_THAT(complaint, testing::StartsWith(c.complaint)) << c.to;
    }
}

TEST(ClockPicture, IsWellFormedAndNamesAllOfALargeTree) {
    const std::string file = std::string(TQ_SOURCE_DIR) + "/examples/clocks/radio_frontend.json";
    const tq::ClockTree tree = tq::readClockTree(tq::JsonFile::read(file));
    std::vector<float> steps;
    const auto solver = tq::buildClockSolver(tree, [&](float step) { steps.push_back(step); });
    ASSERT_TRUE(solver->runSolution());
    EXPECT_EQ(solver->getToleranceFector(), steps.back());
    std::ostringstream picture;
    tq::printClockPicture(tq::makeClockReport(tree, *solver), tree.referenceMhz, picture);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(picture.str().c_str()));
    // A page that shows it smaller scales it by this.
    const pugi::xml_node svg = document.child("svg");
    EXPECT_EQ(std::string("0 0 ") + svg.attribute("width").value() + " " +
                  svg.attribute("height").value(),
              svg.attribute("viewBox").value());
    const auto names = [&](const std::string& name) {
        return !document.select_nodes(("//text[.='" + name + "']").c_str()).empty();
    };
    for (const auto& peripheral : tree.peripherals)
        EXPECT_TRUE(names(peripheral.name)) << peripheral.name;
    for (const hbs_clocking::HBSPll* pll : solver->getAllPlls())
        EXPECT_TRUE(names(pll->getName())) << pll->getName();
}

TEST(ClockReport, GivesTheFrequencyOfACrossingPeripheralThatTheLibraryReadsAsZero) {
    const tq::ClockTree tree = read(R"({"plls": 2, "reference_mhz": 33.333,
        "allow_cross_domain": true,
        "domains": [{"name": "A", "plls": [{"name": "P"}]}, {"name": "B", "plls": [{"name": "Q"}]}],
        "peripherals": [{"name": "U", "domain": "A", "mhz": 100}, {"name": "off", "domain": "B",
            "mhz": 7, "enabled": false}, {"name": "V", "domain": "B", "mhz": 100},
            {"name": "W", "domain": "B", "mhz": 250}]})");
    const auto solver = tq::buildClockSolver(tree);
    ASSERT_TRUE(solver->runSolution());
    ASSERT_EQ(0.0, solver->getPeripheral("V")->getActualFreq());
    const tq::ClockReport report = tq::makeClockReport(tree, *solver);
    EXPECT_EQ("P", report.peripherals[2].pll);
    EXPECT_NEAR(99.999, report.peripherals[2].given->mhz, 0.0001);

    std::ostringstream table;
    tq::printClockTables(report, table);
    EXPECT_THAT(table.str(), HasSubstr("7.0000  disabled\n"));
    EXPECT_THAT(table.str(), HasSubstr("100.0000  P         1299.9871        -     13     99.9990  "
                                       "-0.0010  -10.0\n"));
    EXPECT_THAT(table.str(), HasSubstr("Solved at tolerance 0.001, sum of relative errors"));
}

TEST(ClockReport, GivesNoNumberForTheInfiniteClockOfANocRequestBeyondThePlls) {
    const tq::ClockTree tree = read(R"({"plls": 4, "reference_mhz": 40, "domains": [
        {"name": "A", "plls": [{"name": "P"}]}, {"name": "NOC_DOMAIN", "plls": [{"name": "Q",
            "max_mhz": 2000, "noc": true}]}, {"name": "C", "plls": [{"name": "R"}]},
        {"name": "D", "plls": [{"name": "S"}]}],
        "peripherals": [{"name": "N", "domain": "NOC_DOMAIN", "mhz": 9704, "noc": true},
            {"name": "U", "domain": "A", "mhz": 100}], "max_cross_mhz": 800})");
    const auto solver = tq::buildClockSolver(tree);
    ASSERT_TRUE(solver->runSolution());
    std::ostringstream json;
    tq::printClockJson(tq::makeClockReport(tree, *solver), json);
    const auto parsed = tq::JsonFile::parse("out", json.str());
    for (const char* list : {"plls", "peripherals"}) {
        const auto& items = parsed.array(parsed.require(parsed.root(), list));
        const auto& noc = items[list == std::string("plls") ? 1 : 0];
        EXPECT_EQ(tq::JsonNode::Kind::Null, parsed.require(noc, "mhz").kind) << list;
    }
    const tq::ClockReport report = tq::makeClockReport(tree, *solver);
    EXPECT_EQ("N asks for 9704.0000 MHz and gets no clock, as the output divider of Q is 0",
              tq::warningsOf(report).at(0).text);
    EXPECT_THROW((void)tq::exportClocks(report, 40.0F, tq::ClockFormat::Devicetree),
                 tq::InputError);
}

TEST(ClockReport, CountsWhatTheLargestDividerGivesAsItIs) {
    const tq::ClockTree tree = read(with("100}", "0.5}"));
    const tq::ClockRun run = tq::runClockTree(tree);
    const tq::ClockReport report = tq::makeClockReport(tree, *run.solver);
    EXPECT_EQ(0.0, report.peripherals[0].countedPpm());
    EXPECT_EQ(1U, report.summary().worse);
    std::ostringstream table;
    tq::printClockTables(report, table);
    EXPECT_THAT(table.str(), HasSubstr("  <-- above 0.1 %\n"));
    EXPECT_THAT(table.str(), HasSubstr("the largest, counts as no error in the sum.\n"));
}

TEST(ClockReport, NamesTheRequestThatIsOutOfReach) {
    const std::string program = HBS_PROGRAM;
    const std::string trees = TQ_SOURCE_DIR "/examples/clocks/";
    const support::RunResult failed =
        support::run(program + " clocks " + trees + "video_recorder.json");
    EXPECT_EQ(1, failed.status);
    EXPECT_THAT(failed.output, HasSubstr("1000.0000     900.0000  -10.0000  -100000.0     1.0000  "
                                         "out of reach\n"));
    const support::RunResult json =
        support::run(program + " clocks --json " + trees + "video_recorder.json");
    EXPECT_EQ(1, json.status);
    const auto parsed = tq::JsonFile::parse("out", json.output);
    const auto& alone = parsed.array(parsed.require(parsed.root(), "alone"));
    EXPECT_EQ(900.0, parsed.number(parsed.require(alone[4], "nearest_mhz")));
    EXPECT_FALSE(parsed.boolean(parsed.require(alone[4], "within_reach")));
}

std::string examples(const std::string& name) {
    return HBS_PROGRAM " clocks " TQ_SOURCE_DIR "/examples/clocks/" + name;
}

TEST(ClocksWord, ExplainsWhichRequestsStandInEachOthersWay) {
    const support::RunResult run = support::run(examples("video_recorder.json"));
    EXPECT_THAT(run.output, HasSubstr("\n  DECODER_CA\n    without DECODER_CA, others still can't "
                                      "be met\n  GPU, CENTER_BUS\n    without GPU, the rest of "
                                      "these is met at 0.001\n"));
    const auto json =
        tq::JsonFile::parse("out", support::run(examples("video_recorder.json --json")).output);
    const auto& sets = json.array(json.require(json.root(), "conflicts"));
    ASSERT_EQ(6U, sets.size());
    EXPECT_EQ("DECODER_CA", json.string(sets[0].items.at(0)));
    EXPECT_EQ(nullptr, json.root().find("peripherals"));
}

TEST(ClocksWord, ShowsWhatEachClockPassesAndWhatStandsOut) {
    const std::string text = support::run(examples("radio_frontend.json --explain")).output;
    EXPECT_THAT(text,
                HasSubstr("AUDIO        IO              12.2880  PLL_SIGNAL   1960.0000       "
                          " 4     40     12.2500  -0.3092   -3092.5  <-- above 0.1 %\n"));
    EXPECT_THAT(text, HasSubstr("\nRequests: 5 met exactly, 0 within 10 ppm, 0 within 0.1 %, 3 "
                                "within 1 %, 2 worse.\n"));
    EXPECT_THAT(text, HasSubstr("each with up to 1 728 settings of the dividers"));
    EXPECT_THAT(support::run(examples("programmable_soc.json --explain")).output,
                HasSubstr("each with up to 15 552 settings of the dividers"));
}

TEST(ClocksWord, WarnsOfARequestThatGetsSomethingElse) {
    const support::TempDir dir;
    const std::string tree = dir.write("t.json", with("100}", "1000000}"));
    EXPECT_THAT(support::run(HBS_PROGRAM " clocks " + tree).error,
                HasSubstr("warning: U asks for 1000000.0000 MHz and gets"));
    // The library says it for every multiplier.
    const std::string radio =
        support::readFile(TQ_SOURCE_DIR "/examples/clocks/radio_frontend.json");
    const std::string from = R"("NOC", "domain": "NOC_DOMAIN")";
    std::string other = radio;
    other.replace(other.find(from), from.size(), R"("NOC", "domain": "CONTROL")");
    EXPECT_EQ("hbs: Not a noc peripheral. continue...\n",
              support::run(HBS_PROGRAM " clocks " + dir.write("r.json", other)).error);
}

TEST(ClocksWord, SearchesWithOneThreadUnlessToldOtherwise) {
    const std::string word = std::string(HBS_PROGRAM) + " clocks --explain " TQ_SOURCE_DIR
                                                        "/examples/clocks/programmable_soc.json";
    const support::RunResult byDefault = support::run(word);
    EXPECT_EQ(0, byDefault.status);
    // The count of settings that were looked at depends on the threads.
    EXPECT_EQ(support::run(word + " --threads 1").output, byDefault.output);
}

TEST(ClocksWord, ExitsTwoForWhatItCanNotUseAndSaysItOnStandardError) {
    const support::TempDir dir;
    const std::string program = HBS_PROGRAM;
    const std::string twoDomains = dir.write("two.json", with("\"plls\": 1", "\"plls\": 2"));
    const support::RunResult refused = support::run(program + " clocks " + twoDomains);
    EXPECT_EQ(2, refused.status);
    EXPECT_EQ("", refused.output);
    EXPECT_THAT(
        refused.error,
        testing::StartsWith(twoDomains +
                            ":1:49: error: Clocking object expects two plls with this config\n"));
    EXPECT_EQ(2, support::run(program + " clocks " + dir.file("none.json")).status);
    EXPECT_EQ(2, support::run(program + " clocks").status);
    const support::RunResult unset =
        support::run(program + " clocks " + kSmallTree + " --check ''");
    EXPECT_EQ(2, unset.status);
    EXPECT_THAT(unset.error, HasSubstr("--check: expected a value\n"));
}

TEST(ClocksWord, KeepsItsTreeAndTheOldPictureWhereItCanNotWrite) {
    const support::TempDir dir;
    const std::string tree = dir.write("tree.json", support::readFile(kSmallTree));
    const std::string picture = dir.write("p.svg", "old");
    const std::string command = std::string(HBS_PROGRAM) + " clocks " + tree + " --svg ";
    EXPECT_EQ(2, support::run(command + dir.file("./tree.json")).status);
    EXPECT_EQ(support::readFile(kSmallTree), support::readFile(tree));
    // A file size limit of one block takes the place of a full disk.
    const std::string limited = "trap '' XFSZ; ulimit -f 1; " + command + picture + " >/dev/null";
    EXPECT_THAT(support::run(limited).error, testing::HasSubstr("File too large"));
    EXPECT_EQ("old", support::readFile(picture));
    EXPECT_EQ(0, support::run(command + picture).status);
    EXPECT_THAT(support::readFile(picture), HasSubstr("<svg "));
}

} // namespace
