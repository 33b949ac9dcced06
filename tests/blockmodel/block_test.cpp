// The tree: what its names and paths lead to while objects come and go.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "blockmodel/block_generator.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A processing system: a cluster with a core, whose interface leads out of the cluster and on to
/// the edge, and from the edge to a memory.
class System : public testing::Test {
protected:
    System() {
        HABMBlock* const cluster = top->createSubBlock("cluster", "cluster", false);
        cluster->createInterface("M", false);
        HABMBlock* const core = cluster->createSubBlock("core", "core", false);
        core->createInterface("M", false)->setInterfaceMode(HABMInterface::InterfaceMode::Master);
        top->createInterface("M", false);
        top->createInterface("S", false);
        top->createSubBlock("ddr", "ddr", false)->createInterface("S", false);
        connect(*cluster, "core/M", "/cluster/M");
        connect(*top, "/cluster/M", "/M");
        connect(*top, "/S", "/ddr/S");
    }
    ~System() override { EXPECT_THAT(HABMBlockCheck::run(*top).faults, IsEmpty()); }

    static HABMInterfaceConnection& connect(HABMBlock& owner, const char* source,
                                            const char* target) {
        HABMInterfaceConnection& connection = *owner.createInterfaceConnection("", false);
        connection.setSourcePath(source);
        connection.setTargetPath(target);
        return connection;
    }
    static std::vector<std::string> paths(const std::vector<HABMInterface*>& interfaces) {
        std::vector<std::string> paths;
        for (const HABMInterface* i : interfaces)
            paths.push_back(i->getParent()->getInstancePath() + "/" + i->getInterfaceName());
        return paths;
    }

    std::unique_ptr<HABMBlock> top = HABMBlock::createTopBlock("ps");
};

TEST_F(System, InterfacesAreReachedAcrossTheHierarchy) {
    EXPECT_THAT(paths(top->getInterface("M")->getSourceInterfaces()),
                ElementsAre("/cluster/M", "/cluster/core/M"));
    EXPECT_THAT(paths(top->getInterface("S")->getTargetInterfaces()), ElementsAre("/ddr/S"));
    EXPECT_THAT(top->getInterface("M")->getTargetInterfaces(), IsEmpty());
    connect(*top, "/M", "/cluster/core/M"); // a ring
    EXPECT_THAT(paths(top->getInterface("M")->getTargetInterfaces()),
                ElementsAre("/cluster/core/M", "/cluster/M"));
}

TEST_F(System, ConnectionsFollowTheirPathsWhileObjectsComeAndGo) {
    EXPECT_TRUE(top->getInterface("M")->hasConnections());
    EXPECT_THAT(top->findInterfaceConnections("", true),
                testing::Each(
                    testing::Truly([](const HABMInterfaceConnection* c) { return c->isValid(); })));
    const auto cluster = top->removeSubBlock("cluster");
    const auto left = top->findInterfaceConnections("", true);
    ASSERT_EQ(2U, left.size());
    EXPECT_FALSE(left[0]->isValid());
    EXPECT_TRUE(top->getInterface("M")->hasConnections());
    EXPECT_TRUE(left[0]->getParent()->removeInterfaceConnection(left[0]->getName()));
    EXPECT_FALSE(top->removeInterfaceConnection("interface_connection_9"));
    EXPECT_FALSE(top->getInterface("M")->hasConnections());

    // What was taken out is a design of its own.
    EXPECT_EQ("", cluster->getInstancePath());
    EXPECT_EQ("", cluster->getInstanceName());
    EXPECT_TRUE(cluster->getInterface("M")->hasConnections());
    EXPECT_EQ("/M", cluster->getInterfaceConnections()[0]->getTargetPath());
    EXPECT_TRUE(cluster->getInterfaceConnections()[0]->isValid());
}

