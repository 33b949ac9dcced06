// Expressions of component descriptions: what they give, and what can't be computed.

#include "workbench/ipxact/Expression.h"

#include <gtest/gtest.h>

namespace {

using namespace tq::ipxact;

Value lookup(std::string_view name) {
    if (name == "width")
        return Value::ofInteger(32);
    if (name == "mode")
        return Value::ofText("on");
    throw ExpressionError("there is no parameter \"" + std::string(name) + "\"");
}

std::string result(const std::string& text, ExpressionLanguage language) {
    try {
        return evaluate(text, language, lookup).text();
    } catch (const ExpressionError& error) {
        return std::string("! ") + error.what();
    }
}

struct Case {
    const char* text;
    const char* result;
};

TEST(Expression, ComputesSystemVerilog) {
    const Case cases[] = {
        {"4 * (2 ** 30)", "4294967296"},
        {"'h4_0", "64"},
        {"8'hFF + 1", "256"},
        {"-0x400", "-1024"},
        {"'b1010 | 'o17", "15"},
        {"~8'h0F", "240"},
        {"1 + 2 * 3 - 8 / 4 % 3", "5"},
        {"7 / -2", "-3"},
        {"1 << 3 >> 1", "4"},
        {"width > 16 && !0 ? width / 8 : nothing", "4"},
        {"width < 16 ? 1 / 0 : (nothing) ? 1 : 2", "! there is no parameter \"nothing\""},
        {"$clog2(width + 1)", "6"},
        {"('h6) / $pow(2,1) % $pow(2,1)", "1"},
        {"$ceil(10.0 / 4)", "3"},
        {"{4'h1, {2{4'hA}}}", "426"},
        {"'{10, 20, 30}[1]", "20"},
        {"mode == \"on\"", "1"},
        {"4K", "4096"},
        {"-2 ** 2", "4"},
        {"^3'b101", "0"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(one.result, result(one.text, ExpressionLanguage::SystemVerilog)) << one.text;
}

TEST(Expression, ComputesXPath) {
    const Case cases[] = {
        {"id('width') * 2", "64"},
        {"spirit:pow(2, id('width')) - 1", "4294967295"},
        {"id('width') div 8 mod 3", "1"},
        {"spirit:decode('0x10') + spirit:decode('4K')", "4112"},
        {"ceiling(spirit:log(2, 1024) div 3)", "4"},
        {"id('mode') = 'on' and not(false())", "1"},
        {"width", "! unexpected \"width\""},
    };
    for (const Case& one : cases)
        EXPECT_EQ(one.result, result(one.text, ExpressionLanguage::XPath)) << one.text;
}

TEST(Expression, SaysWhatCantBeComputed) {
    const Case cases[] = {
        {"", "! a value is missing"},
        {"1 +", "! a value is missing"},
        {"1 / 0", "! a division by zero"},
        {"2 ** 127", "! a number has more than 127 bits"},
        {"1 << 200", "! a number has more than 127 bits"},
        {"4'b10x1", "! \"10x1\" isn't a number of base 2"},
        {"$random()", "! unknown function \"$random\""},
        {"(1", "! ')' was expected at the end"},
        {"1 2", "! unexpected \"2\""},
        {"'{1}[1]", "! index 1 lies beyond the array"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(one.result, result(one.text, ExpressionLanguage::SystemVerilog)) << one.text;
}

TEST(Expression, EndsHostileTextsEarly) {
    const std::string deep = std::string(100'000, '(') + "1" + std::string(100'000, ')');
    EXPECT_EQ("! an expression is nested too deeply",
              result(deep, ExpressionLanguage::SystemVerilog));
    EXPECT_EQ('!', result(std::string(100'000, '-') + "1", ExpressionLanguage::SystemVerilog)[0]);
    std::string text = "\"aaaaaaaaaaaaaaaa\"";
    for (int i = 0; i < 6; ++i)
        text = "{128{" + text + "}}";
    EXPECT_EQ("! a text is too long", result(text, ExpressionLanguage::SystemVerilog));
    std::string sum = "1";
    for (int i = 0; i < 100'000; ++i)
        sum += "+1";
    EXPECT_EQ("100001", result(sum, ExpressionLanguage::SystemVerilog));
}

} // namespace
