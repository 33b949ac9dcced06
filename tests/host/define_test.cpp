// The word define, as a person and a program meet it.

#include "HUTFile.h"
#include "blockmodel/HABM.h"
#include "host/hbs.h"

namespace {

using testing::HasSubstr;

TEST(DefineWord, TellsWhatWasReadDroppedAndWritten) {
    const support::TempDir folder;
    folder.write("hb/data/ports.txt", "port=clk;typ=wire;word\nport=clk\ntype=wire\n");
    folder.write("hb/data/addrblocks.txt", "addrblock=regs;offset=0x1000;size=4K");
    folder.write("hb/data/connections.txt", "type=port;source=/clk;targets=/none/clk");
    const auto result = hbs("define --write " + folder.path().string() + " hb");
    EXPECT_EQ(0, result.status);
    EXPECT_THAT(result.output, HasSubstr("data/ports.txt            3     1        2\n"));
    EXPECT_THAT(result.output, HasSubstr("data/registers.txt        -     -        -\n"));
    EXPECT_THAT(result.output, HasSubstr("  regs  address block   0x1000    4K  register\n"));
    EXPECT_THAT(result.output, HasSubstr("leads nowhere: /port_connection_1"));
    EXPECT_THAT(result.output, HasSubstr("hb (kestrom:hardblock:hb:1.0): 1 port, 0 interfaces"));
    const std::string ports = folder.file("hb/data/ports.txt");
    EXPECT_EQ(ports +
                  ":1:10: warning: unknown key \"typ\", expected one of: direction, left, port, "
                  "right, type; did you mean \"type\"? [unknown-key]\n"
                  "port=clk;typ=wire;word\n         ^\n" +
                  ports +
                  ":1:19: warning: \"word\" isn't used, expected KEY=VALUE [not-a-pair]\n"
                  "port=clk;typ=wire;word\n                  ^\n" +
                  ports +
                  ":3:1: warning: the row isn't used: it has no port [missing-key]\n"
                  "type=wire\n^\n" +
                  ports +
                  ":2:6: warning: the row isn't used: a second port \"clk\" "
                  "[repeated-name]\nport=clk\n     ^\n" +
                  ports +
                  ":1:6: note: first defined here\n"
                  "port=clk;typ=wire;word\n     ^\n",
              result.error);
    EXPECT_NE(nullptr, HABMBlock::readTopBlock(HUTFile(folder.file("hb/hb.bmj"))));
    EXPECT_THAT(hbs("define --json " + folder.path().string() + " hb").output,
                HasSubstr("\"text\": \"the row isn't used: a second port \\\"clk\\\"\",\n"));
}

TEST(DefineWord, WritesNothingWhereATableCantBeReadToItsEnd) {
    const support::TempDir folder;
    folder.write("hb/data/ports.txt", "port=clk\n");
    folder.write("hb/hb.bmj", "old");
    const std::string registers = folder.file("hb/data/registers.txt");
    const auto refuses = [&](const std::string& reason) {
        const auto result = hbs("define --write " + folder.path().string() + " hb");
        EXPECT_EQ(2, result.status) << reason;
        EXPECT_THAT(result.error, HasSubstr("registers.txt: error: can't be read: " + reason));
        EXPECT_EQ("old", support::readFile(folder.file("hb/hb.bmj")));
    };
    std::filesystem::create_symlink("/proc/self/mem", registers);
    refuses("Input/output error");
    std::filesystem::remove(registers);
    std::filesystem::create_directories(registers);
    refuses("it is a folder");
}

TEST(DefineWord, RefusesWhatIsNoHardBlock) {
    const support::TempDir folder;
    folder.write("hb/data/ports.txt", "port=clk");
    std::filesystem::create_directories(folder.file("hb/hb.bmj"));
    folder.write("in/data/ports.txt", "port=clk");
    std::filesystem::create_symlink("data/ports.txt", folder.file("in/in.bmj"));
    const std::string here = folder.path().string();
    for (const auto& [arguments, complaint] : std::vector<std::pair<std::string, std::string>>{
             {here, "NAME is required"},
             {here + " ''", "expected a folder of hard blocks"},
             {here + "/none hb", "expected a folder of hard blocks"},
             {here + " none", "none of the tables is there"},
             {"--write " + here + " hb", "hb.bmj: error: the file can't be written"},
             {"--write " + here + " in",
              "in.bmj: error: can't be written, as it is also an input"}}) {
        const auto result = hbs("define " + arguments);
        EXPECT_EQ(complaint.find("the file can't") == std::string::npos ? 2 : 3, result.status);
        EXPECT_THAT(result.error, HasSubstr(complaint));
    }
}

} // namespace
