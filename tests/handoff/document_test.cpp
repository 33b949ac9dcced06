// Whole handoffs, from metadata to the document as another parser reads it.

#include <gmock/gmock.h>

#include <filesystem>

#include "HEXError.h"
#include "HPAParamMgr.h"
#include "HUTEnv.h"
#include "handoff/HBSGenerateService.h"
#include "handoff/handoff_support.h"

namespace {

using namespace handoff_support;
using testing::ElementsAre;

std::string port(const std::string& name, const std::string& kind,
                 const std::string& connections = "") {
    return R"({"NAME": ")" + name + R"(", "DIR": "O", "SIG_IS": ")" + kind +
           R"(", "IRQID": "7", "CONNECTIONS": [)" + connections + "]}";
}

std::string end(const std::string& instance, const std::string& portName) {
    return R"({"INSTANCE": ")" + instance + R"(", "PORT": ")" + portName + "\"}";
}

std::string module(const std::string& name, const std::string& ports) {
    return "\"" + name + R"(": {"SDKNAME": ")" + name + R"(", "PORTS": [)" + ports + "]}";
}

TEST(Handoff, OfTheSampleDeviceIsTheOneMadeByHand) {
    HPAParamMgr::getParamMgr()->setValue("project.NoTimeStamp", "true");
    Texts design{{"SORREL_CPU_FREQMHZ", "1299.987"},
                 {"SORREL_DDR", "{CTRL_ACT_FREQMHZ 1599.975 RANKS 2}"},
                 {"SORREL_DDR_TIMING", "11,11,11,28"},
                 {"SORREL_ETH", "{ENABLE 1 MODE rgmii REF_FREQMHZ 125}"},
                 {"SORREL_UART0_REF_FREQMHZ", "100"},
                 {"SORREL_UART1_ENABLE", "0"}};
    Texts system{{"family", "mirrel"},
                 {"device", "sorrel"},
                 {"package", "fb484"},
                 {"speedgrade", "-2"},
                 {"ps_core_name", "sorrel_ps"}};
    std::vector<std::pair<std::string, std::string>> extraPairs{{"a", "b"}};
    std::string expected = support::readFile(TQ_SOURCE_DIR "/tests/handoff/golden.hwh");
    expected.replace(expected.find("@VERSION@"), 9, HUTEnv::getProductVersion());

    const std::string input = TQ_SOURCE_DIR "/examples/device/connectivity.json";
    const support::TempDir folder;
    HBSGenerateService::generateHWH(design, system, input, folder.file("a"));
    HBSGenerateService::generateHWH(design, extraPairs, system, input, folder.file("b"));
    HPAParamMgr::getParamMgr()->unsetValue("project.NoTimeStamp");
    EXPECT_TRUE(expected == support::readFile(folder.file("a")))
        << support::run("diff " TQ_SOURCE_DIR "/tests/handoff/golden.hwh " + folder.file("a"))
               .output;
    EXPECT_TRUE(expected == support::readFile(folder.file("b")));
    EXPECT_EQ("/LOMSYSTEM", readXml(folder.file("a")).at(0).path);
}

TEST(Handoff, WithoutMetadataHoldsTheSystemAndGainsTheKeysItAskedFor) {
    Job job;
    job.system = {{"package", "p"}};
    const Document document = job.run("{}");
    std::string paths;
    for (const Element& element : document)
        paths += element.path.substr(10) + " ";
    EXPECT_EQ(" /STSTEMINFO /EXTERNALPORTS /EXTERNALINTERFACES /MODULES ", paths);
    EXPECT_TRUE(document.at(0).attributes.contains("TIMESTAMP"));
    EXPECT_THAT(values(document, "STSTEMINFO", {"ARCH", "DEVICE", "NAME", "PACKAGE", "SPEEDGRADE"}),
                ElementsAre("  _top p "));
    const Texts gained{
        {"device", ""}, {"family", ""}, {"package", "p"}, {"ps_core_name", ""}, {"speedgrade", ""}};
    EXPECT_EQ(gained, job.system);
}

