// The word "handoff": summary, warnings, complaints.

#include "host/hbs.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

const std::string kDevice = TQ_SOURCE_DIR "/examples/device/";

support::RunResult handoff(const std::string& arguments) {
    return hbs("handoff " + arguments);
}

TEST(HandoffWord, SumsUpTheSampleDeviceAndWarns) {
    const support::TempDir folder;
    const std::string out = folder.file("out.hwh");
    const auto result = handoff(kDevice + "handoff_job.json --no-time-stamp -o " + out);
    EXPECT_EQ(0, result.status) << result.error;
    EXPECT_EQ(
        "Handoff of sorrel_ps_top in " + out +
            "\n\n"
            "                       count\n"
            "---------------------  -----\n"
            "modules                    6\n"
            "ports                     14\n"
            "signals                    9\n"
            "external ports             3\n"
            "memory ranges of cpu0      4\n"
            "memory ranges of cpu1      2\n"
            "\n"
            "warning               where\n"
            "--------------------  -----------------------------------------------------------"
            "------------------\n"
            "missing far port      eth0.trace connects to noc0.trace, which doesn't exist\n"
            "two names             one net is ddr0_sync at noc0.sync and eth0_sync at "
            "eth0.sync\n"
            "unresolved parameter  eth0: C_FIFO_DEPTH stays SORREL_ETH_FIFO_DEPTH, which the "
            "design doesn't know\n",
        result.output);
    EXPECT_THAT(support::readFile(out), HasSubstr("GUVVERSION=\"1.2\">"));
    EXPECT_THAT(handoff(kDevice + "handoff_job.json --json -o " + out).output,
                HasSubstr("\"kind\": \"two names\""));
}

TEST(HandoffWord, ChecksWithPlacesAndWritesNothing) {
    const std::string job = kDevice + "handoff_job.json";
    const auto result = handoff(job + " --check");
    EXPECT_EQ(1, result.status);
    EXPECT_EQ(job + ": findings: 3\n", result.output);
    EXPECT_THAT(result.error,
                StartsWith(kDevice +
                           "connectivity.json:70:62: warning: eth0.trace connects to noc0.trace, "
                           "which doesn't exist, expected a port of that module "
                           "[missing-far-port]\n"));
    EXPECT_THAT(handoff(job + " --check --json").output, HasSubstr(R"("id": "two-names")"));
    EXPECT_EQ(2, handoff(job + " --check -o x").status);

    const support::TempDir folder;
    const std::string good = folder.write("job.json", R"({"connectivity": "c.json"})");
    folder.write("c.json", R"({"metadata": {"slaves": [{"s": {"SDKNAME": "S", "PORTS": [
        {"NAME": "p", "CONNECTIONS": [{"INSTANCE": "yrel_top", "PORT": "p"}]}]}}], "masters": []}})");
    EXPECT_EQ(0, handoff(good + " --check").status);
    const std::string odd = folder.write("odd.json", R"({"connectivity": "c.json",
 "system": {"ps_core_nam": "yrel"}, "design": {"A": "{B 1 C}", "A": "{B 1"}})");
    EXPECT_THAT(handoff(odd + " --check").error,
                testing::AllOf(HasSubstr(":2:13: warning: unknown key \"ps_core_nam\""),
                               HasSubstr("did you mean \"ps_core_name\"?"),
                               HasSubstr("[duplicate-key]"), HasSubstr("[odd-composite]"),
                               HasSubstr("[unclosed-composite]")));
    folder.write("c.json", "{\"metadata\":\n [}");
    EXPECT_THAT(handoff(good + " --check").error,
                StartsWith(folder.file("c.json") + ":2:3: error: "));
}

