// References to registers in expressions: what is matched, and what one pass over a changing buffer
// sees.

#include <gtest/gtest.h>

#include <map>
#include <string>

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
          Case{"a name reaches to the first closing bracket", "register_value(register_value(A))",
               "register_value(register_value(A))"},
          Case{"what looks alike isn't one", "register_value (A) register_value)(A)+register_(A)",
               "register_value (A) register_value)(A)+register_(A)"},
          Case{"an open end isn't one", "register_value(A)+register_value(B",
               "0x1+register_value(B"},
          Case{"a reference that moved under the scan isn't seen",
               "register_value(A)==1 && register_value(B)==2", "0x1==1 && register_value(B)==2"},
          Case{"nor is one that moved to the last character before the scan",
               "register_value(A)             register_value(B)",
               "0x1             register_value(B)"},
          Case{"one that moved to where the scan goes on is seen",
               "register_value(A)              register_value(B)", "0x1              0x2"},
          Case{"old copies stay for all that moved",
               "register_value(" + name + ")+register_value(B)+register_value(B)", "0x3+0x2+0x2"},
          Case{"a value longer than its reference keeps what follows",
               "register_value(W) == 1 && register_value(A) == 1 ",
               "0xffffffffffffffff == 1 && 0x1 == 1 "},
          Case{"the search ends at the length of the start", "register_value(W)+register_value(A)",
               "0xffffffffffffffff+register_value(A)"}})
        EXPECT_EQ(text, replaced(expression, values)) << about;
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
