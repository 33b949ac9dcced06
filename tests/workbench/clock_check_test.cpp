// Settings against the rules: the solver's own pass, each broken rule is found.

#include <gmock/gmock.h>

#include "support/support.h"
#include "workbench/clock_trees.h"
#include "workbench/clocks/ClockCheck.h"

namespace {

tq::ClockCheck check(const tq::ClockTree& tree, const std::string& setting) {
    return tq::checkClockSetting(tree, tq::JsonFile::parse("s.json", setting));
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    const std::size_t place = text.find(from);
    if (place == std::string::npos)
        throw std::logic_error("no " + from);
    return text.replace(place, from.size(), to);
}

TEST(ClockCheck, AcceptsWhatTheSolversFind) {
    unsigned solved = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        const tq::ClockTree tree =
            clock_trees::generate(seed, std::array{1U, 2U, 4U, 6U}[seed % 4], 4 + seed % 9);
        if (!tq::runClockTree(tree).solver->is_result_found())
            continue;
        ++solved;
        tq::ClockCheck result = check(tree, clock_trees::solutionJson(tree));
        tq::addBestSum(result, tree);
        EXPECT_TRUE(result.holds())
            << seed << " " << (result.holds() ? "" : result.findings.all()[0].text);
        EXPECT_NEAR(*result.bestSum, result.sum, 1e-5 * (1 + result.sum)) << seed;
    }
    EXPECT_GT(solved, 190U);
    // Numbers of which single precision and the file's text keep few digits.
    tq::ClockTree tree = clock_trees::generate(1, 4, 4);
    tree.peripherals.back().mhz = 1e-45F;
    EXPECT_TRUE(check(tree, clock_trees::solutionJson(tree)).holds());
}

/// Values that make a field of a solution wrong, whatever the others are.
std::vector<std::string> wrongValues(const std::string& key, const std::string& value) {
    if (key == "cross_domain_divider") // 1 to 4 may all do
        return {"0", "5", "-1", "1.5"};
    if (key == "tolerance") // a larger one may do
        return {"0.0001", "2"};
    if (value.front() == '"')
        return {"\"\"", "\"NOBODY\"", "\"PLL\""};
    if (value == "true" || value == "false")
        return {value == "true" ? "false" : "true"};
    const double number = std::stod(value);
    std::vector<std::string> wrong;
    for (const double other :
         {number + 1, number - 1, number * 2 + 3, -number - 2, number * 1e6 + 1, number + 17})
        wrong.push_back(std::to_string(other));
    return wrong;
}

TEST(ClockCheck, RejectsAThousandCorruptionsOfSingleFields) {
    const tq::ClockTree tree = tq::readClockTree(
        tq::JsonFile::read(TQ_SOURCE_DIR "/examples/clocks/programmable_soc.json"));
    const std::string solution = clock_trees::solutionJson(tree);
    std::istringstream lines(solution);
    std::size_t begin = 0;
    unsigned tried = 0;
    for (std::string line; std::getline(lines, line); begin += line.size() + 1) {
        const std::size_t colon = line.find("\": ");
        if (colon == std::string::npos || line.find_first_of("[{") != std::string::npos)
            continue;
        const std::size_t keyBegin = line.find('"') + 1;
        const std::string key = line.substr(keyBegin, colon - keyBegin);
        std::string value = line.substr(colon + 3);
        value.erase(value.find_last_not_of(',') + 1);
        if (value == "null")
            continue;
        for (const std::string& wrong : wrongValues(key, value)) {
            std::string corrupt = solution;
            corrupt.replace(begin + colon + 3, value.size(), wrong);
            ++tried;
            try {
                EXPECT_FALSE(check(tree, corrupt).holds()) << line << " -> " << wrong;
            } catch (const tq::InputError&) { // as good as a finding
            }
        }
    }
    EXPECT_GT(tried, 1000U);
}

