#include "blockmodel/HABMBlockCheck.h"

#include <set>

#include "blockmodel/HABM.h"
#include "blockmodel/HABMPathText.h"

namespace {

/// True if a path from the top block leads into a stub.
bool leadsIntoStub(const HABMBlock& top, std::string_view path) {
    for (std::size_t slash = path.find('/', 1); slash != std::string_view::npos;
         slash = path.find('/', slash + 1)) {
        const HABMBlock* const block = habm::blockAt(&top, path.substr(0, slash));
        if (block == nullptr || block->isBlockStub())
            return block != nullptr;
    }
    return false;
}

class Check {
public:
    explicit Check(const HABMBlock& start) : m_top(*start.getTopBlock()) {}

    HABMBlockFindings takeFindings() { return std::move(m_findings); }

    void block(const HABMBlock& block) {
        const std::string path = block.getInstancePath();
        m_path = path.empty() ? "/" : path;
        expect(habm::blockAt(&m_top, path) == &block, "its path leads elsewhere");
        for (const HABMPort* const port : block.getPorts())
            this->port(block, *port);
        for (const HABMMemoryMap* const map : block.getMemoryMaps())
            memoryMap(block, *map);
        for (const HABMAddrSpace* const space : block.getAddrSpaces())
            addrSpace(block, *space);
        for (const HABMInterface* const interface : block.getInterfaces())
            this->interface(block, *interface);
        for (const HABMPortConnection* const connection : block.getPortConnections())
            portConnection(block, *connection);
        for (HABMInterfaceConnection* const connection : block.getInterfaceConnections())
            interfaceConnection(block, *connection);
        for (const HABMAddrAssign* const assign : block.getAddrAssigns())
            addrAssign(block, *assign);
        for (const HABMBlock* const subBlock : block.getSubBlocks()) {
            m_path = path + "/" + subBlock->getInstanceName();
            expect(subBlock->getParent() == &block &&
                       block.getSubBlock(subBlock->getInstanceName()) == subBlock,
                   "its owner doesn't know it");
            this->block(*subBlock);
        }
    }

private:
    void expect(bool holds, const std::string& fault) {
        if (!holds)
            m_findings.faults.push_back(m_path + ": " + fault);
    }
    void expectThere(bool isThere, const std::string& what, const std::string& name) {
        if (!isThere)
            m_findings.dangling.push_back(m_path + ": there is no " + what + " '" + name + "'");
    }
    void expectEnd(bool isThere, const std::string& what, const HABMBlock& owner,
                   const std::string& path) {
        expectThere(isThere || leadsIntoStub(m_top, habm::fromTop(owner, path)), what, path);
    }
    void enter(const HABMBlock& owner, const std::string& name) {
        m_path = owner.getInstancePath() + "/" + name;
    }

    void port(const HABMBlock& owner, const HABMPort& port) {
        enter(owner, port.getPortName());
        expect(port.getParent() == &owner && habm::portAt(&m_top, m_path) == &port,
               "the path of the port leads elsewhere");
    }

    void memoryMap(const HABMBlock& owner, const HABMMemoryMap& map) {
        enter(owner, map.getName());
        expect(map.getPath() == m_path && map.getParent() == &owner &&
                   owner.getMemoryMap(map.getName()) == &map,
               "the path of the memory map leads elsewhere");
        for (const HABMAddrBlock* const block : map.getAddrBlocks()) {
            m_path = block->getPath();
            expect(block->getParent() == &map && map.getAddrBlock(block->getName()) == block,
                   "the path of the address block leads elsewhere");
            for (const HABMRegister* const member : block->getRegisters())
                expect(member->getParent() == block &&
                           m_top.findRegister(member->getPath(), false) == member,
                       "the path of the register " + member->getName() + " leads elsewhere");
        }
    }

    void addrSpace(const HABMBlock& owner, const HABMAddrSpace& space) {
        enter(owner, space.getName());
        expect(space.getPath() == m_path && space.getParent() == &owner &&
                   owner.getAddrSpace(space.getName()) == &space,
               "the path of the address space leads elsewhere");
        for (const HABMAddrSegment* const segment : space.getAddrSegments())
            expect(segment->getParent() == &space &&
                       space.getAddrSegment(segment->getName()) == segment,
                   "the segment " + segment->getName() + " isn't found");
    }

    void interface(const HABMBlock& owner, const HABMInterface& interface) {
        enter(owner, interface.getInterfaceName());
        expect(interface.getParent() == &owner && habm::interfaceAt(&m_top, m_path) == &interface,
               "the path of the interface leads elsewhere");
        const std::string& map = interface.getMemoryMapRef();
        const std::string& space = interface.getAddrSpaceRef();
        expectThere(map.empty() || owner.getMemoryMap(map) != nullptr, "memory map", map);
        expectThere(space.empty() || owner.getAddrSpace(space) != nullptr, "address space", space);
    }

    void portConnection(const HABMBlock& owner, const HABMPortConnection& connection) {
        enter(owner, connection.getName());
        expect(connection.getParent() == &owner, "it has another owner");
        std::set<std::string> ends = connection.getTargetPaths();
        ends.insert(connection.getSourcePath());
        for (const std::string& end : ends) {
            const HABMPort* const port = habm::portAt(&m_top, habm::fromTop(owner, end));
            expectEnd(port != nullptr, "port", owner, end);
            expect(port == nullptr || port->hasConnections(), end + " doesn't know of it");
        }
    }

    void interfaceConnection(const HABMBlock& owner, HABMInterfaceConnection& connection) {
        enter(owner, connection.getName());
        expect(connection.getParent() == &owner, "it has another owner");
        const HABMInterface* const source = connection.getSourceInterface();
        const HABMInterface* const target = connection.getTargetInterface();
        expectEnd(source != nullptr, "interface", owner, connection.getSourcePath());
        expectEnd(target != nullptr, "interface", owner, connection.getTargetPath());
        expect((source == nullptr || source->hasConnections()) &&
                   (target == nullptr || target->hasConnections()),
               "one of its ends doesn't know of it");
    }

    void addrAssign(const HABMBlock& owner, const HABMAddrAssign& assign) {
        enter(owner, assign.getName());
        expect(assign.getParent() == &owner && owner.getAddrAssign(assign.getName()) == &assign,
               "its owner doesn't know it");
        const HABMAddrBlock* const source = assign.getSourceAddrBlock();
        const HABMAddrSegment* const target = assign.getTargetAddrSegment();
        expectEnd(source != nullptr, "address block", owner, assign.getSourcePath());
        expectEnd(target != nullptr, "address segment", owner, assign.getTargetPath());
        expect(source == nullptr || source->getPath() == assign.getSourcePath(),
               "its source is another than its path says");
        expect(target == nullptr || target->getPath() == assign.getTargetPath(),
               "its target is another than its path says");
    }

    const HABMBlock& m_top;
    std::string m_path; ///< of the object that is being checked
    HABMBlockFindings m_findings;
};

} // namespace

HABMBlockFindings HABMBlockCheck::run(const HABMBlock& block) {
    Check check(block);
    check.block(block);
    return check.takeFindings();
}
