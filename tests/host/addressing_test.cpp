// The word addressing on the sample device: two configs, two maps, and complaints that name the
// place.

#include <gmock/gmock.h>

#include <fstream>

#include "HUTFile.h"
#include "addressing/HBSAddrParseUtil.h"
#include "blockmodel/HABM.h"
#include "support/support.h"

namespace {

using testing::HasSubstr;
using testing::Not;

/// A data area with the sample device's hard blocks, compiled once.
const support::TempDir& area() {
    static const support::TempDir folder;
    static const bool isBuilt = [] {
        const std::string blocks = folder.file("mirrel/hardblocks");
        std::filesystem::create_directories(folder.file("mirrel"));
        std::filesystem::copy(TQ_SOURCE_DIR "/examples/device/mirrel/hardblocks", blocks,
                              std::filesystem::copy_options::recursive);
        for (const char* name : {"cpu", "ddr", "eth", "noc", "ps", "uart"})
            EXPECT_NE(nullptr, HBSAddrParseUtil::buildHardblockDefinition(
                                   HUTFile(blocks), std::string("sorrel_") + name, true));
        return true;
    }();
    EXPECT_TRUE(isBuilt);
    return folder;
}

support::RunResult addressing(const std::string& arguments,
                              const std::string& vlnv = "kestrom:hardblock:sorrel_ps:1.0") {
    return support::run(std::string(HBS_PROGRAM) + " addressing " + vlnv + " --data " +
                        area().path().string() + " " + arguments);
}

std::string sampleConfig(const std::string& name) {
    return "--config " TQ_SOURCE_DIR "/examples/device/config_" + name + ".json";
}

TEST(AddressingWord, PrintsTheMapSortedWithWhatTheConfigSwitchedOff) {
    const auto linux = addressing(sampleConfig("linux"));
    EXPECT_EQ(0, linux.status);
    EXPECT_EQ("", linux.error);
    EXPECT_THAT(linux.output,
                testing::ContainsRegex("0xFF000000 +0xFF000FFF +4K +regs +uart0/sorrel_uart/regs "
                                       "+S_CFG +S_AXI_LPD +on\n"));
    EXPECT_THAT(linux.output, testing::ContainsRegex("uart1/sorrel_uart/regs +off\n"));
    EXPECT_THAT(linux.output, HasSubstr("\nAs seen from cpu1/data (64G):\n"));
    EXPECT_THAT(linux.output, testing::ContainsRegex("interface +UART_1 +it is connected"));
    EXPECT_LT(linux.output.find("ddr0/memory/ddr_low"), linux.output.find("uart0/sorrel_uart"));
    EXPECT_LT(linux.output.find("uart0/sorrel_uart"), linux.output.find("ddr0/memory/ddr_high"));

    const auto bare = addressing(sampleConfig("bare_metal"));
    EXPECT_THAT(bare.output, testing::ContainsRegex("block +cpu1 +\\[::cpu1::is_up\\]\n"));
    EXPECT_THAT(bare.output, testing::ContainsRegex("block +eth0 +\\$::eth0::link_on\n"));
    EXPECT_THAT(bare.output, Not(HasSubstr("As seen from cpu1")));
}

TEST(AddressingWord, WritesTheReportAndThePicture) {
    const auto json = addressing(sampleConfig("linux") + " --json -");
    EXPECT_EQ(0U, json.output.find("{\n    \"components\": {\n        \"sorrel_ps\": {"));
    EXPECT_THAT(json.output, HasSubstr("\"SEG_ddr0_config_config\": {"));
    const support::TempDir out;
    EXPECT_EQ(0, addressing("--svg " + out.file("a.svg") + " --html " + out.file("a.html")).status);
    EXPECT_EQ(0U, support::readFile(out.file("a.svg")).find("<svg "));
    EXPECT_THAT(support::readFile(out.file("a.html")), HasSubstr("unused"));
    EXPECT_EQ(2, addressing("--svg " + out.file("no/such/a.svg")).status);
}

TEST(AddressingWord, RefusesBadConfigsWithTheirPlace) {
    using Case = std::pair<const char*, const char*>;
    for (
        const auto& [content, complaint] :
        {Case{R"({"instances":)"
              "\n"
              R"({"usb0": {}}})",
              ":2:2: the definition has no instance \"usb0\"; it has: cpu0, cpu1, ddr0"},
         Case{R"({"instances": {"uart0": {"registers": {"UART_CTRL": "1 K"}}}})",
              ":1:53: expected an address or a size"},
         Case{
             R"({"instances": {"uart0": {"registers": {"UART_CTRL": 1, "sorrel_uart/regs/UART_CTRL": 2}}}})",
             ":1:56: the register \"sorrel_uart/regs/UART_CTRL\" is set twice"},
         Case{R"({"assigns": [{"block": "/ddr0/memory/ddr_low", "segment": "/a"}]})",
              ":1:59: the definition has no address segment \"/a\""},
         Case{
             R"({"assigns": [{"type": "inner", "block": "/ddr0/memory/ddr_low", "segment": "/cpu0/data/ddr_low"}]})",
             ":1:23: expected \"normal\", \"internal\" or \"excluded\""},
         Case{R"({"asigns": []})", ":1:2: unknown key \"asigns\""}}) {
        const std::string path = area().write("bad.json", content);
        const auto result = addressing("--config " + path);
        EXPECT_EQ(2, result.status);
        EXPECT_EQ("", result.output);
        EXPECT_THAT(result.error, testing::StartsWith("hbs: " + path + complaint));
    }
}

TEST(AddressingWord, SaysWhatIsMissing) {
    EXPECT_THAT(addressing("", "a:b").error, HasSubstr("isn't of the form vendor:library"));
    const auto absent = addressing("", "v:l:absent:1.0");
    EXPECT_EQ(2, absent.status);
    EXPECT_THAT(absent.error, HasSubstr("mirrel/hardblocks/absent/absent.bmj; hbs define makes"));
    area().write("mirrel/hardblocks/torn/torn.bmj", "torn");
    EXPECT_THAT(addressing("", "v:l:torn:1.0").error, HasSubstr("hbs: can't read "));
}

} // namespace