TEST(Handoff, GoesToItsDefaultPlaceWhenNoneIsNamed) {
    Job job;
    const std::string input = job.folder.write("in.json", "{}");
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(job.folder.path());
    HBSGenerateService::generateHWH(job.design, job.system, input, "");
    std::filesystem::current_path(before);
    EXPECT_EQ("/LOMSYSTEM", readXml(job.folder.file("ksb.hwh")).at(0).path);
}

TEST(Handoff, LeavesTheCallersMapsAsTheyWereWhenItFails) {
    HPAParamMgr::getParamMgr()->setValue("project.allowPSSubCoreSplit", "true");
    Job job;
    job.system = {{"ps_core_name", "tovak"}};
    const std::string good = job.folder.write("good.json", R"({"metadata": {}})");
    const std::string bad = job.folder.write("bad.json", "{");
    const std::pair<std::string, std::string> calls[] = {
        {good, job.folder.file("none/out.hwh")},
        {bad, job.folder.file("out.hwh")},
        {job.folder.file("missing.json"), job.folder.file("out.hwh")}};
    for (const auto& [input, output] : calls) {
        EXPECT_THROW(HBSGenerateService::generateHWH(job.design, job.system, input, output),
                     HEXError);
        EXPECT_EQ((Texts{{"ps_core_name", "tovak"}}), job.system) << input;
        EXPECT_FALSE(std::filesystem::exists(output));
    }
    HPAParamMgr::getParamMgr()->unsetValue("project.allowPSSubCoreSplit");
}

TEST(Modules, FoldTheOutsideOfAPieceIntoItsInside) {
    Job job;
    job.design = {{"OFF", "0"}, {"ALMOST", "00"}};
    const Document document = job.run(
        R"("a_EXT": {"SDKNAME": "a", "MODTYPE": "outside", "ENPARAM": "ALMOST"},
           "a_INT": {"SDKNAME": "a", "MODTYPE": "inside", "isMasterOrSlave": "master"},
           "a_INT2": {"SDKNAME": "a", "MODTYPE": "later inside"},
           "b_EXT": {"SDKNAME": "b", "MODTYPE": "outside", "ENPARAM": "OFF"},
           "b_INT": {"SDKNAME": "b", "MODTYPE": "inside", "ENPARAM": "unknown"},
           "c": {"SDKNAME": "c", "ENPARAM": "OFF"},
           "d_EXT": {"SDKNAME": "d", "MODTYPE": "alone"})",
        R"("m": {"SDKNAME": "0m", "CLASSIFICATION": "INTERFACE"},
           "n": {"SDKNAME": "0n", "CLASSIFICATION": "interface"})");
    EXPECT_THAT(values(document, "MODULE", {"INSTANCE", "MODTYPE"}),
                ElementsAre("a later inside", "b inside", "d alone", "0n "));
    // The fold doesn't reach the memory maps: every enabled slave instance is a range.
    EXPECT_THAT(values(document, "MEMRANGE", {"INSTANCE"}), ElementsAre("a", "a", "a", "b", "d"));
}

TEST(Modules, ExcludedSlavesAreNamedWithTheirDieOnACoreOfSeveral) {
    using Core = std::pair<const char*, std::vector<std::string>>;
    for (const auto& [core, left] :
         {Core{"tovak", {"", "", "s", "t", "U"}}, Core{"core", {"", "", "s", "s"}}}) {
        Job job;
        job.system["ps_core_name"] = core;
        const Document document = job.run(
            R"("s0": {"SDKNAME": "s", "SLR_NUMBER": "0"}, "s1": {"SDKNAME": "s", "SLR_NUMBER": "1"},
               "t": {"SDKNAME": "t"}, "u": {"SDKNAME": "U"}, "nameless": {}, "other": {})",
            R"("m": {"SDKNAME": "m", "excluded_slaves": ["s:1", "t", "u"]})");
        EXPECT_EQ(left, values(document, "MEMRANGE", {"INSTANCE"}));
        EXPECT_EQ(left, values(document, "PERIPHERAL", {"INSTANCE"}));
    }
}

