// hbs cdo: what a script's lines report, and how the program ends.

#include "host/hbs.h"

namespace {

support::RunResult runScript(const std::string& content, const std::string& options = "") {
    return hbsOn("cdo", "s.cdo", content, options);
}

TEST(CdoCommand, ReportsEachFailureWithItsLineAndGoesOn) {
    const auto result =
        runScript("create a\n\n open a m # opens\nclose a \"n o\"\r\nvalue \" -1\"\n"
                  "create a\naddress 99999999999999999999x\naddress 1\n");
    EXPECT_EQ(1, result.status);
    EXPECT_EQ("line  command                        result\n"
              "----  -----------------------------  "
              "------------------------------------------------------------\n"
              "   1  create a                       ok\n"
              "   3  open a m                       ok\n"
              "   4  close a \"n o\"                  "
              "failed: Marker 'n o' not matched with last opened marker 'm'\n"
              "   5  value \" -1\"                    4294967295 (0xffffffff)\n"
              "   6  create a                       "
              "failed: sequence 'a' exists already: delete it first\n"
              "   7  address 99999999999999999999x  "
              "failed: user input '99999999999999999999x' is invalid\n"
              "   8  address 1                      1 (0x1)\n"
              "7 commands, 3 failed\n",
              result.output);
}

TEST(CdoCommand, GivesJsonToPrograms) {
    const auto result = runScript("address 0x10\ndelete a\n", "--json");
    EXPECT_EQ(1, result.status);
    for (const char* part : {"\"line\": 2", "\"number\": 16", "\"ok\": false",
                             "\"failure\": \"sequence 'a' does not exist\""})
        EXPECT_NE(std::string::npos, result.output.find(part)) << part << result.output;
}

TEST(CdoCommand, RefusesAScriptItCannotRead) {
    const std::pair<const char*, const char*> complaints[] = {
        {"create a\nopn a m\n",
         "s.cdo:2:1: error: unknown command \"opn\", expected one of: create, "
         "open, close, check, address, value, delete; did you mean "
         "\"open\"?\nopn a m\n^\n"},
        {"open a\n", "s.cdo:1:1: error: a command with the wrong number of words, expected open "
                     "SEQUENCE MARKER\nopen a\n^\n"},
        {"value \"1\n", "s.cdo:1:7: error: a quoted text has no end, expected \"\nvalue \"1\n"
                        "      ^\n"},
    };
    for (const auto& [content, complaint] : complaints) {
        const auto result = runScript(content);
        EXPECT_EQ(2, result.status);
        EXPECT_EQ("", result.output);
        EXPECT_EQ(complaint, result.error);
    }
    EXPECT_EQ(2, hbs("cdo /").status);
    EXPECT_EQ(0, runScript("").status);
}

} // namespace
