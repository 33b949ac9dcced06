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
    const auto map = addressing(sampleConfig("linux") + " --map -");
    EXPECT_EQ(0U, map.output.find("{\n  \"blocks\": [\n    {\n      \"base\": \"0x0\","));
    EXPECT_THAT(map.output, HasSubstr("\"ports\": [\n        \"S_AXI_LPD\"\n      ],\n"));
    EXPECT_THAT(map.output, Not(HasSubstr("Switched off")));
    const support::TempDir out;
    EXPECT_EQ(0, addressing("--svg " + out.file("a.svg") + " --html " + out.file("a.html")).status);
    EXPECT_EQ(0U, support::readFile(out.file("a.svg")).find("<svg "));
    EXPECT_THAT(support::readFile(out.file("a.html")), HasSubstr("unused"));
    EXPECT_EQ(2, addressing("--svg " + out.file("no/such/a.svg")).status);
    const std::string full = addressing("--svg " + out.file("a.svg") + " --html /dev/full").error;
    EXPECT_EQ("/dev/full: error: can't be written: No space left on device\n", full);
    EXPECT_THAT(addressing("--svg /dev/stdout | cat").output, HasSubstr("<svg "));
    const std::string definition = area().file("mirrel/hardblocks/sorrel_ps/sorrel_ps.bmj");
    EXPECT_EQ(2, addressing("--json " + definition).status);
    const std::string config = out.write("config.json", "{}");
    EXPECT_EQ(2, addressing("--config " + config + " --html " + config).status);
    EXPECT_EQ("{}", support::readFile(config));
}

TEST(AddressingWord, RefusesBadConfigsWithTheirPlace) {
    using Case = std::pair<const char*, const char*>;
    for (
        const auto& [content, complaint] :
        {Case{R"({"instances":)"
              "\n"
              R"({"usb0": {}}})",
              ":2:2: error: the definition has no instance \"usb0\"; it has: cpu0, cpu1, ddr0"},
         Case{R"({"instances": {"uart0": {"registers": {"UART_CTRL": "1 K"}}}})",
              ":1:53: error: expected an address or a size"},
         Case{
             R"({"instances": {"uart0": {"registers": {"UART_CTRL": 1, "sorrel_uart/regs/UART_CTRL": 2}}}})",
             ":1:56: error: the register \"sorrel_uart/regs/UART_CTRL\" is set twice"},
         Case{R"({"assigns": [{"block": "/ddr0/memory/ddr_low", "segment": "/a"}]})",
              ":1:59: error: the definition has no address segment \"/a\""},
         Case{
             R"({"assigns": [{"type": "inner", "block": "/ddr0/memory/ddr_low", "segment": "/cpu0/data/ddr_low"}]})",
             ":1:23: error: expected \"normal\", \"internal\" or \"excluded\""},
         Case{R"({"parameters": {"": "x"}})", ":1:17: error: \"\" can't name a parameter"},
         Case{R"({"parameters": {"A": {}}})", ":1:22: error: expected a text, found an object"},
         Case{R"({"instances": {"uart0": {}, "uart0": {}}})",
              ":1:29: error: the instance \"uart0\" is named twice"},
         Case{R"({"instances": {"uart0": {"registers": {"NONE": 1}}}})",
              ":1:40: error: the instance has no register \"NONE\"; it has: "},
         Case{R"({"assigns": [{"segment": "/cpu0/data/ddr_low"}]})",
              ":1:14: error: the key \"block\" is missing"},
         Case{R"({"assigns": [{"block": "/a", "segment": "/cpu0/data/ddr_low"}]})",
              ":1:24: error: the definition has no address block \"/a\""},
         Case{R"({"assigns": [{"name": "", "block": "/ddr0/memory/ddr_low", )"
              R"("segment": "/cpu0/data/ddr_low"}]})",
              ":1:14: error: an assign can't be named \"\", or another one is"},
         Case{R"({"assigns": [{"block": "/ddr0/memory/ddr_low", )"
              R"("segment": "/cpu0/data/ddr_low", "range": "2 G"}]})",
              ":1:90: error: expected an address or a size"},
         Case{R"({"asigns": []})", ":1:2: error: unknown key \"asigns\""}}) {
        const std::string path = area().write("bad.json", content);
        const auto result = addressing("--config " + path);
        EXPECT_EQ(2, result.status);
        EXPECT_EQ("", result.output);
        EXPECT_THAT(result.error, testing::StartsWith(path + complaint));
    }
}

