// A tree solved for several values: what the option takes, and that each answer is its own tree's.

#include <gmock/gmock.h>

#include <pugixml.hpp>

#include "support/support.h"
#include "workbench/clock_trees.h"
#include "workbench/clocks/ClockSweep.h"

namespace {

using testing::HasSubstr;

tq::ClockTree largeTree() {
    return tq::readClockTree(
        tq::JsonFile::read(TQ_SOURCE_DIR "/examples/clocks/programmable_soc.json"));
}

TEST(ClockSweep, TakesValuesAndRangesInOrder) {
    const tq::ClockTree tree = largeTree();
    EXPECT_EQ((std::vector<double>{19.2, 19.4, 19.6, 24, 33.333}),
              tq::readClockSweep(tree, "reference=33.333,24,19.2:19.6:0.2,24").values);
    const tq::ClockSweep limit = tq::readClockSweep(tree, "PLL_MEDIA.max=900,1000");
    EXPECT_EQ(3U, limit.pll);
    EXPECT_EQ(tq::ClockSweep::What::PllLimit, limit.what);
    EXPECT_EQ(5U, tq::readClockSweep(tree, "WAKE_TIMER.max_error=1").peripheral);
}

TEST(ClockSweep, SaysWhatItExpected) {
    const std::vector<std::array<std::string, 2>> cases = {
        {"reference", "expected SUBJECT=VALUE,FIRST:LAST:STEP,..."},
        {"reference=", "\"\" isn't a number from 0 up"},
        {"reference=1:2", "expected FIRST:LAST:STEP"},
        {"reference=1:2:0", "\"1:2:0\" is empty"},
        {"reference=3:2:1", "\"3:2:1\" is empty"},
        {"reference=0", "0.000000 isn't a frequency above 0"},
        {"reference=1e39", "isn't a frequency above 0"},
        {"reference=1:1e9:1", "more than 10,000 values"},
        {"reference=24x", "\"24x\" isn't a number from 0 up"},
        {"refrence=24", "expected one of: reference, max_cross, PLL.max"},
        {"UART0.hz=24", "\"UART0.hz\" can't be swept, expected one of: reference"},
        {"UART.mhz=24", "there is no peripheral \"UART\"; did you mean \"UART0\"?"},
        {"PLL_I0.max=24", "there is no PLL \"PLL_I0\"; did you mean \"PLL_IO\"?"},
        {"UART0.max_error=101", "isn't a percentage up to 100"},
    };
    const tq::ClockTree tree = largeTree();
    for (const auto& [text, complaint] : cases) {
        std::string what;
        try {
            static_cast<void>(tq::readClockSweep(tree, text));
        } catch (const tq::InputError& error) {
            what = error.what();
        }
        EXPECT_THAT(what, testing::StartsWith("--sweep " + text + ": ")) << text;
        EXPECT_THAT(what, HasSubstr(complaint)) << text;
    }
}

/// The process's store of solutions goes by names, frequencies and limits alone. It is filled here
/// with answers that would be taken for those of trees with other allowed errors or domains.
TEST(ClockSweep, GivesEachTreeItsOwnAnswerWhateverTheStoreHolds) {
    const tq::ClockTree tree = largeTree();
    ASSERT_TRUE(tq::buildClockSolver(tree)->runSolution());
    const tq::ClockSweep sweep = tq::readClockSweep(tree, "VIDEO_BUS.max_error=0,6,100");
    const std::vector<tq::SweepPoint> points = tq::runClockSweep(tree, sweep);
    EXPECT_FALSE(points.front().found);
    EXPECT_TRUE(points.back().found);
    tq::ClockTree strict = tree;
    strict.peripherals[8].maxErrorPercent = 0.0F;
    ASSERT_EQ("VIDEO_BUS", strict.peripherals[8].name);
    EXPECT_TRUE(tq::buildClockSolver(strict)->runSolution()); // what the store makes of it
    EXPECT_FALSE(tq::runClockTree(strict).solver->is_result_found());
}

TEST(ClockSweep, FindsTheReferenceThatServesBest) {
    tq::ClockTree tree;
    tree.domains = {{"D", {{"PLL"}}}};
    for (const float mhz : {100.0F, 125.0F, 24.0F})
        tree.peripherals.push_back({"P" + std::to_string(tree.peripherals.size()), "D", mhz});
    const tq::ClockSweep sweep = tq::readClockSweep(tree, "reference=5,24:26:1,33.333");
    const auto points = tq::runClockSweep(tree, sweep);
    EXPECT_FALSE(points[0].found); // the VCO can't run from 5 MHz
    ASSERT_EQ(24.0, tq::bestPoint(points)->value);
    EXPECT_LT(points[1].sumPpm, points[3].sumPpm);
    std::ostringstream table;
    tq::printClockSweep(sweep, points, table);
    EXPECT_THAT(table.str(), HasSubstr("5  no solution\n"));
    EXPECT_THAT(table.str(), HasSubstr("\nBest: reference 24, with a sum of "));
    std::ostringstream picture;
    tq::printClockSweepPicture(sweep, points, picture);
    pugi::xml_document document;
    ASSERT_TRUE(document.load_string(picture.str().c_str()));
    EXPECT_EQ(8U, document.select_nodes("//circle").size());
}

TEST(ClockSweep, IsAnOptionOfTheWord) {
    const std::string word = HBS_PROGRAM " clocks " TQ_SOURCE_DIR "/examples/clocks/"
                                         "serial_buses.json --sweep ";
    const support::RunResult run = support::run(word + "ETH.mhz=100:140:20 --json");
    EXPECT_EQ(0, run.status);
    const auto json = tq::JsonFile::parse("out", run.output);
    EXPECT_EQ(3U, json.array(json.require(json.root(), "points")).size());
    EXPECT_EQ(100.0, json.number(json.require(json.root(), "best")));
    EXPECT_EQ(1, support::run(word + "reference=1").status);
    EXPECT_EQ(2, support::run(word + "ETHER.mhz=1").status);
    EXPECT_THAT(support::run(word + "reference=24 --html page.html").error,
                HasSubstr("--sweep reference=24: takes --json and --svg only"));
    EXPECT_THAT(support::run(word + "reference=24 --check setting.json").error,
                HasSubstr("--check setting.json: takes --json only"));
}

} // namespace