TEST_F(System, MergeKeepsTheBlockAndMovesThePathsBelowIt) {
    (void)top->getInterface("M")->hasConnections();
    const auto child = HABMBlock::cloneTopBlock(*top);
    child->createAddrSpace("space")->createAddrSegment("segment");
    child->createMemoryMap("map")->createAddrBlock("block");
    HABMAddrAssign& assign = *child->createAddrAssign("assign");
    assign.setSourceAddrBlock(child->getMemoryMap("map")->getAddrBlock("block"));
    assign.setTargetAddrSegment(child->getAddrSpace("space")->getAddrSegment("segment"));

    HABMBlock* const ddr = top->getSubBlock("ddr");
    EXPECT_FALSE(HABMBlock::mergeTopBlock(*top, "/ddr", *child, false));
    EXPECT_FALSE(HABMBlock::mergeTopBlock(*top, "/none", *child, true));
    EXPECT_FALSE(HABMBlock::mergeTopBlock(*top, "", *child, true));
    EXPECT_FALSE(HABMBlock::mergeTopBlock(*top, "/ddr", *top, true));
    ASSERT_TRUE(HABMBlock::mergeTopBlock(*top, "/ddr", *child, true));
    EXPECT_EQ(ddr, top->getSubBlock("ddr"));
    EXPECT_THAT(paths(ddr->getInterface("M")->getSourceInterfaces()),
                ElementsAre("/ddr/cluster/M", "/ddr/cluster/core/M"));
    EXPECT_THAT(paths(top->getInterface("S")->getTargetInterfaces()),
                ElementsAre("/ddr/S", "/ddr/ddr/S"));
    const HABMAddrAssign& moved = *ddr->getAddrAssign("assign");
    EXPECT_EQ("/ddr/map/block", moved.getSourceAddrBlock()->getPath());
    EXPECT_EQ("/ddr/space/segment", moved.getTargetAddrSegment()->getPath());
    EXPECT_THAT(HABMBlockCheck::run(*top).dangling, IsEmpty());
}

TEST(Block, MergeFillsTheTreeUpToItsLastLevelAndNoFurther) {
    const auto chain = [](int levels) {
        auto top = HABMBlock::createTopBlock("top");
        HABMBlock* deepest = top.get();
        while (--levels > 0)
            deepest = deepest->createSubBlock("b", "m", false);
        return top;
    };
    constexpr int kLevelOfPlace = 3;
    const auto top = chain(kLevelOfPlace);
    const auto child = chain(HABMBlock::kMostLevels - kLevelOfPlace + 1);
    EXPECT_FALSE(HABMBlock::mergeTopBlock(
        *top, "/b/b", *chain(HABMBlock::kMostLevels - kLevelOfPlace + 2), true));
    EXPECT_TRUE(HABMBlock::mergeTopBlock(*top, "/b/b", *child, true));
}

TEST(Block, StubsAreListedAndDefinitionsThatContainThemselvesKnown) {
    const auto top = HABMBlock::createTopBlock("soc");
    top->setModuleVlnv("v:l:soc:1");
    HABMBlock& cpu = *top->createSubBlock("cpu", "cpu", false);
    HABMBlock& ring = *cpu.createSubBlock("ring", "soc", false);
    HABMBlock& late = *top->createSubBlock("late", "uart", false);
    for (HABMBlock* stub : {&ring, &late})
        stub->setBlockStub(true);
    ring.setModuleVlnv("v:l:soc:1");
    EXPECT_THAT(top->findStubs(), ElementsAre(&ring, &late));
    EXPECT_THAT(cpu.findStubs(), ElementsAre(&ring));
    EXPECT_TRUE(ring.isRecursive());
    EXPECT_FALSE(late.isRecursive());
    cpu.setModuleVlnv("");
    EXPECT_FALSE(cpu.isRecursive());
}