TEST(Ports, TakeTheirFormFromTheExactKindOfSignal) {
    Job job;
    const Document document = job.run(
        module("m", port("a", "CLK") + "," + port("b", "INTR") + "," + port("c", "INTERRUPT") +
                        "," + port("d", "clk") + "," + port("e", "") + "," +
                        port("f", "INTERRUPT", end("core_top", "out"))),
        "");
    EXPECT_THAT(values(document, "MODULES/MODULE/PORTS/PORT", {"NAME", "SIGIS", "IRQID", "LEFT"}),
                ElementsAre("a CLK (none) ", "b INTR (none) ", "c INTERRUPT 7 ", "d clk (none) ",
                            "e undef (none) ", "f INTERRUPT 7 "));
    EXPECT_THAT(values(document, "MODULES/MODULE/PORTS/PORT/CONNECTIONS", {}), testing::SizeIs(1));
    // At the top level an interrupt is a plain port.
    EXPECT_THAT(values(document, "EXTERNALPORTS/PORT", {"NAME", "SIGIS", "IRQID", "SIGNAME"}),
                ElementsAre("out INTERRUPT (none) m_f"));
}

TEST(Signals, SpreadInTheOrderInWhichPortsAreVisited) {
    const auto one = [](const char* name, const char* portName, const std::string& ends = "") {
        return module(name, port(portName, "", ends));
    };
    const struct {
        const char* meaning;
        std::string slaves;
        std::vector<std::string> signals; ///< of all ports, external ones first
        const char* core = "core";
    } nets[] = {{"both ends list each other",
                 one("m1", "A", end("m2", "B")) + "," + one("m2", "B", end("m1", "A")),
                 {"m1_A", "m1_A"}},
                {"a silent far end is named by the first that lists it",
                 one("m1", "A", end("m2", "B")) + "," + one("m2", "B"),
                 {"m1_A", "m1_A"}},
                {"one net that was reached separately keeps two names",
                 one("m1", "A") + "," + one("m2", "B") + "," +
                     one("m3", "C", end("m2", "B") + "," + end("m1", "A")),
                 {"m1_A", "m2_B", "m1_A"}},
                {"two joins that give one text are one key",
                 one("m", "x_y") + "," + one("m_x", "y"),
                 {"m_x_y", "m_x_y"}},
                {"two modules share an external port",
                 one("m1", "A", end("core_top", "E")) + "," + one("m2", "B", end("core_top", "E")),
                 {"m1_A", "m1_A", "m1_A"}},
                {"without a core the top has a name of its own",
                 one("m1", "A", end("yrel_top", "E") + "," + end("_top", "F")),
                 {"m1_A", "m1_A"},
                 ""}};
    for (const auto& [meaning, slaves, signals, core] : nets) {
        Job job;
        job.system["ps_core_name"] = core;
        EXPECT_EQ(signals, values(job.run(slaves, ""), "PORT", {"SIGNAME"})) << meaning;
    }
}

TEST(Texts, SurviveTheXmlWhateverTheyHold) {
    Job job;
    job.design = {{"D", std::string("1,<&>\"'\0.", 9)}};
    const Document document = job.run(
        R"("i": {"SDKNAME": "\"<&>'\u00e9\u20ac\ud83d\ude00", "MODTYPE": " = \t\n\r x ",
           "IP_TYPE": "\u0001\u0000,\uFFFF)"
        "\xFF\xED\xA0\x80"
        R"(",
           "PARAMETERS": {"P,=": "D", "Q": "= x "}})",
        "");
    EXPECT_THAT(values(document, "MODULE", {"INSTANCE", "MODTYPE", "IPTYPE"}),
                ElementsAre("\"<&>'é€😀  = \t\n\r x  \uFFFD\uFFFD,\uFFFD\uFFFD\uFFFD\uFFFD\uFFFD"));
    EXPECT_THAT(values(document, "PARAMETER", {"NAME", "VALUE"}),
                ElementsAre("P,= 1,<&>\"'\uFFFD.", "Q = x "));
}

} // namespace
