// Values of parameters: names looked up among the design's, composites, frequencies.

#include <gtest/gtest.h>
#include <malloc.h>

#include <optional>
#include <string_view>

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
            const auto resolved = params.resolve(name);
            const std::string text(resolved.text);
            EXPECT_EQ(value, resolved.isInMegahertz ? hwh::scaledToHz(text) : text) << name;
            EXPECT_EQ(enable == nullptr ? std::nullopt : std::optional<std::string_view>(enable),
                      params.resolveEnable(name))
                << name;
        }
    }
}

TEST(Resolving, TakesMemoryForTheTextsAlone) {
    const std::string key(4000, 'k');
    std::string words;
    for (int i = 0; i < 20000; ++i)
        words += "w" + std::to_string(i) + " 1 ";
    const HWHTextMap design{{key, words}};
    const std::size_t before = mallinfo2().uordblks;
    hwh::DesignParams params(design);
    EXPECT_EQ("1", params.resolve(key + "_w19999").text);
    EXPECT_LT(mallinfo2().uordblks, before + 8'000'000);
}

TEST(WordLists, DivideAtBlanksAlone) {
    using List = std::pair<const char*, HWHTextMap>;
    for (const auto& [text, pairs] :
         {List{"", {}}, List{"{}", {}}, List{"{ }", {}}, List{"a", {}}, List{"{a 1}", {{"a", "1"}}},
          List{"a 1 b", {{"a", "1"}}}, List{" a 1", {{"a", "1"}}}, List{"a  1", {{"a", "1"}}},
          List{"a   1", {{"a", ""}}}, List{"a  ", {{"a", ""}}}, List{"   1", {{"", "1"}}},
          List{"a 1 a 2", {{"a", "2"}}}, List{"{a\t1 {b}", {{"a\t1", "{b"}}},
          List{"{a {1}}", {{"a", "{1}"}}}, List{"{a 1", {{"{a", "1"}}}}) {
        const hwh::CompositeWords words(text);
        EXPECT_EQ(pairs.size(), words.size()) << text;
        for (const auto& [key, value] : pairs)
            EXPECT_EQ(std::string_view(value), words.find(key)) << text;
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
