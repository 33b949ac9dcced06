// hbs registers: what it lists of a description, and what the narrow reader sees with --strict.

#include "host/hbs.h"

namespace {

support::RunResult runOn(const std::string& content, const std::string& options = "") {
    return hbsOn("registers", "r.xml", content, "--strict " + options);
}

const char* const kWhole =
    "<component xmlns='http://www.accellera.org/XMLSchema/IPXACT/1685-2014'><vendor>v</vendor>"
    "<library>l</library><name>c</name><version>1</version><memoryMaps><memoryMap><name>m</name>"
    "<addressBlock><name>b</name><baseAddress>0x40</baseAddress><range>64</range>"
    "<width>32</width>\n<register><name>ctrl</name><displayName>Control</displayName>"
    "<addressOffset>4</addressOffset><size>32</size><field><name>go</name><bitOffset>3</bitOffset>"
    "<resets><reset><value>1</value></reset></resets><bitWidth>1</bitWidth></field></register>\n"
    "<register><name>lost</name><addressOffset>gone</addressOffset><size>32</size></register>"
    "</addressBlock></memoryMap></memoryMaps></component>";

TEST(RegistersCommand, ListsTheRegistersOfTheStandard) {
    const auto result = hbsOn("registers", "r.xml", kWhole, "--fields");
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("address  width  access      reset  register  remark\n"
              "-------  -----  ----------  -----  --------  ------\n"
              "   0x44     32  read-write    0x8  m/b/ctrl\n"
              "           [3]  read-write    0x1    go\n"
              "      ?     32  read-write         m/b/lost\n",
              result.output);
    EXPECT_NE(std::string::npos, result.error.find("r.xml:3:28: warning: <addressOffset> \"gone\""))
        << result.error;
    EXPECT_NE(std::string::npos, result.error.find("IP-XACT 2014: 1 memory map, 1 address block, "
                                                   "2 registers, 1 field\n"));
}

TEST(RegistersCommand, GivesEachRegisterAsJson) {
    const auto result = hbsOn("registers", "r.xml", kWhole, "--json --match ctrl");
    EXPECT_EQ(0, result.status);
    for (const char* const part : {"\"path\": \"m/b/ctrl\"", "\"address\": \"0x44\"",
                                   "\"width\": 32", "\"access\": \"read-write\"",
                                   "\"reset\": \"0x8\"", "\"bit_offset\": 3", "\"bit_width\": 1"})
        EXPECT_NE(std::string::npos, result.output.find(part)) << part;
    EXPECT_NE(std::string::npos, hbsOn("registers", "r.xml", kWhole, "--json --match lost")
                                     .output.find("\"address\": null"));
}

TEST(RegistersCommand, CountsWhatLiesBeyondTheNarrowReader) {
    const auto result = runOn(kWhole);
    EXPECT_EQ(1, result.status);
    EXPECT_NE(std::string::npos, result.error.find("hbs: 2 registers lie beyond\n"));
}

std::string block(const std::string& registers) {
    return "<spirit:component><spirit:memoryMaps><spirit:memoryMap><spirit:addressBlock>\n" +
           registers + "</spirit:addressBlock></spirit:memoryMap></spirit:memoryMaps>" +
           "</spirit:component>\n";
}

const char* const kTwo = "<spirit:register><spirit:name> in </spirit:name>"
                         "<spirit:addressOffset>4</spirit:addressOffset></spirit:register>\n"
                         "<spirit:register><spirit:name>out</spirit:name>\n"
                         "<spirit:alias/>"
                         "<spirit:addressOffset>8</spirit:addressOffset></spirit:register>\n";

TEST(RegistersCommand, ListsRegistersAndWhereTheReaderStopped) {
    const auto result = runOn(block(kTwo) + "<!-- -->");
    EXPECT_EQ(0, result.status);
    EXPECT_EQ("name  offset  description\n"
              "----  ------  -----------\n"
              "in    0X4\n"
              "out\n",
              result.output);
    EXPECT_EQ("r.xml:4:1: warning: the reader stopped at <spirit:alias>, which it doesn't know in "
              "<spirit:register>, expected spirit:name, spirit:description, spirit:addressOffset, "
              "spirit:access, spirit:field, spirit:size, spirit:reset, spirit:dim [reader-stop]\n"
              "<spirit:alias/><spirit:addressOffset>8</spirit:addressOffset></spirit:register>\n"
              "^\n",
              result.error);
}

TEST(RegistersCommand, ListsNamesAsTheLibraryReadsThem) {
    const auto one = [](const std::string& name) {
        return block("<spirit:register><spirit:name>" + name + "</spirit:name></spirit:register>");
    };
    EXPECT_NE(std::string::npos,
              runOn("<!DOCTYPE a [<!ENTITY e 'TX'>]>" + one("&e;_CTRL")).output.find("TX_CTRL"));
    const std::string euro = "<?xml version='1.0' encoding='windows-1252'?>" + one("a\x80");
    EXPECT_NE(std::string::npos, runOn(euro, "--json").output.find("\"name\": \"a"));
}

TEST(RegistersCommand, MatchesNamesAndGivesJson) {
    const auto result = runOn(block(kTwo), "--json --match 'i?'");
    EXPECT_NE(std::string::npos, result.output.find("\"offset\": \"0X4\""));
    EXPECT_EQ(std::string::npos, result.output.find("\"out\""));
    EXPECT_NE(std::string::npos, result.output.find("\"line\": 4,\n      \"column\": 1,"));
    EXPECT_EQ(1, runOn(block(kTwo), "--match none").status);
}

TEST(RegistersCommand, SaysWhyThereIsNothing) {
    const auto foreign = runOn("<?xml version='1.0'?>\n<ipxact:component/>");
    EXPECT_EQ(1, foreign.status);
    EXPECT_EQ("r.xml:2:1: warning: the reader stopped at <ipxact:component>, which it doesn't know "
              "in the document, expected spirit:component [reader-stop]\n"
              "<ipxact:component/>\n^\n"
              "r.xml: warning: no register found [no-register]\n",
              foreign.error);
    const auto broken = runOn("<a>");
    EXPECT_EQ(2, broken.status);
    EXPECT_EQ(0U, broken.error.find("r.xml:1:4: error: ")) << broken.error;
    const auto dim = runOn(block("<spirit:register><spirit:name>a</spirit:name>"
                                 "<spirit:dim>x</spirit:dim></spirit:register>"));
    EXPECT_EQ(2, dim.status);
    EXPECT_EQ(0U, dim.error.find("r.xml:2:46: error: a spirit:dim is no number: "
                                 "invalid stoi argument, expected a decimal number [bad-number]\n"))
        << dim.error;
}

TEST(Program, GivesErrorsAsJsonWhereItWasAskedForJson) {
    for (const std::string word : {"clocks", "cdo", "registers", "hardblock"}) {
        const auto result = support::run(HBS_PROGRAM " " + word + " none.json --json" +
                                         (word == "hardblock" ? " name" : ""));
        EXPECT_EQ(2, result.status);
        EXPECT_THAT(result.output, testing::StartsWith("{\n  \"diagnostics\": [\n"));
        EXPECT_THAT(result.output,
                    testing::HasSubstr("\"text\": \"can't be read: No such file or directory\""));
        EXPECT_THAT(result.error, testing::StartsWith("none.json: error: can't be read: "));
    }
}

} // namespace
