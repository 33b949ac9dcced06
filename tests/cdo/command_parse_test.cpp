// Typed addresses and values.

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <random>

#include "HTCErrors.h"
#include "cdo/HBSCdoCommandParse.h"
#include "support/support.h"

namespace {

constexpr std::uint64_t kMost64 = UINT64_MAX;
constexpr std::uint64_t kMost32 = UINT32_MAX;

/// What a text gives: a number, or one of the failures.
struct Outcome {
    enum class Kind { Number, Empty, Invalid, OutOfRange };

    std::uint64_t number = 0;
    Kind kind = Kind::Number;

    Outcome(std::uint64_t n) : number(n) {}
    Outcome(Kind k) : kind(k) {}
    friend bool operator==(const Outcome&, const Outcome&) = default;
    friend void PrintTo(const Outcome& outcome, std::ostream* out) {
        *out << "kind " << static_cast<int>(outcome.kind) << ", number " << outcome.number;
    }
};

constexpr auto kInvalid = Outcome::Kind::Invalid;
constexpr auto kOutOfRange = Outcome::Kind::OutOfRange;

template <class Parse>
Outcome outcomeOf(Parse parse, const std::string& text) {
    try {
        return std::uint64_t{parse(text)};
    } catch (const HTCErrors::command_failed& failure) {
        const std::string what = failure.what();
        if (what == "user input is empty")
            return Outcome::Kind::Empty;
        if (what == "user input '" + text + "' is invalid")
            return kInvalid;
        EXPECT_EQ("user input '" + text + "' is out of range", what);
        return kOutOfRange;
    }
}

struct TypedText {
    const char* text;
    Outcome address;
    Outcome value;

