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
    const auto json = addressing(sampleConfig("linux") + " --report -");
    EXPECT_EQ(0U, json.output.find("{\n    \"components\": {\n        \"sorrel_ps\": {"));
    EXPECT_THAT(json.output, HasSubstr("\"SEG_ddr0_config_config\": {"));
    const auto map = addressing(sampleConfig("linux") + " --map -");
    EXPECT_EQ(0U, map.output.find("{\n  \"blocks\": [\n    {\n      \"base\": \"0x0\","));
    EXPECT_THAT(map.output, HasSubstr("\"ports\": [\n        \"S_AXI_LPD\"\n      ],\n"));
    EXPECT_THAT(map.output, Not(HasSubstr("Switched off")));
    const support::TempDir out;
    EXPECT_EQ(0, addressing("--svg " + out.file("a.svg") + " --html " + out.file("a.html")).status);
    EXPECT_EQ(0U, support::readFile(out.file("a.svg")).find("<svg "));
    EXPECT_THAT(support::readFile(out.file("a.html")), HasSubstr("[\n\"uart1/sorrel_uart/regs\""));
    EXPECT_EQ(3, addressing("--svg " + out.file("no/such/a.svg")).status);
    const std::string full = addressing("--svg " + out.file("a.svg") + " --html /dev/full").error;
    EXPECT_EQ("/dev/full: error: can't be written: No space left on device\n", full);
    EXPECT_THAT(addressing("--svg /dev/stdout | cat").output, HasSubstr("<svg "));
    const std::string definition = area().file("mirrel/hardblocks/sorrel_ps/sorrel_ps.bmj");
    EXPECT_EQ(2, addressing("--report " + definition).status);
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
    const auto checked = addressing("--check", "v:l:holder:1.0");
    EXPECT_THAT(checked.error, HasSubstr("[unresolved-stub:no\\x1Bne]\n"));
    EXPECT_THAT(checked.error, Not(HasSubstr("\x1B")));
    EXPECT_THAT(addressing("--check --allow 'unresolved-stub:no\\x1Bne'", "v:l:holder:1.0").error,
                Not(HasSubstr("no\\x1Bne")));
}

TEST(AddressingWord, ChecksForContinuousIntegration) {
    const auto check = [](const std::string& config, const std::string& options = "") {
        return addressing("--check --config " + area().write("check.json", config) + " " + options);
    };
    const std::string twice =
        R"({"assigns": [{"block": "/uart0/sorrel_uart/regs", "segment": "/cpu0/data/peripherals",)"
        R"( "offset": "0xFF000000"}, {"block": "/uart1/sorrel_uart/regs",)"
        "\n"
        R"("segment": "/cpu0/data/peripherals", "offset": "0xFF000000"}]})";
    const auto overlap = check(twice, "--json");
    EXPECT_EQ(1, overlap.status);
    EXPECT_EQ("", overlap.error);
    EXPECT_THAT(overlap.output, HasSubstr("\"id\": \"overlap:uart0/uart1\""));
    EXPECT_THAT(overlap.output, HasSubstr("\"severity\": \"error\""));
    EXPECT_THAT(overlap.output, HasSubstr("\"counts\": {\n    \"error\": 1,"));
    EXPECT_THAT(overlap.output, HasSubstr("\"line\": 2,\n      \"column\": 48,"));
    EXPECT_EQ(0, check(twice, "--allow overlap:uart0/uart1").status);

    using Case = std::pair<const char*, const char*>;
    for (const auto& [config, finding] :
         {Case{R"({"assigns": [{"block": "/ddr0/memory/ddr_low", "offset": "0x90000000",)"
               R"( "segment": "/cpu0/data/ddr_low"}]})",
               ":1:58: error: the assign \"assign_1\" of \"ddr0/memory/ddr_low\" (0x90000000 to "
               "0x10FFFFFFF) reaches beyond its segment, expected an extent within 0x0 to "
               "0x7FFFFFFF [outside-segment:assign_1]"},
          Case{R"({"instances": {"uart0": {"registers": {"UART_CTL": 1}}, "usb0": {}}})",
               ":1:40: error: the instance \"uart0\" has no register \"UART_CTL\""},
          Case{R"({"instances": {"uart0": {"registers": {"UART_CTL": 1}}, "uart": {}}})",
               "did you mean \"uart0\"? [unknown-instance:uart]"},
          Case{R"({"parameters": {"PS_SPEED_GRAD": "-1"}})", "[unknown-parameter:PS_SPEED_GRAD]"},
          Case{R"({"assigns": [{"block": "/ddr/memory/ddr_low", "segment": "/cpu0/data/ddr"}]})",
               "did you mean \"/ddr0/memory/ddr_low\"? [assign-nowhere:assign_1]"}}) {
        const auto result = check(config);
        EXPECT_EQ(1, result.status);
        EXPECT_THAT(result.error, HasSubstr(finding));
    }
    const auto version = addressing("--check", "kestrom:hardblock:sorrel_ps:9.9");
    EXPECT_EQ(1, version.status);
    EXPECT_THAT(version.error, HasSubstr("[other-version:sorrel_ps]"));
    const auto clean = addressing(sampleConfig("linux") + " --check");
    EXPECT_EQ(0, clean.status);
    EXPECT_EQ("0 errors, 1 warning, 1 remark\n", clean.output);
    EXPECT_THAT(clean.error, HasSubstr("sorrel_ddr/data/addrblocks.txt:3:103: remark: the size"));
}

