// Port texts, and what stands behind a bit of a port.

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "hardblock/Interface.h"
#include "hardblock/splitPortName.h"

namespace {

using namespace hardblock;

constexpr int kMost = std::numeric_limits<int>::max();
constexpr int kLeast = std::numeric_limits<int>::min();

struct SplitCase {
    std::string text;
    bool ranged;
    std::string name;
    int left;
    int right;
};

TEST(SplitPortName, ReadsEveryRange) {
    const std::vector<SplitCase> cases = {
        {"x[7:4]", true, "x", 7, 4},
        {"x[3]", true, "x", 3, 3},
        {"x", false, "x", -1, -1},
        {"", false, "", -1, -1},
        {"x[]", false, "x", -1, -1},
        {"x[7", false, "x[7", -1, -1},
        {"x7]", false, "x7]", -1, -1},
        {"x]7[3]", false, "x]7", -1, -1},
        {"x[1:2:3]", true, "x", 1, 3},
        {"x[7:]", true, "x", 7, 7},
        {"x[:3]", true, "x", 0, 3},
        {"[:]", true, "", 0, 0},
        {"[::]", true, "", 0, 0},
        {"x[-1:5]", true, "x", 5, 5},
        {"x[5:-1]", true, "x", 5, 5},
        {"x[5:-1:2]", true, "x", 5, 2},
        {"x[-1]", false, "x", -1, -1},
        {"x[-1:-1:-2]", true, "x", -2, -2},
        {"x[ \t+7a:q]y[1]", true, "x", 7, 0},
        {"x[+-7:- 7]", true, "x", 0, 0},
        {"x[[2]]", true, "x", 0, 0},
        {"x[99999999999:-99999999999]", true, "x", kMost, kLeast},
        {"x[2147483648:-2147483649]", true, "x", kMost, kLeast},
        {std::string("x[4\0", 4) + "5]", true, "x", 4, 4},
    };
    for (const auto& c : cases) {
        std::string name;
        int right = -1;
        int left = -1;
        EXPECT_EQ(c.ranged, splitPortName(c.text, name, right, left)) << c.text;
        EXPECT_EQ(c.name, name) << c.text;
        EXPECT_EQ(std::pair(c.left, c.right), std::pair(left, right)) << c.text;
    }
}

struct LookUp {
    const char* port;
    const char* mapped;
    const char* asked;
    const char* answer;
};

TEST(PortMap, AnswersForOneMapping) {
    for (const LookUp& c : std::vector<LookUp>{
             {"A[7:4]", "X[3:0]", "A[6]", "X[2]"},
             {"A[7:4]", "X[3:0]", "A[7:4]", "X[0]"},
             {"A[7:4]", "X[3:0]", "A[3]", ""},
             {"A[7:4]", "X[3:0]", "A[8]", ""},
             {"A[7:4]", "X[3:0]", "A", ""},
             {"A[7:4]", "X[0]", "A[7]", "X[3]"},
             {"A[4:7]", "X[3:0]", "A[5]", ""},
             {"B", "Y", "B", "Y"},
             {"B", "Y", "B[5]", "Y[5]"},
             {"C[2]", "Z", "C[2]", "Z"},
             {"D[3:0]", "Z", "D[2]", "Z[2]"},
             {"D[5:2]", "Z", "D[2]", "Z[0]"},
             {"E", "W[4]", "E", "W[4]"},
             {"E", "W[9:4]", "E[1]", "W[5]"},
             {"F[3:-5]", "V[0]", "F", ""},
             {"E", "W[2147483647]", "E[1]", "W[-2147483648]"},
             {"G[2147483647:-2147483648]", "W[2147483647]", "G[2147483647]", "W[2147483646]"},
             {"A", "X", "a", ""},
             {"A[]", "X[", "A", "X["},
         }) {
        Interface interface("i");
        interface.addPortMap(c.port, c.mapped);
        EXPECT_EQ(c.answer, interface.getPortMapByName(c.asked))
            << c.port << " " << c.mapped << " " << c.asked;
    }
}

TEST(PortMap, TheFirstMappingThatQualifiesAnswers) {
    Interface interface("i");
    interface.addPortMap("F[3:0]", "P[3:0]");
    interface.addPortMap("F[7:4]", "Q[3:0]");
    interface.addPortMap("F[7:-9]", "R");
    interface.addPortMap("F", "S");
    EXPECT_EQ("P[1]", interface.getPortMapByName("F[1]"));
    EXPECT_EQ("Q[1]", interface.getPortMapByName("F[5]"));
    EXPECT_EQ("R[4]", interface.getPortMapByName("F[-5]"));
    EXPECT_EQ("S[8]", interface.getPortMapByName("F[8]"));
    EXPECT_EQ("", interface.getPortMapByName("F")); // the third one holds -1, and has no answer
    EXPECT_EQ(
        1, std::distance(interface.getPortMapStartIterator(), interface.getPortMapEndIterator()));
}

TEST(PortMap, KeepsMappingsAsNumbersAndAsText) {
    Interface interface("i");
    interface.addPortMap("A[7:4]", "X[3:0]");
    interface.addPortMap("A[3]", "Y");
    PortMap& map = *interface.getPortMapStartIterator()->second;
    ASSERT_EQ(2U, map.getMappedPorts().size());
    const auto& [range, mapped] = map.getMappedPorts()[0];
    EXPECT_EQ(std::pair(4, 7), range);
    EXPECT_EQ("X", mapped.m_name);
    EXPECT_EQ(0, mapped.m_rightBit);
    EXPECT_EQ(3, mapped.m_leftBit);
    EXPECT_EQ((PortMap::MappedRawPorts{{"X[3:0]", "A[7:4]"}, {"Y", "A[3:3]"}}),
              map.getMappedRawPorts());
    map.setName("renamed");
    interface.addPortMap("A[9]", "Z");
    EXPECT_EQ("A", map.getName());
    map.getMappedPorts().clear();
    EXPECT_EQ("", interface.getPortMapByName("A[7]"));
}

} // namespace
