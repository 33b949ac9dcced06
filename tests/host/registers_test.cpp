// hbs registers: what it lists, and what it says about files that weren't read whole.

#include "host/hbs.h"

namespace {

support::RunResult runOn(const std::string& content, const std::string& options = "") {
    return hbsOn("registers", "r.xml", content, options);
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

TEST(Program, FailsWhenItsOutputCantBeWritten) {
    const auto result = support::run(HBS_PROGRAM " --version >/dev/full");
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("hbs: the output can't be written\n", result.error);
}

} // namespace
