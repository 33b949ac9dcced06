// Port texts, the pin behind a bit of a port, and interfaces found by their name.

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "hardblock/HardBlockData.h"
#include "hardblock/SplitPortName.h"

namespace {

using namespace hardblock;

TEST(SplitPortName, ReadsEveryRange) {
    using Case = std::pair<std::string, std::string>;
    for (const auto& [text, expected] :
         {Case{"x[7:4]", "x 7:4 true"}, Case{"x[3]", "x 3:3 true"}, Case{"x", "x -1:-1 false"},
          Case{"x[]", "x -1:-1 false"}, Case{"x[7", "x[7 -1:-1 false"},
          Case{"x]7[3]", "x]7 -1:-1 false"}, Case{"x[1:2:3]", "x 1:3 true"},
          Case{"x[7:]", "x 7:7 true"}, Case{"[:]", " 0:0 true"}, Case{"x[-1:5]", "x 5:5 true"},
          Case{"x[5:-1]", "x 5:5 true"}, Case{"x[-1]", "x -1:-1 false"},
          Case{"x[ \t+7a:q]y[1]", "x 7:0 true"}, Case{"x[+-7:- 7]", "x 0:0 true"},
          Case{"x[2147483648:-2147483649]", "x 2147483647:-2147483648 true"},
          Case{std::string("x[4\0", 4) + "5]", "x 4:4 true"}}) {
        std::string name;
        int right = -1;
        int left = -1;
        const char* ranged = splitPortName(text, name, right, left) ? " true" : " false";
        EXPECT_EQ(expected,
                  name + " " + std::to_string(left) + ":" + std::to_string(right) + ranged)
            << text;
    }
}

TEST(PortMap, AnswersForOneMapping) {
    struct Case {
        const char *port, *mapped, *asked, *answer;
    };
    for (const auto& [port, mapped, asked, answer] :
         {Case{"A[7:4]", "X[3:0]", "A[6]", "X[2]"}, Case{"A[7:4]", "X[3:0]", "A[7:4]", "X[0]"},
          Case{"A[7:4]", "X[3:0]", "A[3]", ""}, Case{"A[7:4]", "X[3:0]", "A", ""},
          Case{"A[4:7]", "X[3:0]", "A[5]", ""}, Case{"B", "Y", "B", "Y"},
          Case{"B", "Y", "B[5]", "Y[5]"}, Case{"C[2]", "Z", "C[2]", "Z"},
          Case{"D[3:0]", "Z", "D[2]", "Z[2]"}, Case{"E", "W[4]", "E", "W[4]"},
          Case{"E", "W[9:4]", "E[1]", "W[5]"}, Case{"F[3:-5]", "V[0]", "F", ""},
          Case{"E", "W[2147483647]", "E[1]", "W[-2147483648]"},
          Case{"G[2147483647:-2147483648]", "W[2147483647]", "G[2147483647]", "W[2147483646]"}}) {
        Interface interface("i");
        interface.addPortMap(port, mapped);
        EXPECT_EQ(answer, interface.getPortMapByName(asked)) << port << " " << asked;
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
}

TEST(HardBlockData, GivesTheStoredInterfaceForAnEqualName) {
    HardBlockData block("b");
    Interface* first = block.createInterface("i");
    for (int i = 0; i < 1000; ++i)
        block.createInterface(std::to_string(i));
    first->setName("renamed");
    EXPECT_EQ(first, block.createInterface("i"));
    EXPECT_EQ(first, block.getInterfaceByName("i"));
    EXPECT_EQ(nullptr, block.getInterfaceByName("renamed"));
}

} // namespace
