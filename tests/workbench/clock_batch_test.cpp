// Many trees at once, and the options that shape one answer.

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>

#include "support/support.h"
#include "workbench/clock_trees.h"
#include "workbench/clocks/ClockBatch.h"
#include "workbench/clocks/ClockCheck.h"
#include "workbench/clocks/ClockTerms.h"

namespace {

using testing::HasSubstr;

constexpr const char* kExamples = TQ_SOURCE_DIR "/examples/clocks";

TEST(ClockBatch, SolvesEachTreeAsAloneWorstFirst) {
    const support::TempDir dir;
    dir.write("broken.json", "{");
    std::vector<std::string> paths = tq::findTrees({kExamples, dir.path().string()});
    ASSERT_EQ(9U, paths.size());
    const tq::ClockBatch one = tq::runClockBatch(paths, nullptr, 1);
    const tq::ClockBatch several = tq::runClockBatch(paths, nullptr, 4);
    EXPECT_EQ(1U, several.failed);
    EXPECT_EQ(tq::clockBatchCsv(one), tq::clockBatchCsv(several));
    ASSERT_EQ(9U, several.lines.size());
    EXPECT_THAT(several.lines[0].error, HasSubstr("broken.json:1:2: error:"));
    EXPECT_FALSE(several.lines[1].found);
    for (std::size_t i = 1; i + 1 < several.lines.size(); ++i)
        if (several.lines[i].found) {
            EXPECT_GE(several.lines[i].sumPpm, several.lines[i + 1].sumPpm);
        }
    for (const tq::ClockBatch::Line& line : several.lines) {
        if (!line.found)
            continue;
        const auto run = tq::runClockTree(tq::readClockTree(tq::JsonFile::read(line.path)));
        EXPECT_NEAR(line.sumPpm, static_cast<double>(run.solver->getTotalRelativeError()) * 1e6,
                    1.0 + line.sumPpm * 1e-5);
    }
}

/// Interrupts the batch as soon as it shows its progress.
class Interrupting : public std::streambuf {
    int_type overflow(int_type character) override {
        tq::interruptClockBatch();
        return character;
    }
};

TEST(ClockBatch, EndsAtOnceWithWhatIsDone) {
    const std::vector<std::string> paths(20000, std::string(kExamples) + "/programmable_soc.json");
    Interrupting buffer;
    std::ostream progress(&buffer);
    const tq::ClockBatch batch = tq::runClockBatch(paths, &progress);
    EXPECT_TRUE(batch.isInterrupted);
    EXPECT_EQ(20000U, batch.asked);
    EXPECT_LT(batch.lines.size(), 20000U);
    for (const tq::ClockBatch::Line& line : batch.lines)
        EXPECT_TRUE(line.found);
    std::ostringstream table;
    tq::printClockBatch(batch, table);
    EXPECT_THAT(table.str(), HasSubstr(" left when it was interrupted.\n"));
    // The next one isn't affected.
    EXPECT_FALSE(tq::runClockBatch({paths[0]}).isInterrupted);
}

/// What a user's Ctrl-C does to the program.
TEST(ClockBatch, EndsOnASignalWithTheTableAndTheFileOfWhatIsDone) {
    const support::TempDir dir;
    const support::RunResult run = support::run(
        "timeout --foreground --preserve-status -s INT 1 env --default-signal=INT " HBS_PROGRAM
        " clocks $(yes " +
        std::string(kExamples) + "/programmable_soc.json | head -n 20000) --export " +
        dir.file("done.csv"));
    EXPECT_EQ(1, run.status);
    EXPECT_EQ("", run.error);
    const std::string summary = run.output.substr(run.output.rfind("20000 trees: "));
    const long solved = std::stol(summary.substr(13));
    EXPECT_LT(solved, 20000);
    EXPECT_EQ("20000 trees: " + std::to_string(solved) +
                  " solved, 0 without a solution, 0 that can't be used, " +
                  std::to_string(20000 - solved) + " left when it was interrupted.\n",
              summary);
    const std::string csv = support::readFile(dir.file("done.csv"));
    EXPECT_EQ(solved + 1, std::count(csv.begin(), csv.end(), '\n'));
}

TEST(ClockBatch, DrawsItsProgressOnlyWhereItIsAskedFor) {
    std::vector<std::string> paths;
    for (int i = 0; i < 400; ++i)
        paths.push_back(std::string(kExamples) + "/programmable_soc.json");
    std::ostringstream bar;
    EXPECT_EQ(400U, tq::runClockBatch(paths, &bar).lines.size());
    EXPECT_THAT(bar.str(), testing::EndsWith("\r\x1b[K"));
    EXPECT_EQ("", support::run(HBS_PROGRAM " clocks " + std::string(kExamples)).error);
    EXPECT_EQ(1, support::run(HBS_PROGRAM " clocks " + std::string(kExamples)).status);
    EXPECT_EQ(2, support::run(HBS_PROGRAM " clocks --pin a=b " + std::string(kExamples)).status);
}

TEST(ClockTerms, SayWhatTheyExpected) {
    const tq::ClockTree tree =
        tq::readClockTree(tq::JsonFile::read(std::string(kExamples) + "/programmable_soc.json"));
    const std::vector<std::array<std::string, 2>> pins = {
        {"PLL_IO", "expected PLL.multiplier=NUMBER or PERIPHERAL.source=PLL"},
        {"PLL_IO=3", "expected PLL.multiplier=NUMBER or PERIPHERAL.source=PLL"},
        {"PLL_IO.div=3", "\"div\" can't be pinned, expected PLL.multiplier"},
        {"PLL_IO.multiplier=64", "expected a whole number from 65 to 129, which keeps the VCO"},
        {"PLL_IO.multiplier=90.5", "expected a whole number from 65"},
        {"PLL_I0.multiplier=90", "there is no PLL \"PLL_I0\"; did you mean \"PLL_IO\"?"},
        {"CLOCK.source=PLL_IO",
         "there is no peripheral \"CLOCK\", expected one of: NOC, LOW_BUS, "},
        {"UART.source=PLL_IO", "there is no peripheral \"UART\"; did you mean \"UART0\"?"},
        {"UART0.source=PLL_NOC", "UART0 can't take a clock from \"PLL_NOC\", expected one of: "
                                 "PLL_LOW, PLL_CORE, PLL_IO, PLL_LINK"},
        {"AUX.source=PLL_IO", "the peripheral \"AUX\" isn't enabled"},
    };
    for (const auto& [text, complaint] : pins) {
        std::string what;
        hbs_clocking::SearchTerms terms;
        try {
            tq::addPin(tree, text, terms);
        } catch (const tq::InputError& error) {
            what = error.what();
        }
        EXPECT_THAT(what, testing::StartsWith("--pin " + text + ": " + complaint));
    }
    hbs_clocking::SearchTerms terms;
    tq::addWeight(tree, "UART0=10", terms);
    EXPECT_THROW(tq::addWeight(tree, "UART0=10", terms), tq::InputError);
    EXPECT_THROW(tq::addWeight(tree, "CAN0=0", terms), tq::InputError);
    EXPECT_THROW(tq::addWeight(tree, "CAN0", terms), tq::InputError);
}

TEST(ClockAlternatives, AreSettingsThatPassTheCheckAndKeepThePins) {
    const std::string path = std::string(kExamples) + "/programmable_soc.json";
    const tq::ClockTree tree = tq::readClockTree(tq::JsonFile::read(path));
    const support::RunResult run =
        support::run(HBS_PROGRAM " clocks " + path +
                     " --alternatives 6 --pin PLL_IO.multiplier=100 --pin UART0.source=PLL_IO "
                     "--weight AUDIO=100 --json");
    ASSERT_EQ(0, run.status) << run.error;
    const auto json = tq::JsonFile::parse("out", run.output);
    const auto& alternatives = json.array(json.require(json.root(), "alternatives"));
    ASSERT_EQ(6U, alternatives.size());
    EXPECT_TRUE(tq::checkClockSetting(tree, json).holds());
    double before = 0.0;
    for (const tq::JsonNode& alternative : alternatives) {
        const double weighted = json.number(json.require(alternative, "weighted_sum"));
        EXPECT_GE(weighted, before * (1 - 1e-5));
        before = weighted;
        EXPECT_EQ(100.0, json.number(json.require(json.array(json.require(alternative, "plls"))[4],
                                                  "multiplier")));
        EXPECT_EQ("PLL_IO", json.string(json.require(
                                json.array(json.require(alternative, "peripherals"))[19], "pll")));
    }
    EXPECT_EQ(nullptr, json.root().find("conflicts"));
    const std::string table =
        support::run(HBS_PROGRAM " clocks " + path + " --alternatives 2").output;
    EXPECT_THAT(table, HasSubstr("\nAlternatives, the best first:\n  1. 76957.8 ppm: the answer "
                                 "above\n  2. 76957.8 ppm: UART0 from PLL_IO\n"));
}

} // namespace
