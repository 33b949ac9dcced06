// Exported clock trees, read by the tools that they are for: the devicetree compiler, Tcl, a C
// compiler, Python's reader of tables.

#include <gmock/gmock.h>

#include <cmath>

#include "support/support.h"
#include "workbench/clock_trees.h"
#include "workbench/clocks/export/ClockExport.h"

namespace {

using testing::HasSubstr;
using tq::ClockFormat;

/// Names that no format takes as they are, and some that fall together.
tq::ClockTree awkwardTree() {
    tq::ClockTree tree = tq::readClockTree(
        tq::JsonFile::read(TQ_SOURCE_DIR "/examples/clocks/programmable_soc.json"));
    tree.peripherals[1].name = "low bus [0] $x \"}\\";
    tree.peripherals[2].name = "a-b";
    tree.peripherals[3].name = "A_b";
    tree.peripherals[4].name = "=1,2|*";
    tree.peripherals[5].name = "µs";
    return tree;
}

struct Solved {
    tq::ClockTree tree;
    tq::ClockReport report;
};

Solved solved() {
    const tq::ClockTree tree = awkwardTree();
    return {tree, tq::makeClockReport(tree, *tq::runClockTree(tree).solver)};
}

std::string exported(const Solved& solved, ClockFormat format) {
    return tq::exportClocks(solved.report, solved.tree.referenceMhz, format);
}

std::vector<double> givenHz(const tq::ClockReport& report) {
    std::vector<double> hz;
    for (const tq::ClockReport::Peripheral& line : report.peripherals)
        if (line.given)
            hz.push_back(line.given->mhz * 1e6);
    return hz;
}

/// The numbers of a tool's output, one a line.
std::vector<double> numbers(const std::string& text) {
    std::istringstream stream(text);
    std::vector<double> all;
    for (double number = 0; stream >> number;)
        all.push_back(number);
    return all;
}

void expectSame(const std::vector<double>& expected, const std::vector<double>& found,
                double margin) {
    ASSERT_EQ(expected.size(), found.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_NEAR(expected[i], found[i], margin * expected[i] + 0.5) << i;
}

bool isInstalled(const std::string& tool) {
    return support::run("command -v " + tool).status == 0;
}

TEST(ClockExport, GivesADevicetreeThatCompilesWithoutAWarningAndKeepsTheRates) {
    if (!isInstalled("dtc"))
        GTEST_SKIP() << "no devicetree compiler";
    const support::TempDir dir;
    const Solved tree = solved();
    const std::string source = dir.write("clocks.dts", exported(tree, ClockFormat::Devicetree));
    const support::RunResult compiled =
        support::run("dtc -I dts -O dtb -o " + dir.file("clocks.dtb") + " " + source);
    EXPECT_EQ(0, compiled.status);
    EXPECT_EQ("", compiled.error);
    const support::RunResult rates = support::run(
        "for node in $(fdtget -l " + dir.file("clocks.dtb") + " /consumers); do fdtget -t u " +
        dir.file("clocks.dtb") + " /consumers/$node assigned-clock-rates; done");
    expectSame(givenHz(tree.report), numbers(rates.output), 0.0);
    // The chain of factors from the reference gives the same.
    EXPECT_EQ("90\n", support::run("fdtget -t u " + dir.file("clocks.dtb") +
                                   " /clocks/clk-pll-low clock-mult")
                          .output);
}

TEST(ClockExport, GivesConstraintsWhoseRatiosTclReads) {
    if (!isInstalled("tclsh"))
        GTEST_SKIP() << "no Tcl shell";
    const support::TempDir dir;
    const Solved tree = solved();
    dir.write("clocks.sdc", exported(tree, ClockFormat::Constraints));
    dir.write("read.tcl", R"(
proc get_ports {name} {return $name}
proc get_pins {name} {return $name}
proc create_clock {args} {
    array set o [lrange $args 0 end-1]
    set ::hz([lindex $args end]) [expr {1e9 / $o(-period)}]
}
proc create_generated_clock {args} {
    array set o {-multiply_by 1 -divide_by 1}
    array set o [lrange $args 0 end-1]
    set pin [lindex $args end]
    set ::hz($pin) [expr {$::hz($o(-source)) * $o(-multiply_by) / $o(-divide_by)}]
    if {[string match */CLK $pin]} {puts $::hz($pin)}
}
source clocks.sdc
)");
    const support::RunResult read =
        support::run("cd " + dir.path().string() + " && tclsh read.tcl");
    EXPECT_EQ("", read.error);
    expectSame(givenHz(tree.report), numbers(read.output), 1e-6);
}

TEST(ClockExport, GivesAHeaderThatCompilesAndHoldsTheSettings) {
    const support::TempDir dir;
    const Solved tree = solved();
    const std::string header = exported(tree, ClockFormat::CHeader);
    dir.write("clocks.h", header);
    std::string program = "#include \"clocks.h\"\n#include <stdio.h>\nint main(void) {\n";
    std::istringstream lines(header);
    for (std::string word; lines >> word;)
        if (word.ends_with("_HZ") &&
            header.find(word.substr(0, word.size() - 3) + "_PLL ") != std::string::npos)
            program += "printf(\"%llu\\n\", " + word + ");\n";
    dir.write("main.c", program + "return CLOCKS_UART0_DIVIDER != 8u || CLOCKS_UART0_PLL != "
                                  "CLOCKS_PLL_LINK_INDEX;\n}\n");
    const support::RunResult run =
        support::run("cd " + dir.path().string() +
                     " && g++ -x c++ -std=c++17 -Wall -Wextra -Werror main.c -o main && ./main");
    EXPECT_EQ("", run.error);
    EXPECT_EQ(0, run.status);
    expectSame(givenHz(tree.report), numbers(run.output), 0.0);
}

TEST(ClockExport, GivesRowsThatSpreadsheetsAndMarkdownTake) {
    const Solved tree = solved();
    const std::string csv = exported(tree, ClockFormat::Csv);
    EXPECT_THAT(csv, HasSubstr("\r\n\"'=1,2|*\",LOW_POWER,2.000000,PLL_LOW,90,4,749.992493,,375,"));
    EXPECT_THAT(csv, HasSubstr("\r\n\"low bus [0] $x \"\"}\\\",LOW_POWER,"));
    EXPECT_EQ(24, std::count(csv.begin(), csv.end(), '\n'));
    const support::TempDir dir;
    dir.write("clocks.csv", csv);
    const support::RunResult read =
        support::run("cd " + dir.path().string() +
                     " && python3 -c 'import csv\n"
                     "for row in csv.DictReader(open(\"clocks.csv\", newline=\"\")):\n"
                     "    ratio = int(row[\"output_divider\"]) * int(row[\"own_divider\"]) * "
                     "int(row[\"cross_divider\"] or 1)\n"
                     "    print(33333000 * int(row[\"multiplier\"]) / ratio)'");
    EXPECT_EQ("", read.error);
    expectSame(givenHz(tree.report), numbers(read.output), 1e-6);
    const std::string markdown = exported(tree, ClockFormat::Markdown);
    EXPECT_THAT(markdown, HasSubstr("\n| =1,2\\|\\* | LOW\\_POWER | 2.000000 | PLL\\_LOW |"));
}

TEST(ClockExport, TellsWhereNamesFellTogether) {
    const Solved tree = solved();
    tq::DiagnosticList findings;
    static_cast<void>(tq::exportClocks(tree.report, 24.0F, ClockFormat::CHeader, findings.sink()));
    ASSERT_EQ(1U, findings.all().size());
    EXPECT_EQ("name-clash", findings.all()[0].id);
    EXPECT_THAT(findings.all()[0].text, HasSubstr("CLOCKS_A_B_2"));
}

TEST(ClockExport, IsAnOptionOfTheWordThatKnowsTheEndings) {
    const support::TempDir dir;
    const std::string word =
        HBS_PROGRAM " clocks " TQ_SOURCE_DIR "/examples/clocks/serial_buses.json --export ";
    EXPECT_EQ(0, support::run(word + dir.file("a.sdc") + " --export " + dir.file("a.md")).status);
    EXPECT_THAT(support::readFile(dir.file("a.sdc")), HasSubstr("create_clock -name reference"));
    const support::RunResult wrong = support::run(word + dir.file("a.txt"));
    EXPECT_EQ(2, wrong.status);
    EXPECT_THAT(wrong.error, HasSubstr("a.txt: expected a file that ends in one of: .dts, .dtsi, "
                                       ".sdc, .h, .csv, .md"));
}

} // namespace
