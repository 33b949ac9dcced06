// Address values, apertures and paths.

#include <gtest/gtest.h>

#include "blockmodel/HABM.h"

namespace {

struct ValueCase {
    const char* text;
    const char* hex; ///< null for a text that is no value
    const char* abbreviated = nullptr;
};

TEST(AddrValue, ReadsEveryAcceptedTextAndNoOther) {
    const std::vector<ValueCase> cases{
        {"0", "0x0", "0x0"},
        {"0x0", "0x0", "0x0"},
        {"0XfF", "0xff", "0xff"},
        {"4096", "0x1000", "4K"},
        {"4k", "0x1000", "4K"},
        {"6144", "0x1800", "6K"},
        {"0x1801", "0x1801", "0x1801"},
        {"16M", "0x1000000", "16M"},
        {"2G", "0x80000000", "2G"},
        {"3T", "0x30000000000", "3T"},
        {"18446744073709551615", "0xffffffffffffffff", "0xffffffffffffffff"},
        {"18446744073709551616", "0x10000000000000000", "16777216T"},
        {"0x0000000000000000000000000000000000000001", "0x1", "0x1"},
        {"00000000000000000000000000000000000000000000017", "0x11", "0x11"},
        {"0x7fffffffffffffffffffffffffffffff", "0x7fffffffffffffffffffffffffffffff", nullptr},
        {"0x80000000000000000000000000000000", nullptr},
        {"0x100000000000000000000000000000000", nullptr},
        {"170141183460469231731687303715884105728", nullptr},
        {"19342813113834066795298816T", "0x10000000000000000000000000000000",
         "19342813113834066795298816T"},
        {"999999999999999999999999999999999T", nullptr},
    };
    for (const ValueCase& c : cases) {
        const HABMAddrValue value{std::string(c.text)};
        ASSERT_EQ(c.hex != nullptr, value.isValid()) << c.text;
        EXPECT_EQ(c.hex != nullptr ? c.hex : "0x0", value.getHexStringValue(0)) << c.text;
        if (c.abbreviated != nullptr) {
            EXPECT_EQ(c.abbreviated, value.getAbrvStringValue());
            EXPECT_EQ(value, HABMAddrValue(value.getAbrvStringValue()));
        }
    }
    for (const char* bad : {"", " 1", "1 ", "0x", "0xg", "-1", "+1", "1_000", "K", "0x4K", "4KB",
                            "1.5", "0x 1", "4K4", "x10", "1e", "2E", "1P"})
        EXPECT_FALSE(HABMAddrValue(std::string(bad)).isValid()) << bad;
}

TEST(AddrValue, RoundsUpToPowersOfTwo) {
    struct Case {
        const char* value;
        const char* rounded;
        unsigned log2;
    };
    for (const Case& c : std::vector<Case>{{"0", "0x1", 0},
                                           {"1", "0x1", 0},
                                           {"0x10", "0x10", 4},
                                           {"0x1800", "0x2000", 13},
                                           {"0xffffffffffffffff", "0x10000000000000000", 64},
                                           {"0x10000000000000001", "0x20000000000000000", 65}}) {
        const HABMAddrValue rounded = HABMAddrValue(std::string(c.value)).roundUpPow2();
        EXPECT_EQ(c.rounded, rounded.getHexStringValue(0)) << c.value;
        EXPECT_EQ(c.log2, rounded.log2()) << c.value;
    }
    EXPECT_FALSE(HABMAddrValue("0x7fffffffffffffffffffffffffffffff").roundUpPow2().isValid());
    EXPECT_FALSE(HABMAddrValue().roundUpPow2().isValid());
    EXPECT_EQ(0U, HABMAddrValue().log2());
}

TEST(AddrValue, CalculatesOrdersAndPrintsTheInvalidAsLowest) {
    const HABMAddrValue none;
    const HABMAddrValue one(1);
    const HABMAddrValue most("0x7fffffffffffffffffffffffffffffff");
    EXPECT_TRUE(none < HABMAddrValue(0));
    EXPECT_FALSE(none < HABMAddrValue("?"));
    EXPECT_TRUE(HABMAddrValue("0xffffffffffffffff") < HABMAddrValue("0x10000000000000000"));
    EXPECT_FALSE(most.plus(one).isValid());
    EXPECT_FALSE(HABMAddrValue(0).minus(one).isValid());
    EXPECT_FALSE(none.plus(one).isValid());
    EXPECT_EQ("0xffffffffffffffff",
              HABMAddrValue("0x10000000000000000").minus(one).getHexStringValue(0));
    EXPECT_EQ("0x000000AB", HABMAddrValue("171").getPrettyHexStringValue(32));
    EXPECT_EQ("0x0000000000000000000000000000000a", HABMAddrValue(10).getHexStringValue(999));
    EXPECT_EQ("0x0", none.getPrettyHexStringValue(0));
    EXPECT_EQ("0x0", none.getAbrvStringValue());
}

TEST(AddrAperture, EndsAtItsLastAddress) {
    const std::vector<std::pair<const char*, const char*>> cases{
        {"", "0x0"},
        {"0x10:1", "0x10"},
        {"0x200:0x100", "0x2ff"},
        {"0x40:0", "0x40"},
        {"0:16777216T", "0xffffffffffffffff"}};
    for (const auto& [text, last] : cases)
        EXPECT_EQ(last, HABMAddrAperture(text).getHighAddress().getHexStringValue(0)) << text;
    for (const char* text : {"4K", "x:1", "1:x", ":", "0x7fffffffffffffffffffffffffffffff:2"})
        EXPECT_FALSE(HABMAddrAperture(text).getHighAddress().isValid()) << text;
}

TEST(AddrAperture, CompressJoinsWhatTouchesOrOverlaps) {
    const auto compressed = [](std::initializer_list<const char*> texts) {
        std::set<HABMAddrAperture> apertures;
        for (const char* text : texts)
            apertures.emplace(text);
        std::string result;
        for (const auto& a : HABMAddrApertureUtils::compress(apertures, false, false))
            result += a.getStart().getHexStringValue(0) + "+" + a.getSize().getHexStringValue(0) +
                      (a.getSize().isValid() ? " " : "? ");
        return result;
    };
    EXPECT_EQ("0x0+0x30 ", compressed({"0x20:0x10", "0:0x10", "0x10:0x10"}));
    EXPECT_EQ("0x0+0x10 0x11+0x1 ", compressed({"0:0x10", "0x11:1"}));
    EXPECT_EQ("0x0+0x100 ", compressed({"0:0x100", "0x10:0x10", "0x20:0"}));
    EXPECT_EQ("0x0+0x0 0x8+0x8 ", compressed({"", "8:8"}));
    EXPECT_EQ("0x0+0x0? 0x0+0x10 ", compressed({"x:x", "0:0x10"}));
    EXPECT_EQ("", compressed({}));
    // At the highest address that a value holds.
    const char* const half = "0x40000000000000000000000000000000";
    const char* const low = "0:0x40000000000000000000000000000000";
    const char* const high =
        "0x40000000000000000000000000000000:0x40000000000000000000000000000000";
    EXPECT_EQ(std::string(half) + "+" + half + " ",
              compressed({high, "0x50000000000000000000000000000000:1",
                          "0x7fffffffffffffffffffffffffffffff:1"}));
    EXPECT_EQ("0x10+0x7ffffffffffffffffffffffffffffff0 ",
              compressed({"0x10:0x40000000000000000000000000000000", high}));
    EXPECT_EQ("0x0+" + std::string(half) + " " + half + "+" + half + " ",
              compressed({low, high})); // the size of both is one too many
}

} // namespace