TEST(ClockCheck, NamesTheBrokenRuleWithItsNumberAndBound) {
    tq::ClockTree tree = clock_trees::generate(1, 4, 1);
    tree.referenceMhz = 40.0F;
    for (tq::ClockTree::Domain& domain : tree.domains)
        domain.plls[0].maxMhz = 2000.0F;
    tree.peripherals.push_back({"A", "D0", 100.0F, 1.0F});
    tree.peripherals.push_back({"B", "D2", 125.0F});
    const std::string good = R"({"plls": [
{"name": "PLL00", "multiplier": 80, "output_divider": 2, "cross_domain_divider": 2},
{"name": "PLL10", "multiplier": 60, "output_divider": 3, "cross_domain_divider": 1},
{"name": "PLL20", "multiplier": 75, "output_divider": 4, "cross_domain_divider": 1},
{"name": "PLL30", "multiplier": 70, "output_divider": 2}],
"peripherals": [{"name": "NOC", "pll": "PLL10", "divider": 1},
{"name": "A", "pll": "PLL00", "divider": 16}, {"name": "B", "pll": "PLL20", "divider": 6}]})";
    ASSERT_TRUE(check(tree, good).holds()) << check(tree, good).findings.all()[0].text;
    EXPECT_EQ(0.0, check(tree, good).sum);
    const std::vector<std::array<std::string, 4>> cases = {
        {"r\": 75", "r\": 53", "vco-range", "2120.0000 MHz"},
        {"r\": 75", "r\": 108.5", "multiplier-range", "108.5"},
        {"r\": 75, \"output_divider\": 4", "r\": 75, \"output_divider\": 1", "pll-limit",
         "3000.0000 MHz"},
        {"r\": 80, \"output_divider\": 2", "r\": 80, \"output_divider\": 3", "output-divider", "3"},
        {"\"output_divider\": 3", "\"output_divider\": 4", "noc-divider", "4"},
        {"\"cross_domain_divider\": 2", "\"cross_domain_divider\": 1", "crossing-limit",
         "1600.0000 MHz"},
        {"\"cross_domain_divider\": 2", "\"cross_domain_divider\": 5", "cross-divider", "5"},
        {", \"cross_domain_divider\": 2", "", "cross-divider", "missing"},
        {"\"pll\": \"PLL00\"", "\"pll\": \"PLL20\"", "source", "PLL20"},
        {"\"divider\": 16", "\"divider\": 17", "allowed-error", "5.8824 %"},
        {"\"divider\": 16", "\"divider\": 1024", "peripheral-divider", "1024"},
        {"\"PLL10\", \"divider\": 1", "\"PLL10\", \"divider\": 0", "peripheral-divider", "0"},
        {"\"name\": \"A\"", "\"name\": \"AA\"", "unknown-name", "AA"},
        {"\"name\": \"A\"", "\"name\": \"B\"", "second-entry", "B"},
    };
    for (const auto& [from, to, id, number] : cases) {
        const tq::ClockCheck result = check(tree, replaced(good, from, to));
        ASSERT_TRUE(result.findings.hasErrors()) << to;
        EXPECT_EQ(id, result.findings.all()[0].id) << to;
        EXPECT_THAT(result.findings.all()[0].text, testing::HasSubstr(number));
        EXPECT_NE(0U, result.findings.all()[0].place.line);
    }
    tree.peripherals[0].mhz = 790.0F;
    EXPECT_EQ("noc-ceiling", check(tree, good).findings.all()[0].id);
}

TEST(ClockCheck, EndsWithTheStatusOfTheVerdictAndTwoForAnotherFile) {
    const support::TempDir dir;
    const std::string tree = TQ_SOURCE_DIR "/examples/clocks/serial_buses.json";
    const std::string word = HBS_PROGRAM " clocks " + tree;
    const std::string good = support::run(word + " --json").output;
    const auto status = [&](const std::string& setting, const std::string& options = "") {
        return support::run(word + " " + options + " --check " + dir.write("s.json", setting));
    };
    EXPECT_EQ(0, status(good).status);
    EXPECT_THAT(status(good).output, testing::StartsWith("Every rule holds.\n"));
    const support::RunResult bad = status(replaced(good, "multiplier\": 120", "multiplier\": 20"));
    EXPECT_EQ(1, bad.status);
    EXPECT_THAT(bad.error, testing::HasSubstr("s.json:9:21: error: the multiplier of LPLL is 20, "
                                              "expected a whole number from 25 to 160"));
    EXPECT_THAT(status(good, "--json").output, testing::HasSubstr("\"valid\": true"));
    EXPECT_EQ(2, status("{}").status);
    EXPECT_EQ(2, status(R"({"solved": false})").status);
}

} // namespace