TEST(HandoffWord, ShowsTheMapsOfMastersAndExportsThem) {
    const support::TempDir folder;
    const std::string job = folder.write("job.json", R"({"connectivity": "c.json"})");
    folder.write("c.json", R"({"metadata": {"slaves": [
        {"b": {"SDKNAME": "B", "BASE_ADDR": "0x2000", "HIGH_ADDR": "0x2fff", "MEMTYPE": "MEMORY"}},
        {"a": {"SDKNAME": "A", "BASE_ADDR": "4096", "HIGH_ADDR": "0x17FF"}},
        {"c": {"SDKNAME": "C", "BASE_ADDR": "0x2800", "HIGH_ADDR": "0x2FFF"}},
        {"d": {"SDKNAME": "D", "BASE_ADDR": "x"}}],
      "masters": [{"m": {"SDKNAME": "M"}, "n": {"SDKNAME": "N", "excluded_slaves": ["A", "c"]}}]}})");
    const auto result = handoff(job + " --map --export " + folder.file("map.h") + " --export " +
                                folder.file("map.dts"));
    EXPECT_EQ(0, result.status) << result.error;
    EXPECT_EQ("As seen from M:\n"
              "  base    high  size  slave  instance  memory  remark\n"
              "------  ------  ----  -----  --------  ------  ------------\n"
              "  4096  0x17FF    2K  A      a\n"
              "0x1800  0x1FFF    2K                           gap\n"
              "0x2000  0x2fff    4K  B      b         MEMORY\n"
              "0x2800  0x2FFF    2K  C      c                 overlaps B\n"
              "     x             ?  D      d                 has no place\n"
              "\n"
              "As seen from N:\n"
              "  base    high  size  slave  instance  memory  remark\n"
              "------  ------  ----  -----  --------  ------  ------------\n"
              "0x2000  0x2fff    4K  B      b         MEMORY\n"
              "     x             ?  D      d                 has no place\n",
              result.output);
    EXPECT_THAT(result.error, HasSubstr("[not-exported]"));
    EXPECT_THAT(support::readFile(folder.file("map.h")), HasSubstr("#define A_BASE 0x1000ul\n"));
    EXPECT_THAT(support::readFile(folder.file("map.dts")), HasSubstr("memory@2000 {"));
    EXPECT_THAT(handoff(job + " --map --master M --json").output,
                HasSubstr("\"base\": \"0x2800\",\n          \"high\": \"0x2FFF\"\n"));
    EXPECT_THAT(handoff(job + " --map --master X").error, HasSubstr("expected one of: M, N"));
}

TEST(HandoffWord, ShowsANetAndWhyItHasItsName) {
    const std::string job = kDevice + "handoff_job.json";
    const auto result = handoff(job + " --net eth0.sync");
    EXPECT_EQ(0, result.status) << result.error;
    EXPECT_THAT(result.output, StartsWith("One net with several names: ddr0_sync, eth0_sync\n"));
    EXPECT_THAT(
        result.output,
        HasSubstr("noc0.sync  O          DATA  ddr0_sync  connects to an end that was named "
                  "after ddr0.sync before\n"));
    EXPECT_THAT(handoff(job + " --net sorrel_ps_top.ref_clk --json").output,
                HasSubstr("takes the name at cpu0.clk, the first port joined to it"));
    EXPECT_THAT(handoff(job + " --net noc0.trace").output, HasSubstr("doesn't exist"));
    const auto unknown = handoff(job + " --net eth0.sink");
    EXPECT_EQ(2, unknown.status);
    EXPECT_THAT(unknown.error, HasSubstr("did you mean \"eth0.sync\"?"));
}