/// A block at another one's base address, and a stub that asks for a version that isn't there.
TEST(AddressingWord, ChecksNameThePlaceInTheTables) {
    const std::string blocks = area().file("mirrel/hardblocks");
    std::filesystem::create_directories(blocks + "/pair/data");
    area().write("mirrel/hardblocks/pair/data/instances.txt",
                 "instance=a; vlnv=kestrom:hardblock:sorrel_uart:1.0; base_address=0x1000\n"
                 "instance=b; vlnv=kestrom:hardblock:sorrel_uart:9.9; base_address=0x1000\n");
    area().write("mirrel/hardblocks/pair/data/interfaces.txt", "interface=S; mode=slave\n");
    area().write("mirrel/hardblocks/pair/data/connections.txt",
                 "type=interface; source=/S; targets=/a/S_CFG,/b/S_CFG\n");
    ASSERT_NE(nullptr, HBSAddrParseUtil::buildHardblockDefinition(HUTFile(blocks), "pair", true));
    const auto result = addressing("--check", "kestrom:hardblock:pair:1.0");
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.error, HasSubstr("pair/data/instances.txt:2:18: error: the definition of "
                                        "\"b\" is \"kestrom:hardblock:sorrel_uart:1.0\""));
    EXPECT_THAT(result.error, HasSubstr("pair/data/instances.txt:2:66: error: \"S\" sees "
                                        "\"b/sorrel_uart/regs\" (0x1000 to 0x1FFF) over"));
}

TEST(AddressingWord, AnswersWhatLiesWhereAndWhy) {
    const auto at = addressing(sampleConfig("linux") + " --at 0xFF0B0006 --from cpu0 --json");
    EXPECT_EQ(0, at.status);
    for (const char* part : {"\"from\": \"cpu0\"", "\"block\": \"eth0/sorrel_eth/regs\"",
                             "\"register\": \"ETH_CONFIG\"", "\"offset\": \"0x2\"",
                             "\"reset\": \"0x80000\"", "\"assign\": \"assign_7\""})
        EXPECT_THAT(at.output, HasSubstr(part));
    EXPECT_THAT(addressing("--at 0xFF010004 --from noc0").output,
                HasSubstr("/noc0/M_PERIPH > /uart1/S_CFG"));
    EXPECT_EQ(1, addressing(sampleConfig("linux") + " --at 0xFF010004").status);
    EXPECT_THAT(addressing("--at 0 --from cpu").error, HasSubstr("did you mean \"cpu0\"?"));
    EXPECT_EQ(2, addressing("--at 0xG").status);
    // As where a variable of a script is empty.
    for (const char* empty : {"--at ''", "--why ''", "--config ''"})
        EXPECT_EQ(2, addressing(empty).status) << empty;
    EXPECT_EQ(1, addressing("--find ''").status);

    EXPECT_THAT(addressing("--find 'uart*/UART_MODE' --from S_AXI_LPD").output,
                testing::ContainsRegex("S_AXI_LPD +0xFF000004 .*\n.* 0xFF010004 "));
    EXPECT_EQ("uart1 is off: (0x0 & 0x1) == 1 is false\n"
              "condition: (register_value(UART_CTRL) & 0x1) == 1\n"
              "uart1/sorrel_uart/regs/UART_CTRL is 0x0, from " TQ_SOURCE_DIR
              "/examples/device/config_linux.json:5:31\n",
              addressing(sampleConfig("linux") + " --why uart1").output);
    EXPECT_THAT(addressing("--why uart1").output, HasSubstr("its reset, "));
    EXPECT_THAT(addressing("--why eth0").output,
                testing::MatchesRegex("eth0 is off: 0 is false\n.*computed by the script "
                                      "[^\n]*/sorrel_eth/sorrel_eth.tcl\n"
                                      "eth0/sorrel_eth/regs/ETH_CTRL is 0x0, from its reset,.*"));
    const auto script = addressing(sampleConfig("bare_metal") + " --why cpu1 --json");
    EXPECT_THAT(script.output, HasSubstr("sorrel_cpu.tcl\"\n"));
    EXPECT_THAT(script.output, HasSubstr("/CPU_CFG\""));
    EXPECT_THAT(script.output, HasSubstr("config_bare_metal.json:"));
    EXPECT_THAT(addressing("--why uart9").error, HasSubstr("did you mean \"uart0\"?"));
}