TEST(Path, LeadsToTheObjectOfItsKindFromAnywhereInTheTree) {
    const auto top = HABMBlock::createTopBlock("top");
    HABMBlock& sub = *top->createSubBlock("a", "m", false);
    HABMPort* const port = sub.createPort("x", false);
    HABMInterface* const interface = sub.createInterface("x", false);
    HABMAddrBlock* const block = sub.createMemoryMap("x")->createAddrBlock("y");
    HABMAddrSegment* const segment = sub.createAddrSpace("x")->createAddrSegment("y");
    for (const HABMBlock* from : {&std::as_const(*top), &std::as_const(sub)}) {
        EXPECT_EQ(top.get(), HABMPath::findBlock(*from, ""));
        EXPECT_EQ(&sub, HABMPath::findBlock(*from, "/a"));
        EXPECT_EQ(port, HABMPath::findPort(*from, "/a/x"));
        EXPECT_EQ(interface, HABMPath::findInterface(*from, "/a/x"));
        EXPECT_EQ(block, HABMPath::findAddrBlock(*from, "/a/x/y"));
        EXPECT_EQ(segment, HABMPath::findAddrSegment(*from, "/a/x/y"));
    }
    for (const char* none : {"/", "a", "a/x", "/a/", "/a/x/", "//x", "/a/y", "/a/x/y/z"}) {
        EXPECT_EQ(nullptr, HABMPath::findBlock(*top, none)) << none;
        EXPECT_EQ(nullptr, HABMPath::findInterface(*top, none)) << none;
        EXPECT_EQ(nullptr, HABMPath::findAddrBlock(*top, none)) << none;
    }
}

TEST(Block, PortConnectionsNeedTheirSourceAndOneTarget) {
    const auto top = HABMBlock::createTopBlock("top");
    HABMPort& clock = *top->createPort("clk", false);
    HABMPort& lonely = *top->createPort("lonely", false);
    top->createSubBlock("a", "m", false)->createPort("clk", false);
    HABMPortConnection& wire = *top->createPortConnection("", false);
    EXPECT_TRUE(wire.setSourcePath("/clk"));
    EXPECT_FALSE(wire.setTargetPaths({"/a/clk", "/b/clk"}));
    EXPECT_TRUE(wire.isValid(true));
    EXPECT_FALSE(wire.isValid(false));
    EXPECT_TRUE(clock.hasConnections());
    EXPECT_FALSE(lonely.hasConnections());
    top->removeSubBlock("a");
    EXPECT_FALSE(wire.isValid(true));
    EXPECT_THAT(HABMBlockCheck::run(*top).dangling,
                ElementsAre("/port_connection_1: there is no port '/a/clk'",
                            "/port_connection_1: there is no port '/b/clk'"));
    top->createSubBlock("a", "m", false)->setBlockStub(true);
    EXPECT_THAT(HABMBlockCheck::run(*top).dangling, testing::SizeIs(1));
    EXPECT_TRUE(top->removePortConnection("port_connection_1"));
    EXPECT_FALSE(clock.hasConnections());
}