TEST(HandoffWord, ComparesDocumentsByTheirMeaning) {
    const support::TempDir folder;
    const auto write = [&](const char* name, const std::string& modules, const char* head = "") {
        return folder.write(name, "<LOMSYSTEM GUVVERSION='1.2' " + std::string(head) +
                                      "><STSTEMINFO NAME='t'/><MODULES>" + modules +
                                      "</MODULES></LOMSYSTEM>");
    };
    const std::string range = "<MEMRANGE INSTANCE='s' BASEVALUE='0xFF'/>";
    const std::string a =
        write("a", "<MODULE INSTANCE='x'/><MODULE INSTANCE='y'><MEMORYMAP>" + range +
                       "<MEMRANGE INSTANCE='s' BASEVALUE='1'/>"
                       "</MEMORYMAP></MODULE>");
    const std::string b = write("b",
                                "<MODULE INSTANCE='y'><MEMORYMAP><MEMRANGE BASEVALUE='0x1' "
                                "INSTANCE='s'/><MEMRANGE INSTANCE='s' BASEVALUE='0xff'/>"
                                "</MEMORYMAP></MODULE><MODULE INSTANCE='x'/>",
                                "TIMESTAMP='now'");
    EXPECT_EQ(0, handoff("--diff " + a + " " + a).status);
    EXPECT_EQ("The documents say the same.\n", handoff("--diff " + a + " " + b).output);
    // Names may fall together where the document can't hold their bytes.
    const std::string twins = folder.write(
        "t", "<LOMSYSTEM><MODULES><MODULE INSTANCE='m'><PORTS><PORT NAME='p'/></PORTS></MODULE>"
             "<MODULE INSTANCE='m'/></MODULES></LOMSYSTEM>");
    EXPECT_EQ(0, handoff("--diff " + twins + " " + twins).status);
    const std::string c = write("c", "<MODULE INSTANCE='y'><MEMORYMAP>" + range +
                                         "</MEMORYMAP></MODULE><MODULE INSTANCE='z' DIR='I'/>");
    const auto result = handoff("--diff " + a + " " + c + " --json");
    EXPECT_EQ(1, result.status);
    EXPECT_THAT(result.output,
                testing::AllOf(HasSubstr("module y / memrange s (2)"),
                               HasSubstr("\"where\": \"module z\""), HasSubstr("only-in-b")));
    EXPECT_EQ(2, handoff("--diff " + a + " " + folder.write("d", "<LOMSYSTEM>")).status);
    EXPECT_EQ(2, handoff("--diff " + a + " " + folder.write("e", "<X/>")).status);
    EXPECT_EQ(2, handoff("--diff " + a).status);
}

TEST(HandoffWord, NeverWritesOverItsInputs) {
    const support::TempDir folder;
    const std::string job = folder.write("job.json", R"({"connectivity": "c.json"})");
    const std::string metadata = folder.write("c.json", R"({"metadata": {}})");
    std::filesystem::create_hard_link(metadata, folder.file("hard"));
    std::filesystem::create_symlink("job.json", folder.file("link"));
    for (const char* output : {"job.json", "c.json", "hard", "link", "./job.json"}) {
        const auto result = handoff(job + " -o " + folder.file(output));
        EXPECT_EQ(2, result.status) << output;
        EXPECT_THAT(result.error, HasSubstr("it is also an input")) << output;
    }
    EXPECT_EQ(R"({"metadata": {}})", support::readFile(metadata));
    EXPECT_EQ(R"({"connectivity": "c.json"})", support::readFile(job));
}

TEST(HandoffWord, TellsWhatIsWrongWithItsFiles) {
    const support::TempDir folder;
    const std::string out = " -o " + folder.file("out");
    const std::string job = folder.write("job.json", R"({"connectivity": "c.json",
 "split_by_cells": false})");
    EXPECT_EQ(2, handoff(job + out).status);
    EXPECT_EQ(folder.file("c.json") +
                  ": error: can't be read: No such file or directory [unreadable-file]\n",
              handoff(job + out).error);
    folder.write("c.json", "{}");
    EXPECT_EQ(1, handoff(job + out).status);
    EXPECT_EQ(3, handoff(job + " -o " + folder.file("none/out")).status);
    EXPECT_EQ(2, handoff(job).status);
    const std::string wrong =
        folder.write("wrong.json", "{\"connectivity\": \"c\",\n \"design\": {\"A\": 5}}");
    EXPECT_THAT(handoff(wrong + out).error,
                StartsWith(wrong + ":2:18: error: expected a text, found a number\n"));
}

} // namespace
