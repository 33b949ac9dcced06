// Values of parameters: names looked up among the design's, composites, frequencies.

#include <gtest/gtest.h>

#include "handoff/HWHDesignParams.h"

namespace {

const HWHTextMap kClock{{"K", "{CLK_FREQMHZ 100.5 MODE fast CTRL_ACT_FREQMHZ 33.333}"}};
const HWHTextMap kNested{{"A", "{B_C short B_D 2}"}, {"A_B", "{C long}"}, {"A_X", "one"}};

TEST(Resolving, FollowsTheKeys) {
    struct Case {
        HWHTextMap design;
        const char *name, *value;
        const char* enable; ///< null where an enable parameter of that name isn't decided
    };
    for (const auto& [design, name, value, enable] :
         {Case{kClock, "K_MODE", "fast", "fast"},
          Case{kClock, "K_CTRL_ACT_FREQMHZ", "33333000", "33.333"},
          Case{kClock, "K_CLK_FREQMHZ", "100.5", "100.5"},
          Case{kClock, "K_OTHER", "K_OTHER", nullptr}, Case{kClock, "KMODE", "KMODE", nullptr},
          Case{kClock, "", "", nullptr},
          Case{{{"X_FREQMHZ", "400"}}, "X_FREQMHZ", "400000000", "400"},
          Case{{{"X_FREQMHZ_Y", "5000"}}, "X_FREQMHZ_Y", "705032704", "5000"},
          // The shortest composite gives a value, the longest decides.
          Case{kNested, "A_B_C", "short", "long"}, Case{kNested, "A_B_D", "2", "2"},
          Case{{{"A", "{B 1}"}, {"A_B", "2"}}, "A_B", "2", "2"},
          // One word yields nothing and lets the walk go on.
          Case{{{"A", "{B_C}"}, {"A_B", "C 1"}}, "A_B_C", "1", "1"},
          Case{{{"", "x 1"}}, "_x", "1", "1"}, Case{{{"", "direct"}}, "", "direct", "direct"}}) {
        hwh::DesignParams params(design);
        // Twice, as a composite is parsed at the first look.
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(value, params.resolve(name)) << name;
            const std::string* decided = params.resolveEnable(name);
            EXPECT_STREQ(enable, decided == nullptr ? nullptr : decided->c_str()) << name;
        }
    }
}

TEST(WordLists, DivideAtBlanksAlone) {
    using List = std::pair<const char*, HWHTextMap>;
    for (const auto& [text, pairs] :
         {List{"", {}}, List{"{}", {}}, List{"{ }", {}}, List{"a", {}},
          List{"{a 1}", {{"P_a", "1"}}}, List{"a 1 b", {{"P_a", "1"}}},
          List{" a 1", {{"P_a", "1"}}}, List{"a  1", {{"P_a", "1"}}}, List{"a   1", {{"P_a", ""}}},
          List{"a  ", {{"P_a", ""}}}, List{"   1", {{"P_", "1"}}}, List{"a 1 a 2", {{"P_a", "2"}}},
          List{"{a\t1 {b}", {{"P_a\t1", "{b"}}}, List{"{a {1}}", {{"P_a", "{1}"}}},
          List{"{a 1", {{"P_{a", "1"}}}}) {
        HWHTextMap result{{"left", "over"}};
        hwh::parseTclPairs("P", text, result);
        EXPECT_EQ(pairs, result) << text;
    }
}

TEST(Frequencies, AreTruncatedToHertzInThirtyTwoBits) {
    using Hz = std::pair<const char*, const char*>;
    for (const auto& [megahertz, hertz] :
         {Hz{"100.1", "100100000"}, Hz{"33.3333339", "33333333"}, Hz{"4294.967296", "0"},
          Hz{" \t+1e2", "100000000"}, Hz{".5", "500000"}, Hz{"0x10", "16000000"},
          Hz{"-1", "4293967296"}, Hz{"-0.0000005", "0"}, Hz{"7MHz", "7000000"}, Hz{"x", "0"},
          Hz{"", "0"}, Hz{"nan", "0"}, Hz{"-inf", "0"}, Hz{"1e300", "0"},
          Hz{"9223372036854.8", "0"}, Hz{"1,5", "1000000"}})
        EXPECT_EQ(hertz, hwh::scaledToHz(megahertz)) << megahertz;
}

} // namespace