TEST(Block, RegistersAreFoundByPathPatternAndBareName) {
    const auto top = HABMBlock::createTopBlock("top");
    HABMBlock& uart = *top->createSubBlock("uart", "uart", false);
    HABMBlock& other = *top->createSubBlock("uart2", "uart", false);
    for (HABMBlock* block : {&uart, &other})
        for (const char* name : {"first", "second"})
            block->createMemoryMap(name)->createAddrBlock("regs")->createRegister("CTRL");
    HABMRegister* const ctrl = uart.findRegister("first/regs/CTRL", true);
    ASSERT_NE(nullptr, ctrl);
    EXPECT_EQ("/uart/first/regs/CTRL", ctrl->getPath());
    EXPECT_EQ(ctrl, uart.findRegister("CTRL", true));
    EXPECT_EQ(ctrl, top->findRegister("uart/first/regs/CTRL", true));
    EXPECT_EQ(ctrl, uart.findRegister(HABMPath::get_relative_path(uart, ctrl->getPath()), true));
    EXPECT_EQ("", HABMPath::get_relative_path(uart, "/uart2/first/regs/CTRL"));
    for (const char* none : {"", "/", "ctrl", "regs/CTRL", "first/regs/", "//CTRL", "a/b/c/d/e"})
        EXPECT_EQ(nullptr, uart.findRegister(none, true)) << none;
    EXPECT_EQ(nullptr, top->findRegister("CTRL", true));
    EXPECT_EQ(nullptr, uart.findRegister("NEW", true));
    HABMRegister* const fresh = ctrl->getParent()->createRegister("NEW");
    EXPECT_EQ(fresh, uart.findRegister("NEW", true));
    // The first in the order of the maps, not of making.
    for (const char* owner : {"second", "first"}) {
        const HABMRegister* const both =
            uart.getMemoryMap(owner)->getAddrBlock("regs")->createRegister("BOTH");
        EXPECT_EQ(both, uart.findRegister("BOTH", true));
    }

    EXPECT_EQ(5U, uart.findRegisters(uart.getInstancePath() + "*", false).size());
    EXPECT_EQ(0U, top->findRegisters("*", false).size());
    EXPECT_EQ(7U, top->findRegisters("", true).size());
    EXPECT_THAT(top->findRegisters("/uart?/*/CTRL", true),
                ElementsAre(other.findRegister("first/regs/CTRL", true),
                            other.findRegister("second/regs/CTRL", true)));
}

TEST(Block, ValueOfARegisterIsGivenOrItsReset) {
    const auto top = HABMBlock::createTopBlock("top");
    HABMRegister& r = *top->createMemoryMap("m")->createAddrBlock("b")->createRegister("r");
    EXPECT_FALSE(r.getValue().isValid());
    r.setReset(HABMAddrValue(5));
    EXPECT_EQ(HABMAddrValue(5), r.getValue());
    r.setValue(HABMAddrValue(7));
    EXPECT_EQ(HABMAddrValue(7), r.getValue());
    EXPECT_FALSE(HABMAddrValue() < top->getMemoryMap("m")->getRange() &&
                 top->getMemoryMap("m")->getRange() < HABMAddrValue(0));
}

TEST(Block, NamesThatCouldNotBeFoundAgainAreRefused) {
    const auto top = HABMBlock::createTopBlock("top");
    for (const char* name : {"", "a/b", "/"}) {
        EXPECT_EQ(nullptr, top->createSubBlock(name, "m", false)) << name;
        EXPECT_EQ(nullptr, top->createPort(name, false));
        EXPECT_EQ(nullptr, top->createInterface(name, false));
        EXPECT_EQ(nullptr, top->createMemoryMap(name));
        EXPECT_EQ(nullptr, top->createAddrSpace(name));
        EXPECT_EQ(nullptr, top->createAddrAssign(name));
    }
    HABMPort* const port = top->createPort("p", false);
    EXPECT_EQ(nullptr, top->createPort("p", false));
    EXPECT_EQ(port, top->createPort("p", true));
    EXPECT_NE(nullptr, top->createPort("P", false));
    EXPECT_EQ(nullptr, top->getSubBlock(""));
    EXPECT_EQ(nullptr, top->setParameter("", "1", true));
    top->setParameter("a", "1", true);
    top->setParameter("b", "2", true);
    EXPECT_EQ(nullptr, top->setParameter("a", "3", false));
    EXPECT_EQ("3", top->setParameter("a", "3", true)->getValue());
    EXPECT_EQ("a", top->getGenerics()[0]->getName());
}