TEST(AddressingWord, ComparesTwoConfigsAndTwoSavedMaps) {
    const support::TempDir out;
    const std::string linux = sampleConfig("linux");
    const std::string bare = sampleConfig("bare_metal");
    const auto configs = addressing(linux + " " + bare + " --svg " + out.file("both.svg"));
    EXPECT_EQ(1, configs.status);
    EXPECT_THAT(
        configs.output,
        testing::ContainsRegex("off +eth0/sorrel_eth/regs +on +off +stays if .::eth0::link_on"));
    EXPECT_THAT(configs.output, testing::ContainsRegex("off +uart0/.* UART_CTRL is 0x1 and 0x0\n"));
    EXPECT_THAT(configs.output,
                testing::ContainsRegex("assign +cpu0/data: ddr0/memory/ddr_low +0x0 to 0x7FFFFFFF "
                                       "normal +0x0 to 0x1FFFFFFF normal"));
    EXPECT_THAT(configs.output,
                testing::ContainsRegex("value +uart0/sorrel_uart/regs/UART_CTRL +0x1 +0x0"));
    EXPECT_THAT(support::readFile(out.file("both.svg")), HasSubstr("config_bare_metal.json"));
    EXPECT_EQ("no difference\n", addressing(linux + " " + linux).output);

    const auto save = [&](const std::string& config, const std::string& name) {
        EXPECT_EQ(0, addressing(config + " --registers --map " + out.file(name)).status);
        return out.file(name) + " ";
    };
    const auto saved = support::run(std::string(HBS_PROGRAM) + " addressing --compare " +
                                    save(linux, "a.json") + save(bare, "b.json"));
    EXPECT_EQ(1, saved.status);
    EXPECT_EQ(configs.output, saved.output);
    const std::string bad = out.write("bad.json", "{\"blocks\": [{}]}");
    EXPECT_THAT(
        support::run(std::string(HBS_PROGRAM) + " addressing --compare " + bad + " " + bad).error,
        HasSubstr("bad.json:1:13: error: the key \"path\" is missing"));
    EXPECT_EQ(2, support::run(std::string(HBS_PROGRAM) + " addressing").status);
}

TEST(AddressingWord, ShowsRegistersAtAbsoluteAddresses) {
    EXPECT_THAT(
        addressing("--registers").output,
        testing::ContainsRegex("0xFF010018 +UART_BAUD +32 +read_write +0x28B +0x28B +uart1"));
    const auto json = addressing("--registers --json");
    EXPECT_THAT(json.output, HasSubstr("\"address\": \"0xFF010018\""));
    EXPECT_THAT(json.output, HasSubstr("\"findings\": ["));
    EXPECT_THAT(addressing("--json").output, Not(HasSubstr("UART_BAUD")));
    const support::TempDir out;
    for (const char* ending : {".h", ".ld", ".dts", ".rdl", ".svd", ".csv", ".md"}) {
        const std::string with = out.file(std::string("with") + ending);
        const std::string without = out.file(std::string("without") + ending);
        EXPECT_EQ(0, addressing("--registers --export " + with).status);
        EXPECT_EQ(0, addressing("--export " + without).status);
        // A devicetree describes devices, not their registers.
        EXPECT_EQ(ending != std::string(".dts"),
                  support::readFile(with).find("BAUD") != std::string::npos)
            << ending;
        EXPECT_THAT(support::readFile(without), Not(HasSubstr("BAUD"))) << ending;
    }
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
