// References to registers in expressions: what is matched, and what one pass over a changing buffer
// sees.

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <regex>
#include <string>
#include <vector>

#include "addressing/RegisterReferences.h"

namespace {

using hbs_addressing::RegisterReferences;
using Values = std::map<std::string, std::string>;

/// Replaces every reference whose name has a value.
std::string replaced(const std::string& expression, const Values& values) {
    RegisterReferences references(expression);
    while (references.next())
        if (const auto value = values.find(references.name()); value != values.end())
            references.replace(value->second);
    return references.text();
}

TEST(RegisterReferences, AreReplacedAsOnePassSeesThem) {
    const std::string name(40, 'L');
    const Values values{
        {"A", "0x1"}, {"B", "0x2"}, {"W", "0xffffffffffffffff"}, {name, "0x3"}, {"", "0x4"}};
    struct Case {
        const char* about;
        std::string expression, text;
    };
    for (const auto& [about, expression, text] :
         {Case{"blanks in front are skipped", "register_value( \t\nA)", "0x1"},
          Case{"blanks behind belong to the name", "register_value(A )", "register_value(A )"},
          Case{"an empty name is a name", "register_value( )", "0x4"},
          Case{"a reference that moved under the scan isn't seen",
               "register_value(A)==1 && register_value(B)==2", "0x1==1 && register_value(B)==2"},
          Case{"old copies stay for all that moved",
               "register_value(" + name + ")+register_value(B)+register_value(B)", "0x3+0x2+0x2"},
          Case{"a value longer than its reference keeps what follows",
               "register_value(W) == 1 && register_value(A) == 1 ",
               "0xffffffffffffffff == 1 && 0x1 == 1 "},
          Case{"the search ends at the length of the start", "register_value(W)+register_value(A)",
               "0xffffffffffffffff+register_value(A)"}})
        EXPECT_EQ(text, replaced(expression, values)) << about;
}

/// The same pass made with the regular expression itself.
std::string replacedByRegex(std::string buffer, const Values& values) {
    const std::regex reference(R"(register_value\(\s*([^\)]*)\s*\))");
    const auto end = static_cast<std::ptrdiff_t>(buffer.size());
    std::size_t length = buffer.size();
    std::ptrdiff_t position = 0;
    std::smatch match;
    while (std::regex_search(buffer.cbegin() + position, buffer.cbegin() + end, match, reference)) {
        position = match[0].second - buffer.cbegin();
        const std::string whole = match.str();
        const auto value = values.find(match.str(1));
        const std::size_t place = buffer.substr(0, length).find(whole);
        if (value == values.end() || place == std::string::npos)
            continue;
        const std::string text =
            buffer.substr(0, length).replace(place, whole.size(), value->second);
        length = text.size();
        buffer.resize(std::max(buffer.size(), length + 1));
        std::copy_n(text.c_str(), length + 1, buffer.begin());
    }
    return buffer.substr(0, length);
}

TEST(RegisterReferences, MatchWhatTheRegularExpressionMatches) {
    const std::vector<std::string> pieces{
        "register_value(", "register_value", ")", "(", " ", "\n", "A", "B", "+", "register_"};
    const Values values{{"A", "0x1"}, {"B", "0x123456789012345678"}, {"", "7"}, {"AB", "0x5"}};
    std::mt19937 random(7);
    for (int round = 0; round < 5000; ++round) {
        std::string text;
        for (auto count = random() % 24; count > 0; --count)
            text += pieces[random() % pieces.size()];
        ASSERT_EQ(replacedByRegex(text, values), replaced(text, values)) << text;
    }
}

TEST(RegisterReferences, SurviveVeryLongNames) {
    const std::string name(1000000, 'n');
    EXPECT_EQ("0x1+1", replaced("register_value(" + name + ")+1", {{name, "0x1"}}));
    std::string many;
    for (int i = 0; i < 100000; ++i)
        many += "register_value(";
    EXPECT_EQ(many, replaced(many, {{"A", "1"}}));
}

} // namespace