TEST(Block, SnapshotsAndOrderSurviveRemovals) {
    const auto top = HABMBlock::createTopBlock("top");
    constexpr int kCount = 1000;
    for (int i = 0; i < kCount; ++i)
        top->createInterface("i" + std::to_string(i), false);
    const auto snapshot = top->getInterfaces();
    for (const HABMInterface* interface : snapshot)
        if (std::stoi(interface->getInterfaceName().substr(1)) % 7 != 0) {
            EXPECT_TRUE(top->removeInterface(std::string(interface->getInterfaceName())));
        }
    const auto left = top->getInterfaces();
    ASSERT_EQ(143U, left.size());
    for (std::size_t i = 0; i < left.size(); ++i)
        EXPECT_EQ(left[i], top->getInterface("i" + std::to_string(7 * i)));
    EXPECT_NE(nullptr, top->createInterface("i1", false));
    EXPECT_EQ("i1", top->getInterfaces().back()->getInterfaceName());
    EXPECT_THAT(HABMBlockCheck::run(*top).faults, IsEmpty());
}

TEST(AddrAssign, EndsAreNullOnceTheyAreGoneAndFilteredBySpace) {
    const auto top = HABMBlock::createTopBlock("top");
    const auto elsewhere = HABMBlock::createTopBlock("elsewhere");
    HABMAddrSpace* const near = top->createAddrSpace("s");
    HABMAddrSpace* const deep = top->createSubBlock("a", "m", false)->createAddrSpace("s");
    HABMAddrAssign* const first = top->createAddrAssign("first");
    HABMAddrAssign* const second = top->createAddrAssign("second");
    first->setTargetAddrSegment(deep->createAddrSegment("g"));
    second->setTargetAddrSegment(near->createAddrSegment("g"));
    first->setSourceAddrBlock(elsewhere->createMemoryMap("m")->createAddrBlock("b"));
    EXPECT_EQ(nullptr, first->getSourceAddrBlock());
    const auto all = top->findAddrAssigns("", true);
    EXPECT_THAT(HABMAddrAssign::filterByAddrSpace(all, deep), ElementsAre(first));
    EXPECT_THAT(HABMAddrAssign::filterByAddrSpace(all, near), ElementsAre(second));
    EXPECT_THAT(HABMAddrAssign::filterByAddrSpace(all, nullptr), IsEmpty());
    top->removeSubBlock("a");
    EXPECT_EQ(nullptr, first->getTargetAddrSegment());
    EXPECT_EQ(2, static_cast<int>(HABMAddrAssign::encodeAssignType("internal")));
}

TEST(Enumerations, UnknownTextsGiveTheDefaultOfTheirTable) {
    EXPECT_EQ("wire", HABMPort::decodePortType(HABMPort::encodePortType("?")));
    EXPECT_EQ("inout", HABMPort::decodePortDirection(HABMPort::encodePortDirection("inout")));
    EXPECT_EQ("in", HABMPort::decodePortDirection(HABMPort::encodePortDirection("")));
    EXPECT_EQ("register", HABMAddrBlock::decodeMemoryType(HABMAddrBlock::encodeMemoryType("?")));
    EXPECT_EQ("both", HABMAddrSegment::decodeMemoryType(HABMAddrSegment::encodeMemoryType("?")));
    EXPECT_EQ("read_write",
              HABMRegister::decodeRegisterAccess(HABMRegister::encodeRegisterAccess("RO")));
    const auto top = HABMBlock::createTopBlock("top");
    HABMInterface& interface = *top->createInterface("i", false);
    const std::vector<std::pair<const char*, bool>> modes{
        {"master", true},           {"initiator", true}, {"slave", false},  {"target", false},
        {"mirrored_master", false}, {"system", false},   {"MASTER", false}, {"", false}};
    for (const auto& [text, isSource] : modes) {
        interface.setInterfaceMode(HABMInterface::encodeInterfaceMode(text));
        EXPECT_EQ(isSource, interface.isSourceInterface()) << text;
    }
    EXPECT_EQ("slave",
              HABMInterface::decodeInterfaceMode(HABMInterface::encodeInterfaceMode("target")));
}

} // namespace
