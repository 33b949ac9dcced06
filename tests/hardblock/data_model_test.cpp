// Pins, interfaces and hard blocks as plain objects: which of two equals wins, what stays valid.

#include <gtest/gtest.h>

#include <utility>

#include "hardblock/HardBlockData.h"

namespace {

using namespace hardblock;

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

TEST(MappedPort, GivesItsNameAwayWhenMoved) {
    MappedPort port;
    port.m_name = "X";
    port.m_rightBit = 0;
    port.m_leftBit = 3;
    MappedPort moved(std::move(port));
    EXPECT_EQ("", port.m_name); // NOLINT(bugprone-use-after-move): it is what is tested
    port = std::move(moved);
    EXPECT_EQ("", moved.m_name); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ("X", port.m_name);
    EXPECT_EQ(3, port.m_leftBit);
}

} // namespace
