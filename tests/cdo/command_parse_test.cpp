// Typed addresses and values.

#include <gtest/gtest.h>

#include <cerrno>

#include "HTCErrors.h"
#include "cdo/HBSCdoCommandParse.h"

namespace {

const std::string kMost64 = "18446744073709551615";
const std::string kMost32 = "4294967295";

/// What a text gives: its number, or the failure without "user input" and the text.
template <class Parse>
std::string outcomeOf(Parse parse, const std::string& text) {
    try {
        return std::to_string(parse(text));
    } catch (const HTCErrors::command_failed& failure) {
        const std::string what = failure.what();
        const std::string start = "user input '" + text + "' is ";
        if (what == "user input is empty")
            return "empty";
        const std::string shown = start.substr(0, start.find('\0')); // all that what() can show
        EXPECT_EQ(shown, what.substr(0, shown.size()));
        return what.size() > start.size() ? what.substr(start.size()) : "cut";
    }
}

std::string address(const std::string& text) {
    return outcomeOf(HBSCdoCommandParse::parseAddress, text);
}

std::string value(const std::string& text) {
    return outcomeOf(HBSCdoCommandParse::parseValue, text);
}

TEST(TypedTexts, GiveOneNumberOrFailureWhereTheWidthHasNoSay) {
    using Case = std::pair<std::string, std::string>;
    for (const auto& [text, outcome] : {Case{"0", "0"},
                                        Case{"10", "10"},
                                        Case{"010", "10"},
                                        Case{"0x10", "16"},
                                        Case{"0X1f", "31"},
                                        Case{"", "empty"},
                                        Case{"ff", "invalid"},
                                        Case{"12abc", "invalid"},
                                        Case{"0x", "invalid"},
                                        Case{"0x-1", "invalid"},
                                        Case{" 0x10", "invalid"},
                                        Case{"+0x10", "invalid"},
                                        Case{"  ", "invalid"},
                                        Case{"12 ", "invalid"},
                                        Case{"%s", "invalid"},
                                        Case{"-1", "invalid"},
                                        Case{"-", "invalid"},
                                        Case{"\t-0", "0"},
                                        Case{"+7", "7"},
                                        Case{" \n+7", "7"},
                                        Case{"+-7", "invalid"},
                                        Case{kMost32, kMost32},
                                        Case{"0xFFFFFFFF", kMost32},
                                        Case{"0000000000000000001", "1"},
                                        Case{"0x10000000000000000", "out of range"},
                                        Case{"18446744073709551616", "out of range"},
                                        Case{" -18446744073709551616", "out of range"},
                                        Case{std::string("1\0", 2), "cut"},
                                        Case{std::string("\0", 1), "cut"}}) {
        EXPECT_EQ(outcome, address(text)) << text;
        EXPECT_EQ(outcome, value(text)) << text;
    }
}

TEST(TypedTexts, OfManyBitsOrDigitsFitAnAddressButNoValue) {
    struct Case {
        std::string text, address, value = "out of range";
    };
    for (const auto& [text, wide, narrow] :
         {Case{"4294967296", "4294967296"}, Case{"0x1FFFFFFFF", "8589934591"},
          Case{"0x000000001", "1"}, Case{"0x00000000000000000001", "1"},
          Case{"0x00000000g", "invalid"}, Case{"0xFFFFFFFFFFFFFFFF", kMost64},
          Case{kMost64, kMost64}, Case{" -1", kMost64, kMost32},
          Case{" -4294967295", "18446744069414584321", "1"},
          Case{" -4294967296", "18446744069414584320"}, Case{" -18446744073709551615", "1"}}) {
        EXPECT_EQ(wide, address(text)) << text;
        EXPECT_EQ(narrow, value(text)) << text;
    }
}

TEST(TypedTexts, AStaleRangeErrorFailsTheNextParseOnly) {
    for (const char* overflowing : {"99999999999999999999x", " -99999999999999999999x"}) {
        errno = 0;
        EXPECT_EQ("invalid", address(overflowing));
        EXPECT_EQ(ERANGE, errno);
        EXPECT_EQ("out of range", address("1"));
        EXPECT_EQ(0, errno);
    }
    EXPECT_EQ("invalid", value("4294967296x"));
    EXPECT_EQ("invalid", value("-1"));
    EXPECT_EQ("out of range", value("0x123456789"));
    EXPECT_EQ(ERANGE, errno) << "the length of the text was the reason";
    EXPECT_EQ("out of range", value("1"));
    errno = EINTR;
    EXPECT_EQ("1", value("1"));
    EXPECT_EQ(EINTR, errno);
}

} // namespace
