// Pins, interfaces and hard blocks as plain objects: who owns what, and which of two equals wins.

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "hardblock/HardBlockData.h"

namespace {

using namespace hardblock;

TEST(HardBlockData, GivesTheStoredInterfaceForAnEqualName) {
    HardBlockData block("b");
    Interface* first = block.createInterface("i");
    first->addParameter("p", "1");
    for (int i = 0; i < 1000; ++i)
        block.createInterface(std::to_string(i));
    EXPECT_EQ(first, block.createInterface("i"));
    EXPECT_EQ("1", first->getParameterByName("p"));
    first->setName("renamed");
    EXPECT_EQ(first, block.getInterfaceByName("i"));
    EXPECT_EQ(nullptr, block.getInterfaceByName("renamed"));
    EXPECT_EQ(1001,
              std::distance(block.getInterfaceStartIterator(), block.getInterfaceEndIterator()));
}

TEST(HardBlockData, KeepsPinsOfOneNameInOrder) {
    HardBlockData block("b");
    const Pin* first = block.createPin("p");
    block.createPin("a");
    const Pin* again = block.createPin("p");
    std::vector<const Pin*> pins;
    for (auto it = block.getPinsStartIterator(); it != block.getPinsEndIterator(); ++it)
        pins.push_back(it->get());
    ASSERT_EQ(3U, pins.size());
    EXPECT_EQ(first, pins[0]);
    EXPECT_EQ(again, pins[2]);
    EXPECT_EQ(Type::Wire, first->getType());
    EXPECT_EQ(-1, first->getLeftSize());
    EXPECT_EQ(-1, first->getRightSize());
}

TEST(Pin, NamesItsDirection) {
    Pin pin("p");
    EXPECT_EQ("INOUT", pin.getDirectionAsStr());
    for (const auto& [value, text] :
         {std::pair(0, "IN"), {1, "INOUT"}, {2, "OUT"}, {3, "INOUT"}, {-1, "INOUT"}}) {
        pin.setDirection(static_cast<Direction>(value));
        EXPECT_EQ(text, pin.getDirectionAsStr()) << value;
    }
}

TEST(Interface, KeepsTheFirstValueOfAParameter) {
    Interface interface("i");
    interface.addParameter("p", "1");
    interface.addParameter("p", "2");
    EXPECT_EQ("1", interface.getParameterByName("p"));
    EXPECT_EQ("", interface.getParameterByName("q"));
    EXPECT_EQ(1, std::distance(interface.getParameterStartIterator(),
                               interface.getParameterEndIterator()));
}

TEST(MappedPort, GivesItsNameAwayWhenMoved) {
    MappedPort port;
    port.m_name = "X";
    port.m_rightBit = 0;
    port.m_leftBit = 3;
    const MappedPort copy(port);
    MappedPort moved(std::move(port));
    // NOLINTNEXTLINE(bugprone-use-after-move): what the move leaves is what is tested
    EXPECT_EQ("", port.m_name);
    EXPECT_EQ(3, port.m_leftBit);
    port = std::move(moved);
    EXPECT_EQ("", moved.m_name); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(copy.m_name, port.m_name);
    EXPECT_EQ(copy.m_leftBit, port.m_leftBit);
}

} // namespace
