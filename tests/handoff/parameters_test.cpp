// Values of parameters: names looked up among the design's, composites, frequencies.

#include <gtest/gtest.h>

#include "handoff/HWHDesignParams.h"

namespace {

struct Resolution {
    HWHTextMap design;
    const char* name;
    const char* value;
    const char* enable; ///< null where an enable parameter of that name isn't decided

    friend void PrintTo(const Resolution& r, std::ostream* out) {
        *out << r.name << " in " << testing::PrintToString(r.design);
    }
};

class Resolving : public testing::TestWithParam<Resolution> {};

TEST_P(Resolving, FollowsTheKeys) {
    const auto& [design, name, value, enable] = GetParam();
    hwh::DesignParams params(design);
    // Twice, as a composite is parsed at the first look.
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(value, params.resolve(name));
        const std::string* decided = params.resolveEnable(name);
        EXPECT_STREQ(enable, decided == nullptr ? nullptr : decided->c_str());
    }
}

const HWHTextMap kClock{{"K", "{CLK_FREQMHZ 100.5 MODE fast CTRL_ACT_FREQMHZ 33.333}"}};
const HWHTextMap kNested{{"A", "{B_C short B_D 2}"}, {"A_B", "{C long}"}, {"A_X", "one"}};

INSTANTIATE_TEST_SUITE_P(
    Names, Resolving,
    testing::Values(Resolution{kClock, "K_MODE", "fast", "fast"},
                    Resolution{kClock, "K_CTRL_ACT_FREQMHZ", "33333000", "33.333"},
                    Resolution{kClock, "K_CLK_FREQMHZ", "100.5", "100.5"},
                    Resolution{kClock, "K_OTHER", "K_OTHER", nullptr},
                    Resolution{kClock, "KMODE", "KMODE", nullptr},
                    Resolution{kClock, "", "", nullptr},
                    Resolution{{{"X_FREQMHZ", "400"}}, "X_FREQMHZ", "400000000", "400"},
                    Resolution{{{"X_FREQMHZ_Y", "5000"}}, "X_FREQMHZ_Y", "705032704", "5000"},
                    // The shortest composite gives a value, the longest decides.
                    Resolution{kNested, "A_B_C", "short", "long"},
                    Resolution{kNested, "A_B_D", "2", "2"},
                    Resolution{{{"A", "{B 1}"}, {"A_B", "2"}}, "A_B", "2", "2"},
                    // One word yields nothing and lets the walk go on.
                    Resolution{{{"A", "{B_C}"}, {"A_B", "C 1"}}, "A_B_C", "1", "1"},
                    Resolution{{{"", "x 1"}}, "_x", "1", "1"},
                    Resolution{{{"", "direct"}}, "", "direct", "direct"}));

struct WordList {
    const char* text;
    HWHTextMap pairs;

    friend void PrintTo(const WordList& list, std::ostream* out) {
        *out << '"' << list.text << '"';
    }
};

class WordLists : public testing::TestWithParam<WordList> {};

TEST_P(WordLists, DivideAtBlanksAlone) {
    HWHTextMap result{{"left", "over"}};
    hwh::parseTclPairs("P", GetParam().text, result);
    EXPECT_EQ(GetParam().pairs, result);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, WordLists,
    testing::Values(WordList{"", {}}, WordList{"{}", {}}, WordList{"{ }", {}}, WordList{"a", {}},
                    WordList{"{a 1}", {{"P_a", "1"}}}, WordList{"a 1 b", {{"P_a", "1"}}},
                    WordList{" a 1", {{"P_a", "1"}}}, WordList{"a  1", {{"P_a", "1"}}},
                    WordList{"a   1", {{"P_a", ""}}}, WordList{"a  ", {{"P_a", ""}}},
                    WordList{"   1", {{"P_", "1"}}}, WordList{"a 1 a 2", {{"P_a", "2"}}},
                    WordList{"{a\t1 {b}", {{"P_a\t1", "{b"}}},
                    WordList{"{a {1}}", {{"P_a", "{1}"}}}, WordList{"{a 1", {{"P_{a", "1"}}}));

TEST(Frequencies, AreTruncatedToHertzInThirtyTwoBits) {
    const std::pair<const char*, const char*> cases[] = {{"100.1", "100100000"},
                                                         {"33.3333339", "33333333"},
                                                         {"4294.967296", "0"},
                                                         {" \t+1e2", "100000000"},
                                                         {".5", "500000"},
                                                         {"0x10", "16000000"},
                                                         {"-1", "4293967296"},
                                                         {"-0.0000005", "0"},
                                                         {"7MHz", "7000000"},
                                                         {"x", "0"},
                                                         {"", "0"},
                                                         {"nan", "0"},
                                                         {"inf", "0"},
                                                         {"-inf", "0"},
                                                         {"1e300", "0"},
                                                         {"9223372036854.8", "0"},
                                                         {"1,5", "1000000"}};
    for (const auto& [megahertz, hertz] : cases)
        EXPECT_EQ(hertz, hwh::scaledToHz(megahertz)) << megahertz;
}

} // namespace
