#include "blockmodel/block_generator.h"

#include <random>
#include <set>

#include "HUTFile.h"
#include "support/support.h"

namespace generated {

namespace {

class Generator {
public:
    explicit Generator(unsigned seed) : m_random(seed) {}

    std::unique_ptr<HABMBlock> top(int levels) {
        auto block = HABMBlock::createTopBlock(text());
        fill(*block, levels);
        return block;
    }

private:
    unsigned upTo(unsigned most) { return static_cast<unsigned>(m_random()) % (most + 1); }

    /// Texts that a format could stumble over, and plain ones.
    std::string text() {
        static const std::vector<std::string> odd{
            "",   " ",  "a b", "\"", "\\", "\xC3\xA4", "\xFF\xFE", std::string("a\0b", 3),
            "\n", "{[,"};
        return upTo(2) == 0 ? odd[upTo(static_cast<unsigned>(odd.size()) - 1)]
                            : "t" + std::to_string(m_random());
    }
    std::string name(const char* stem, unsigned number) {
        const std::string suffix = text();
        return stem + std::to_string(number) +
               (suffix.find('/') == std::string::npos ? suffix : "");
    }
    HABMAddrValue value() {
        static const std::vector<std::string> values{
            "",  "0", "1", "0xffffffffffffffff", "16777216T", "0x123456789abcdef0123456789abcdef0",
            "4K"};
        return {values[upTo(static_cast<unsigned>(values.size()) - 1)]};
    }
    HABMAddrAperture aperture() { return {value(), value()}; }

    void fill(HABMBlock& block, int levels) {
        block.setModuleVlnv(text());
        block.setEnablement(text());
        block.setBaseAddress(value());
        block.setBlockStub(upTo(1) == 0);
        for (unsigned i = upTo(3); i > 0; --i) {
            block.setParameter(name("p", i), text(), true);
            block.setAttribute(name("a", i), text(), true);
            addPort(block, i);
            addMap(block, i);
            addSpace(block, i);
            addInterface(block, i);
        }
        for (unsigned i = upTo(20); levels > 0 && i > 17; --i)
            fill(*block.createSubBlock(name("b", i), text(), false), levels - 1);
        if (levels > 0)
            fill(*block.createSubBlock("inner", text(), false), levels - 1);
        for (unsigned i = upTo(3); i > 0; --i)
            addConnections(block, i);
    }
    void addPort(HABMBlock& block, unsigned i) {
        HABMPort& port = *block.createPort(name("port", i), false);
        port.setPortType(static_cast<HABMPort::PortType>(upTo(1)));
        port.setPortDirection(static_cast<HABMPort::PortDirection>(upTo(2)));
        port.setPortLeft(upTo(~1U));
        port.setPortRight(upTo(31));
    }
    void addMap(HABMBlock& block, unsigned i) {
        HABMMemoryMap& map = *block.createMemoryMap(name("map", i));
        map.setRange(value());
        HABMAddrBlock& addrBlock = *map.createAddrBlock(name("block", i));
        addrBlock.setAperture(aperture());
        addrBlock.setMemoryType(static_cast<HABMAddrBlock::MemoryType>(upTo(2)));
        m_blocks.push_back(&addrBlock);
        for (unsigned r = upTo(20); r > 0; --r) {
            HABMRegister& member = *addrBlock.createRegister(name("r", r));
            member.setOffset(value());
            member.setWidth(upTo(64));
            member.setReset(value());
            member.setAccess(static_cast<HABMRegister::RegisterAccess>(upTo(2)));
            member.setValue(value());
        }
    }
    void addSpace(HABMBlock& block, unsigned i) {
        HABMAddrSpace& space = *block.createAddrSpace(name("space", i));
        space.setRange(value());
        HABMAddrSegment& segment = *space.createAddrSegment(name("segment", i));
        segment.setAperture(aperture());
        segment.setMemoryType(static_cast<HABMAddrSegment::MemoryType>(upTo(2)));
        m_segments.push_back(&segment);
    }
    void addInterface(HABMBlock& block, unsigned i) {
        HABMInterface& interface = *block.createInterface(name("i", i), false);
        interface.setInterfaceVlnv(text());
        interface.setInterfaceMode(static_cast<HABMInterface::InterfaceMode>(upTo(6)));
        interface.setEnablement(text());
        interface.setMemoryMapRef(upTo(1) == 0 ? "map1" : text());
        interface.setAddrSpaceRef(text());
        interface.setApertures({aperture(), aperture()}, false);
        for (unsigned m = upTo(3); m > 0; --m)
            interface.createPortMap(name("l", m), text());
        m_interfaces.push_back(&interface);
    }
    std::string interfacePath() {
        if (m_interfaces.empty() || upTo(4) == 0)
            return text();
        const HABMInterface& chosen =
            *m_interfaces[upTo(static_cast<unsigned>(m_interfaces.size()) - 1)];
        return chosen.getParent()->getInstancePath() + "/" + chosen.getInterfaceName();
    }
    void addConnections(HABMBlock& block, unsigned i) {
        HABMInterfaceConnection& line = *block.createInterfaceConnection("", false);
        line.setConnectionType(static_cast<HABMInterfaceConnection::ConnectionType>(upTo(1)));
        line.setSourcePath(interfacePath());
        line.setTargetPath(interfacePath());
        HABMPortConnection& wire = *block.createPortConnection(upTo(1) == 0 ? "" : text(), true);
        wire.setConnectionType(static_cast<HABMPortConnection::ConnectionType>(upTo(1)));
        wire.setSourcePath("/port1");
        wire.setTargetPaths({text(), "port2", "/inner/port3"});
        HABMAddrAssign& assign = *block.createAddrAssign(name("assign", i));
        assign.setAssignType(static_cast<HABMAddrAssign::AssignType>(upTo(2)));
        assign.setOffset(value());
        assign.setRange(value());
        if (!m_blocks.empty())
            assign.setSourceAddrBlock(m_blocks.back());
        if (!m_segments.empty())
            assign.setTargetAddrSegment(m_segments.front());
    }

    std::mt19937 m_random;
    std::vector<HABMAddrBlock*> m_blocks;
    std::vector<HABMAddrSegment*> m_segments;
    std::vector<HABMInterface*> m_interfaces;
};

} // namespace

std::unique_ptr<HABMBlock> block(unsigned seed, int levels) {
    return Generator(seed).top(levels);
}

std::string bytes(const HABMBlock& block) {
    const support::TempDir folder;
    const std::string path = folder.file("block.bmj");
    EXPECT_TRUE(HABMBlock::writeTopBlock(HUTFile(path), block, true));
    return support::readFile(path);
}

} // namespace generated