    friend void PrintTo(const TypedText& typed, std::ostream* out) {
        *out << testing::PrintToString(typed.text);
    }
};

class TypedTexts : public testing::TestWithParam<TypedText> {};

TEST_P(TypedTexts, GiveTheirNumberOrFailure) {
    const std::string text = GetParam().text;
    errno = 0;
    EXPECT_EQ(GetParam().address, outcomeOf(HBSCdoCommandParse::parseAddress, text));
    errno = 0;
    EXPECT_EQ(GetParam().value, outcomeOf(HBSCdoCommandParse::parseValue, text));
}

INSTANTIATE_TEST_SUITE_P(
    Bases, TypedTexts,
    testing::Values(TypedText{"0", 0, 0}, TypedText{"10", 10, 10}, TypedText{"010", 10, 10},
                    TypedText{"0x10", 16, 16}, TypedText{"0X1f", 31, 31},
                    TypedText{"", Outcome::Kind::Empty, Outcome::Kind::Empty},
                    TypedText{"ff", kInvalid, kInvalid}, TypedText{"12abc", kInvalid, kInvalid},
                    TypedText{"0x", kInvalid, kInvalid}, TypedText{"0x-1", kInvalid, kInvalid},
                    TypedText{" 0x10", kInvalid, kInvalid}, TypedText{"+0x10", kInvalid, kInvalid},
                    TypedText{"  ", kInvalid, kInvalid}, TypedText{"12 ", kInvalid, kInvalid},
                    TypedText{"%s", kInvalid, kInvalid}));

INSTANTIATE_TEST_SUITE_P(
    Signs, TypedTexts,
    testing::Values(TypedText{"-1", kInvalid, kInvalid}, TypedText{"-", kInvalid, kInvalid},
                    TypedText{" -1", kMost64, kMost32}, TypedText{"\t-0", 0, 0},
                    TypedText{"+7", 7, 7}, TypedText{" \n+7", 7, 7},
                    TypedText{"+-7", kInvalid, kInvalid},
                    TypedText{" -4294967295", kMost64 - 4294967294, 1},
                    TypedText{" -4294967296", kMost64 - 4294967295, kOutOfRange},
                    TypedText{" -18446744073709551615", 1, kOutOfRange},
                    TypedText{" -18446744073709551616", kOutOfRange, kOutOfRange}));

INSTANTIATE_TEST_SUITE_P(Ranges, TypedTexts,
                         testing::Values(TypedText{"4294967295", kMost32, kMost32},
                                         TypedText{"4294967296", kMost32 + 1, kOutOfRange},
                                         TypedText{"0xFFFFFFFF", kMost32, kMost32},
                                         TypedText{"0x1FFFFFFFF", 0x1FFFFFFFF, kOutOfRange},
                                         TypedText{"0x000000001", 1, kOutOfRange},
                                         TypedText{"0x00000000g", kInvalid, kOutOfRange},
                                         TypedText{"0000000000000000001", 1, 1},
                                         TypedText{"0x00000000000000000001", 1, kOutOfRange},
                                         TypedText{"0xFFFFFFFFFFFFFFFF", kMost64, kOutOfRange},
                                         TypedText{"0x10000000000000000", kOutOfRange, kOutOfRange},
                                         TypedText{"18446744073709551615", kMost64, kOutOfRange},
                                         TypedText{"18446744073709551616", kOutOfRange,
                                                   kOutOfRange},
                                         TypedText{"99999999999999999999x", kInvalid, kInvalid}));

TEST(TypedNumbers, AStaleRangeErrorFailsTheNextParseOnly) {
    for (const char* overflowing : {"99999999999999999999x", " -99999999999999999999x"}) {
        errno = 0;
        EXPECT_EQ(Outcome(kInvalid), outcomeOf(HBSCdoCommandParse::parseAddress, overflowing));
        EXPECT_EQ(ERANGE, errno);
        EXPECT_EQ(Outcome(kOutOfRange), outcomeOf(HBSCdoCommandParse::parseAddress, "1"));
        EXPECT_EQ(0, errno);
        EXPECT_EQ(Outcome(1), outcomeOf(HBSCdoCommandParse::parseAddress, "1"));
    }
    EXPECT_EQ(Outcome(kInvalid), outcomeOf(HBSCdoCommandParse::parseValue, "4294967296x"));
    EXPECT_EQ(ERANGE, errno);
    EXPECT_EQ(Outcome(kInvalid), outcomeOf(HBSCdoCommandParse::parseValue, "-1"));
    EXPECT_EQ(Outcome(kOutOfRange), outcomeOf(HBSCdoCommandParse::parseValue, "0x123456789"));
    EXPECT_EQ(ERANGE, errno) << "the length of the text was the reason";
    EXPECT_EQ(Outcome(kOutOfRange), outcomeOf(HBSCdoCommandParse::parseValue, "1"));
    errno = EINTR;
    EXPECT_EQ(Outcome(1), outcomeOf(HBSCdoCommandParse::parseValue, "1"));
    EXPECT_EQ(EINTR, errno);
}

TEST(TypedNumbers, ANulEndsTheConversionBeforeTheText) {
    for (const auto parse : {+[] {
                                 (void)HBSCdoCommandParse::parseAddress({"1\0", 2});
                             },
                             +[] {
                                 (void)HBSCdoCommandParse::parseValue({"1\0", 2});
                             }})
        support::expectThrows<HTCErrors::command_failed>("user input '1", parse);
    EXPECT_THROW((void)HBSCdoCommandParse::parseValue({"\0", 1}), HTCErrors::command_failed);
}

/// Up to 24 digits in either base, with a sign or garbage here and there.
std::string randomText(std::mt19937& random) {
    static constexpr const char* kStarts[] = {"", "", " ", " -", "+", "0x", "0X"};
    std::string text = kStarts[random() % std::size(kStarts)];
    const std::size_t digits = 1 + random() % 24;
    for (std::size_t i = 0; i < digits; ++i)
        text += "0123456789abcdefABCDEFx "[random() % 100 == 0 ? random() % 24 : random() % 10];
    return text;
}

Outcome standardOutcome(const std::string& text) {
    const bool prefixed = text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
    errno = 0;
    char* end = nullptr;
    const std::uint64_t number = std::strtoull(text.c_str(), &end, prefixed ? 16 : 10);
    if (*end != '\0')
        return kInvalid;
    return errno == ERANGE ? Outcome(kOutOfRange) : Outcome(number);
}

TEST(TypedNumbers, AgreeWithTheStandardConversionOnRandomTexts) {
    std::mt19937 random(7);
    for (int i = 0; i < 100000; ++i) {
        const std::string text = randomText(random);
        const Outcome expected = standardOutcome(text);
        errno = 0;
        EXPECT_EQ(expected, outcomeOf(HBSCdoCommandParse::parseAddress, text)) << text;
        // Where the narrow type, a sign or the length has no say, both parsers are one.
        errno = 0;
        if (text.size() < 10 && text[1] != '-') {
            EXPECT_EQ(expected, outcomeOf(HBSCdoCommandParse::parseValue, text)) << text;
        }
    }
}

} // namespace