TEST(AddressingWord, WarnsOfConfigsThatProbablyArentMeant) {
    using Case = std::pair<const char*, const char*>;
    for (const auto& [content, warning] :
         {Case{
              R"({"parameters": {"PS_SPEED_GRAD": "-1"}})",
              ":1:17: warning: the definition has no parameter \"PS_SPEED_GRAD\", expected one of: "
              "PS_CPU_COUNT, PS_REF_CLK_MHZ, PS_SPEED_GRADE; did you mean \"PS_SPEED_GRADE\"? "
              "[unknown-parameter]\n"},
          Case{R"({"instances": {"uart0": {"parameters": {"BAUD": 1}}}})",
               ":1:41: warning: the definition has no parameter \"BAUD\""},
          Case{R"({"instances": {"uart0": {"registers": {"UART_CTRL": "0x100000000"}}}})",
               ":1:53: warning: the value has 33 bits, the register \"UART_CTRL\" 32 "
               "[value-too-wide]\n"},
          Case{R"({"assigns": [{"offset": "0x80000000", "block": "/ddr0/memory/ddr_low", )"
               R"("segment": "/cpu0/data/ddr_low"}]})",
               ":1:25: warning: the assign \"assign_1\" reaches beyond its segment, expected an "
               "extent within 0x0 to 0x7FFFFFFF [outside-segment]\n"},
          Case{R"({"assigns": [{"offset": "0x8000000000000000", "block": "/ddr0/memory/ddr_low", )"
               R"("segment": "/cpu0/data/ddr_low"}]})",
               ":1:25: warning: the assign \"assign_1\" reaches beyond its address space"}}) {
        const std::string path = area().write("odd.json", content);
        const auto result = addressing("--config " + path);
        EXPECT_EQ(0, result.status);
        EXPECT_THAT(result.error, testing::StartsWith(path + warning));
    }
    for (const char* name : {"linux", "bare_metal"})
        EXPECT_EQ("", addressing(sampleConfig(name)).error);
}

TEST(AddressingWord, EndsWithoutAResultWhereAStubStaysAStub) {
    const auto holder = HABMBlock::createTopBlock("holder");
    holder->setModuleVlnv("v:l:holder:1.0");
    holder->createMemoryMap("m")->createAddrBlock("b");
    for (const char* name : {"holder", "no\x1Bne"}) {
        HABMBlock& stub = *holder->createSubBlock(name, name, false);
        stub.setModuleVlnv("v:l:" + std::string(name) + ":1.0");
        stub.setBlockStub(true);
    }
    HABMBlock& stub = *holder->createSubBlock("bad", "bad", false);
    stub.setModuleVlnv("\x1B[2J");
    stub.setBlockStub(true);
    stub.setEnablement("[error one\\ntwo]");
    const std::string file = area().write("mirrel/hardblocks/holder/holder.bmj", "");
    ASSERT_TRUE(HABMBlock::writeTopBlock(HUTFile(file), *holder, true));
    const auto result = addressing("", "v:l:holder:1.0");
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.output, HasSubstr(" m/b "));
    EXPECT_THAT(result.error, HasSubstr("error: the sub-block \"holder\" is still a stub: the "
                                        "definition \"v:l:holder:1.0\" contains itself"));
    EXPECT_THAT(result.error, Not(HasSubstr("\x1B")));
    EXPECT_THAT(result.error, HasSubstr("warning: '\\x1B[2J' isn't of the form vendor:library:name:"
                                        "version [91-45]\n"));
    EXPECT_THAT(result.error, HasSubstr("error: one [HBS.TCL]\nnote: two\n"));
    EXPECT_THAT(result.error, HasSubstr("expected no\\x1Bne/no\\x1Bne.bmj in mirrel/hardblocks"));
}

TEST(AddressingWord, SaysWhatIsMissing) {
    EXPECT_THAT(addressing("", "a:b").error, HasSubstr("isn't of the form vendor:library"));
    const auto absent = addressing("", "v:l:absent:1.0");
    EXPECT_EQ(2, absent.status);
    EXPECT_THAT(absent.error, HasSubstr("mirrel/hardblocks/absent/absent.bmj; hbs define makes"));
    area().write("mirrel/hardblocks/torn/torn.bmj", "torn");
    EXPECT_THAT(addressing("", "v:l:torn:1.0").error, HasSubstr("torn.bmj:1:"));
}

} // namespace
