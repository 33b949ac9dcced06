// The address map: where registers and memory lie, what spaces see, what a config removed.

#include <gtest/gtest.h>

#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "workbench/addressing/AddressMap.h"
#include "workbench/addressing/AddressMapJson.h"
#include "workbench/addressing/AddressMapTables.h"
#include "workbench/addressing/StubFindings.h"

namespace {

using tq::AddressMap;

HABMAddrBlock& addBlock(HABMBlock& owner, const std::string& map, const std::string& name,
                        const std::string& start, const std::string& size,
                        const std::string& type = "memory") {
    HABMMemoryMap* known = owner.getMemoryMap(map);
    if (known == nullptr)
        known = owner.createMemoryMap(map);
    HABMAddrBlock& block = *known->createAddrBlock(name);
    block.setAperture({HABMAddrValue(start), HABMAddrValue(size)});
    block.setMemoryType(HABMAddrBlock::encodeMemoryType(type));
    return block;
}

HABMInterface& addInterface(HABMBlock& owner, const std::string& name, const std::string& mode,
                            const std::string& reference) {
    HABMInterface& made = *owner.createInterface(name, false);
    made.setInterfaceMode(HABMInterface::encodeInterfaceMode(mode));
    made.setMemoryMapRef(reference);
    made.setAddrSpaceRef(reference);
    return made;
}

void connect(HABMBlock& parent, const std::string& source, const std::string& target) {
    HABMInterfaceConnection& made = *parent.createInterfaceConnection("", false);
    made.setSourcePath(source);
    made.setTargetPath(target);
}

void addWindow(HABMAddrSpace& space, const std::string& name, const std::string& start,
               const std::string& size) {
    space.createAddrSegment(name)->setAperture({HABMAddrValue(start), HABMAddrValue(size)});
}

HABMAddrAssign& addAssign(HABMBlock& top, const std::string& block, const std::string& segment,
                          const std::string& offset) {
    HABMAddrAssign& made = *top.createAddrAssign("a" + std::to_string(top.getAddrAssigns().size()));
    made.setSourcePath(block);
    made.setTargetPath(segment);
    made.setOffset(HABMAddrValue(offset));
    made.setRange(HABMAddrValue("64K"));
    return made;
}

/// A processor "cpu" whose interface leads to the memory "/ram/m/ram" at 0 in a block at
/// 0xA0000000, which has registers too.
std::unique_ptr<HABMBlock> makeSystem() {
    auto top = HABMBlock::createTopBlock("top");
    HABMBlock& cpu = *top->createSubBlock("cpu", "cpu", false);
    cpu.createAddrSpace("data")->setRange(HABMAddrValue("4G"));
    addInterface(cpu, "M", "master", "data");
    HABMBlock& ram = *top->createSubBlock("ram", "ram", false);
    ram.setBaseAddress(HABMAddrValue("0xA0000000"));
    addBlock(ram, "m", "ram", "0x0", "64K");
    addBlock(ram, "r", "regs", "0x20000", "4K", "register");
    addInterface(ram, "S", "slave", "m");
    connect(*top, "/cpu/M", "/ram/S");
    return top;
}

const AddressMap::Block& rowOf(const AddressMap& map, const std::string& path) {
    for (const AddressMap::Block& block : map.blocks())
        if (block.path == path)
            return block;
    throw std::runtime_error("no row " + path);
}

std::string baseOf(const HABMBlock& definition, const HABMBlock& instance,
                   const std::string& path) {
    return rowOf(AddressMap(definition, instance), path).base.getPrettyHexStringValue(0);
}

TEST(AddressMap, MovesMemoryAndRegistersWithTheBaseAddressesAround) {
    const auto top = makeSystem();
    EXPECT_EQ("0xA0000000", baseOf(*top, *top, "ram/m/ram"));
    EXPECT_EQ("0xA0020000", baseOf(*top, *top, "ram/r/regs"));
    HABMBlock& inner = *top->getSubBlock("ram")->createSubBlock("bank", "bank", false);
    inner.setBaseAddress(HABMAddrValue("0x100000"));
    addBlock(inner, "m", "ram", "0x1000", "4K");
    const AddressMap map(*top, *top);
    const AddressMap::Block& row = rowOf(map, "ram/bank/m/ram");
    EXPECT_EQ("0xA0101000", row.base.getPrettyHexStringValue(0));
    EXPECT_EQ("0xA0101FFF", row.end.getPrettyHexStringValue(0));
    inner.setBaseAddress(HABMAddrValue("none"));
    EXPECT_EQ("0xA0001000", baseOf(*top, *top, "ram/bank/m/ram"));
}

TEST(AddressMap, LeavesMemoryAtBusAddressesWhereTheInitiatorsSeeIt) {
    struct Case {
        std::vector<std::pair<const char*, const char*>> windows;
        std::vector<const char*> assigns;
        const char* base;
    };
    for (const Case& entry :
         {Case{{{"0x0", "2G"}}, {}, "0x0"}, Case{{{"0x0", "4G"}}, {}, "0xA0000000"},
          Case{{{"0x0", "2G"}, {"0xA0000000", "64K"}}, {}, "0xA0000000"},
          Case{{{"0x0", "32K"}}, {}, "0xA0000000"}, Case{{{"0x0", "4G"}}, {"0x0"}, "0x0"},
          Case{{{"0x0", "2G"}}, {"0xA0000000"}, "0xA0000000"},
          Case{{}, {"0x0", "0xA0000000"}, "0xA0000000"}, Case{{}, {"0x4000"}, "0xA0000000"}}) {
        const auto top = makeSystem();
        HABMAddrSpace& space = *top->getSubBlock("cpu")->getAddrSpace("data");
        for (const auto& [start, size] : entry.windows)
            addWindow(space, std::string("at") + start, start, size);
        for (const char* offset : entry.assigns)
            addAssign(*top, "/ram/m/ram", "/cpu/data/at0x0", offset);
        EXPECT_EQ(entry.base, baseOf(*top, *top, "ram/m/ram"));
        EXPECT_EQ("0xA0020000", baseOf(*top, *top, "ram/r/regs"));
    }
}

TEST(AddressMap, DecidesForAllMemoryOfAMapAlike) {
    const auto top = makeSystem();
    addBlock(*top->getSubBlock("ram"), "m", "high", "0x800000000", "64K");
    HABMAddrSpace& space = *top->getSubBlock("cpu")->getAddrSpace("data");
    addWindow(space, "low", "0x0", "2G");
    addWindow(space, "high", "0x800000000", "32G");
    EXPECT_EQ("0x800000000", baseOf(*top, *top, "ram/m/high"));
    EXPECT_EQ("0x0", baseOf(*top, *top, "ram/m/ram"));
    HABMAddrAssign& assign = addAssign(*top, "/ram/m/ram", "/cpu/data/low", "0xA0000000");
    EXPECT_EQ("0x8A0000000", baseOf(*top, *top, "ram/m/high"));
    assign.setAssignType(HABMAddrAssign::Excluded);
    EXPECT_EQ("0x800000000", baseOf(*top, *top, "ram/m/high"));
}

TEST(AddressMap, KeepsTheAddressOfMemoryThatIsSwitchedOff) {
    const auto definition = makeSystem();
    addAssign(*definition, "/ram/m/ram", "/cpu/data/w", "0x0");
    const auto instance = HABMBlock::cloneTopBlock(*definition);
    instance->removeSubBlock("ram");
    EXPECT_EQ("0x0", baseOf(*definition, *instance, "ram/m/ram"));
}

TEST(AddressMap, PointsToTheObjectsBehindItsRows) {
    const auto definition = makeSystem();
    HABMBlock& ram = *definition->getSubBlock("ram");
    addInterface(ram, "S2", "slave", "m").setEnablement("two_ports");
    addInterface(*definition, "S_TOP", "slave", "");
    connect(*definition, "/S_TOP", "/ram/S");
    HABMBlock& gone = *definition->createSubBlock("gone", "gone", false);
    addBlock(gone, "m", "regs", "0x10", "0x0", "register");
    addInterface(gone, "S", "slave", "m");
    const auto instance = HABMBlock::cloneTopBlock(*definition);
    instance->getSubBlock("ram")->removeInterface("S2");
    instance->removeSubBlock("gone");

    const AddressMap map(*definition, *instance);
    ASSERT_EQ(3U, map.blocks().size());
    EXPECT_EQ("gone/m/regs", map.blocks()[0].path);
    EXPECT_EQ(map.blocks()[0].base, map.blocks()[0].end);
    EXPECT_EQ(nullptr, map.blocks()[0].instance);
    EXPECT_TRUE(map.blocks()[0].access->interfaces.empty());
    const AddressMap::Block& row = rowOf(map, "ram/m/ram");
    HABMBlock& kept = *instance->getSubBlock("ram");
    EXPECT_EQ(ram.getMemoryMap("m")->getAddrBlock("ram"), row.definition);
    EXPECT_EQ(kept.getMemoryMap("m")->getAddrBlock("ram"), row.instance);
    EXPECT_EQ(std::vector<const HABMInterface*>{kept.getInterface("S")}, row.access->interfaces);
    EXPECT_EQ(std::vector<const HABMInterface*>{instance->getInterface("S_TOP")},
              row.access->ports);

    ASSERT_EQ(2U, map.removed().size());
    EXPECT_EQ("ram/S2", map.removed()[0].path);
    EXPECT_EQ(ram.getInterface("S2"), map.removed()[0].interface);
    EXPECT_EQ("gone", map.removed()[1].path);
    EXPECT_EQ(&gone, map.removed()[1].block);
}

TEST(AddressMap, SortsWhatLiesInASpaceAndSkipsAssignsToNowhere) {
    const auto top = makeSystem();
    HABMAddrSpace& space = *top->getSubBlock("cpu")->getAddrSpace("data");
    addWindow(space, "high", "0xA0000000", "2G");
    addWindow(space, "low", "0x0", "2G");
    addAssign(*top, "/ram/r/regs", "/cpu/data/high", "0xA0020000");
    const HABMAddrAssign& low = addAssign(*top, "/ram/m/ram", "/cpu/data/low", "0x1000");
    addAssign(*top, "/ram/m/none", "/cpu/data/low", "0x0");
    addAssign(*top, "/ram/m/ram", "/cpu/data/none", "0x0");
    const AddressMap map(*top, *top);
    ASSERT_EQ(1U, map.spaces().size());
    const AddressMap::Space& row = map.spaces()[0];
    EXPECT_EQ(&space, row.space);
    EXPECT_EQ("cpu/data", row.path);
    ASSERT_EQ(2U, row.windows.size());
    EXPECT_EQ("low", row.windows[0].name);
    EXPECT_EQ(space.getAddrSegment("high"), row.windows[1].segment);
    ASSERT_EQ(2U, row.assigned.size());
    EXPECT_EQ(&low, row.assigned[0].assign);
    EXPECT_EQ("ram/m/ram", row.assigned[0].name);
    EXPECT_EQ("ram/r/regs", row.assigned[1].name);
}

/// All three forms of a system with an address beyond 127 bits, a name that is no text, an assign
/// and a removed block.
TEST(AddressMap, IsPrintedWithWhatCantBeComputed) {
    const auto definition = makeSystem();
    addBlock(*definition, "m", "\xFF", "0x7FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF", "0x2");
    addWindow(*definition->getSubBlock("cpu")->getAddrSpace("data"), "w", "0x0", "4G");
    addAssign(*definition, "/m/\xFF", "/cpu/data/w", "0x1000");
    const auto instance = HABMBlock::cloneTopBlock(*definition);
    instance->removeSubBlock("ram");
    const AddressMap map(*definition, *instance);

    std::ostringstream tables;
    tq::printAddressMap(tables, map);
    for (const char* part :
         {" ?   0x2  \\xFF  m/\\xFF", "\nAs seen from cpu/data (4G):\n",
          "0x1000  0x10FFF   64K  m/\\xFF  normal", "\nblock  ram   it is connec"})
        EXPECT_NE(std::string::npos, tables.str().find(part)) << part << tables.str();
    const std::string json = tq::addressMapJson(map);
    for (const char* part : {"\"end\": null,\n      \"size\": \"0x2\"", "\"name\": \"\uFFFD\"",
                             "\"on\": false", "\"segment\": \"w\"", "\"kind\": \"block\"",
                             "\"range\": \"0x100000000\"", "\"offset\": \"0x20000\""})
        EXPECT_NE(std::string::npos, json.find(part)) << part << json;
}

TEST(StubFindings, TellARingFromAMissingDefinition) {
    const auto top = HABMBlock::createTopBlock("ping");
    top->setModuleVlnv("v:l:ping:1.0");
    HABMBlock& pong = *top->createSubBlock("pong", "pong", false);
    pong.setModuleVlnv("v:l:pong:1.0");
    using Case = std::pair<const char*, const char*>;
    for (const auto& [name, vlnv] :
         {Case{"again", "v:l:ping:2.0"}, Case{"gone", "v:l:gone:1.0"}, Case{"bad", "v:l"}}) {
        HABMBlock& stub = *pong.createSubBlock(name, name, false);
        stub.setModuleVlnv(vlnv);
        stub.setBlockStub(true);
    }
    tq::DiagnosticList findings;
    tq::reportStubs(*top, findings.sink());
    ASSERT_EQ(3U, findings.count(tq::Severity::Error));
    EXPECT_EQ("recursive-definition", findings.all()[0].id);
    EXPECT_EQ("unresolved-stub", findings.all()[1].id);
    EXPECT_NE(std::string::npos, findings.all()[1].text.find("\"pong/gone\""));
    EXPECT_EQ("gone/gone.bmj in mirrel/hardblocks", findings.all()[1].expected);
    EXPECT_EQ("vendor:library:name:version", findings.all()[2].expected);
}

} // namespace
