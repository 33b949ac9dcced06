// The word hardblock of the program, run as a person runs it.

#include "host/hbs.h"

namespace {

using testing::AllOf;
using testing::HasSubstr;

/// One hard block, with two unknown keys.
constexpr const char* kMetadata = R"({"ps": {
 "pins": {"CLK": {"direction": "in", "dir": 1}, "D": {"type": "vector", "size_left": 7}},
 "interfaces": {"AXI": {"access_point": {"module": "noc", "ports": {},
   "parameters": {"W": 64}, "port_maps": {"x[3:0]": "A[7:4]"}}},
  "I:2": {"access_point": {"port_maps": {"p[7:6]": "B[1:0]", "q": "B[3]", "r": "B[2]"}}}}}})";

TEST(HardblockCommand, ListsABlockAndPointsOutUnknownKeys) {
    const support::TempDir folder;
    const std::string file = folder.write("f.json", kMetadata);
    const auto result = hbs("hardblock " + file + " ps");
    EXPECT_EQ(0, result.status);
    EXPECT_THAT(result.output, HasSubstr("D    INOUT      vector  [7:]\n"));
    EXPECT_THAT(result.output, HasSubstr("AXI        noc     W=64\n"));
    EXPECT_THAT(result.output, HasSubstr("AXI        A[7:4]  x[3:0]\n"));
    EXPECT_THAT(result.error,
                AllOf(HasSubstr(file + ":3:59: warning: unknown key \"ports\", expected one of: "
                                       "module, parameters, port_maps"),
                      HasSubstr(file + ":2:38: warning: unknown key \"dir\", expected one of: "
                                       "type, direction, default_val")));
    EXPECT_THAT(hbs("hardblock " + file + " ps --json").output, HasSubstr(R"("mapped": "x[3:0]")"));
}

TEST(HardblockCommand, AnswersWithAStatus) {
    const support::TempDir folder;
    const std::string file = folder.write("f.json", kMetadata);
    (void)folder.write("f.json.bad", "{\n \"ps\": }");
    const std::string packed = support::gzip(kMetadata);
    (void)folder.write("f.json.cut", packed.substr(0, packed.size() / 2));
    struct Case {
        const char* arguments;
        int status;
        const char *output, *error;
    };
    for (const auto& [arguments, status, output, error] :
         {Case{" ps --port 'AXI:A[6]'", 0, "x[2]\n", ""},
          Case{" ps --port 'AXI:A'", 1, "", "no pin is mapped to AXI:A of ps\n"},
          Case{" ps --port 'GP0:A'", 1, "", "ps has no interface \"GP0\"\n"},
          Case{" ps --port A", 2, "", "--port A: expected INTERFACE:PORT\n"},
          Case{" ps --port 'AXI:A[7:4]'", 0, "x[3:0]\n", ""},
          Case{" ps --port 'AXI:A[4:5]'", 0, "x[0:1]\n", ""},
          Case{" ps --port 'AXI:A[8:6]' --json", 1, "\"A[7:6]\"",
               "no pin is mapped to AXI:A[8] of"},
          Case{" ps --port 'I:2:B[3:0]'", 0, "B[3]    q\nB[2]    r\nB[1:0]  p[7:6]\n", ""},
          Case{" ps --port 'AXI:A[99999:0]'", 2, "", "more than 65536 bits"},
          Case{" ps --tree", 0, "  AXI (noc)\n    A\n      [7:4] -> x[3:0]\n", ""},
          Case{" ps --tree --json", 0, "\"mapped\": \"x[3:0]\"", ""},
          Case{"", 0, "ps             2           2\n", ""},
          Case{" --json", 0, "\"interfaces\": 2", ""},
          Case{" cpu", 1, "", "no hard block \"cpu\" in "},
          Case{".bad ps", 2, "", "f.json.bad:2:8: error: Invalid value."},
          Case{".none ps", 2, "", "f.json.none: error: can't be read: No such file or directory\n"},
          Case{".cut ps", 2, "",
               "f.json.cut: error: can't be read: what it is stored in is damaged"}}) {
        const auto result = hbs("hardblock " + file + arguments);
        EXPECT_EQ(status, result.status) << arguments;
        EXPECT_THAT(result.output, HasSubstr(output)) << arguments;
        EXPECT_THAT(result.error, HasSubstr(error)) << arguments;
    }
}

} // namespace
