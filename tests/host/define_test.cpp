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
    std::filesystem::create_directories(folder.file("hb/data/parameters.txt"));
    const auto result = hbs("define --write " + folder.path().string() + " hb");
    EXPECT_EQ(0, result.status);
    EXPECT_THAT(result.output, HasSubstr("data/ports.txt            3     1        2\n"));
    EXPECT_THAT(result.output, HasSubstr("data/registers.txt        -     -        -\n"));
    EXPECT_THAT(result.output,
                HasSubstr("hb/data/ports.txt:2: dropped: unusable or repeated name 'clk'\n"));
    EXPECT_THAT(result.output, HasSubstr("hb/data/ports.txt:1: not used: no '=' in 'word'\n"));
    EXPECT_THAT(result.output, HasSubstr("hb/data/parameters.txt: can't be read\n"));
    EXPECT_THAT(result.output, HasSubstr("  regs  address block   0x1000    4K  register\n"));
    EXPECT_THAT(result.output, HasSubstr("leads nowhere: /port_connection_1"));
    EXPECT_THAT(result.output, HasSubstr("hb (kestrom:hardblock:hb:1.0): 1 port, 0 interfaces"));
    EXPECT_EQ("Unknown key 'typ'; the known keys are: direction left port right type\n",
              result.error);
    EXPECT_NE(nullptr, HABMBlock::readTopBlock(HUTFile(folder.file("hb/hb.bmj"))));
    EXPECT_THAT(hbs("define --json " + folder.path().string() + " hb").output,
                HasSubstr("\"reason\": \"unusable or repeated name 'clk'\",\n"));
}

TEST(DefineWord, RefusesWhatIsNoHardBlock) {
    const support::TempDir folder;
    folder.write("hb/data/ports.txt", "port=clk");
    std::filesystem::create_directories(folder.file("hb/hb.bmj"));
    const std::string here = folder.path().string();
    for (const auto& [arguments, complaint] : std::vector<std::pair<std::string, std::string>>{
             {here, "NAME is required"},
             {here + " ''", "expected a folder of hard blocks"},
             {here + "/none hb", "expected a folder of hard blocks"},
             {here + " none", "none of the tables is there"},
             {"--write " + here + " hb", "hb.bmj: the file can't be written"}}) {
        const auto result = hbs("define " + arguments);
        EXPECT_EQ(2, result.status) << arguments;
        EXPECT_THAT(result.error, HasSubstr(complaint));
    }
}

} // namespace
