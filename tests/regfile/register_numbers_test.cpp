// Addresses of registers, as the files write them and as they come out.

#include <gtest/gtest.h>

#include "regfile/RegisterNumbers.h"
#include "support/support.h"

namespace {

using namespace hbs::regfile;

TEST(RegisterNumbers, EveryTextReadsAsHexadecimal) {
    using Case = std::pair<const char*, std::uint64_t>;
    for (const auto& [text, value] :
         {Case{"", 0}, Case{"1024", 0x1024}, Case{"0x1aF", 0x1AF}, Case{"0X1aF", 0x1AF},
          Case{"12x34", 0x34}, Case{"0x1X2", 2}, Case{"12x", 0},
          Case{"FFFFFFFFFFFFFFFF", UINT64_MAX}, Case{"0x123456789ABCDEF012", 0x3456789ABCDEF012},
          Case{"1 2", UINT64_MAX}, Case{"12h", UINT64_MAX}, Case{"-1", UINT64_MAX},
          Case{"\xC3\xA4", UINT64_MAX}})
        EXPECT_EQ(value, hexValue(text)) << text;
}

TEST(RegisterNumbers, OffsetsAreAddedAndCut) {
    struct Case {
        const char *offset, *base, *result;
    };
    for (const auto& [offset, base, result] :
         {Case{"10", "F1000000", "0XF1000010"}, Case{"0x10", "0xF1000000", "0XF1000010"},
          Case{"0x4", "0x100000000", "0X4"}, Case{"0x0", "0x0", "0X"}, Case{"", "", "0X"},
          Case{"0x100 + 4", "", "0X100"}, Case{"0x1 00 + bad + 3", "", "0X100"},
          Case{"+4", "0x10", "0X10"}, Case{"1 0", "0x1000", "0XFFF"},
          Case{"bad!", "0", "0XFFFFFFFF"}})
        EXPECT_EQ(result, absoluteOffset(offset, base)) << offset;
}

TEST(RegisterNumbers, DimsReadAsTheStandardLibraryDoes) {
    EXPECT_EQ(12, dimValue("12abc"));
    EXPECT_EQ(-2147483648, dimValue("-2147483648"));
    for (const char* text : {"", "x", "+-1"})
        support::expectThrows<std::invalid_argument>("invalid stoi argument",
                                                     [&] { (void)dimValue(text); });
    for (const char* text : {"2147483648", "99999999999999999999"})
        support::expectThrows<std::out_of_range>("stoi argument out of range",
                                                 [&] { (void)dimValue(text); });
}

} // namespace
