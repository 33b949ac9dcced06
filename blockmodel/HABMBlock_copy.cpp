// Copies of whole trees, and of a tree into another.

#include <exception>
#include <utility>

#include "blockmodel/HABMBlockParts.h"
#include "blockmodel/HABMPathText.h"

namespace {

void copy(const HABMPort& from, HABMPort& to) {
    to.setPortType(from.getPortType());
    to.setPortDirection(from.getPortDirection());
    to.setPortLeft(from.getPortLeft());
    to.setPortRight(from.getPortRight());
}

void copy(const HABMInterface& from, HABMInterface& to) {
    to.setInterfaceVlnv(from.getInterfaceVlnv());
    to.setInterfaceMode(from.getInterfaceMode());
    to.setEnablement(from.getEnablement());
    to.setMemoryMapRef(from.getMemoryMapRef());
    to.setAddrSpaceRef(from.getAddrSpaceRef());
    to.setApertures(from.getApertures(), false);
    for (const HABMPortMap* const line : from.getPortMaps())
        to.createPortMap(line->getLogicalPort(), line->getPhysicalPort());
}

void copy(const HABMPortConnection& from, HABMPortConnection& to) {
    to.setConnectionType(from.getConnectionType());
    to.setSourcePath(from.getSourcePath());
    to.setTargetPaths(from.getTargetPaths());
}

void copy(const HABMInterfaceConnection& from, HABMInterfaceConnection& to) {
    to.setConnectionType(from.getConnectionType());
    to.setSourcePath(from.getSourcePath());
    to.setTargetPath(from.getTargetPath());
}

void copy(const HABMRegister& from, HABMRegister& to) {
    to.setOffset(from.getOffset());
    to.setReset(from.getReset());
    to.setWidth(from.getWidth());
    to.setAccess(from.getAccess());
    to.setValue(from.getGivenValue());
}

void copy(const HABMAddrBlock& from, HABMAddrBlock& to) {
    to.setAperture(from.getAperture());
    to.setMemoryType(from.getMemoryType());
    for (const HABMRegister* const source : from.getRegisters())
        copy(*source, *to.createRegister(source->getName()));
}

void copy(const HABMMemoryMap& from, HABMMemoryMap& to) {
    to.setRange(from.getRange());
    for (const HABMAddrBlock* const block : from.getAddrBlocks())
        copy(*block, *to.createAddrBlock(block->getName()));
}

void copy(const HABMAddrSpace& from, HABMAddrSpace& to) {
    to.setRange(from.getRange());
    for (const HABMAddrSegment* const source : from.getAddrSegments()) {
        HABMAddrSegment& segment = *to.createAddrSegment(source->getName());
        segment.setAperture(source->getAperture());
        segment.setMemoryType(source->getMemoryType());
    }
}

void copy(const HABMAddrAssign& from, HABMAddrAssign& to) {
    to.setAssignType(from.getAssignType());
    to.setOffset(from.getOffset());
    to.setRange(from.getRange());
    to.setSourcePath(from.getSourcePath());
    to.setTargetPath(from.getTargetPath());
}

} // namespace

/// Fills an empty block; the paths stay as they are in `from`.
void HABMBlock::copyContent(const HABMBlock& from) {
    const Parts& source = *from.m_parts;
    m_parts->moduleName = source.moduleName;
    m_parts->moduleVlnv = source.moduleVlnv;
    m_parts->enablement = source.enablement;
    m_parts->baseAddress = source.baseAddress;
    m_parts->isStub = source.isStub;

    source.parameters.forEach(
        [&](const HABMParameter& p) { setParameter(p.getName(), p.getValue(), true); });
    source.attributes.forEach(
        [&](const HABMAttribute& a) { setAttribute(a.getName(), a.getValue(), true); });
    source.ports.forEach([&](const HABMPort& p) { copy(p, *createPort(p.getPortName(), false)); });
    source.memoryMaps.forEach(
        [&](const HABMMemoryMap& m) { copy(m, *createMemoryMap(m.getName())); });
    source.addrSpaces.forEach(
        [&](const HABMAddrSpace& s) { copy(s, *createAddrSpace(s.getName())); });
    source.interfaces.forEach(
        [&](const HABMInterface& i) { copy(i, *createInterface(i.getInterfaceName(), false)); });
    source.portConnections.forEach(
        [&](const HABMPortConnection& c) { copy(c, *createPortConnection(c.getName(), false)); });
    source.interfaceConnections.forEach([&](const HABMInterfaceConnection& c) {
        copy(c, *createInterfaceConnection(c.getName(), false));
    });
    source.addrAssigns.forEach(
        [&](const HABMAddrAssign& a) { copy(a, *createAddrAssign(a.getName())); });
    source.subBlocks.forEach([&](const HABMBlock& b) {
        createSubBlock(b.getInstanceName(), b.getModuleName(), false)->copyContent(b);
    });
}

/// Lets the paths of all connections and assigns at and below this block follow it after it has
/// moved from `before` to `after`. It needs memory only if `after` is longer.
void HABMBlock::movePaths(const std::string& before, const std::string& after) {
    if (before == after)
        return;
    const auto move = [&](auto& mover) { mover.moveEnds(before, after); };
    m_parts->portConnections.forEach(move);
    m_parts->interfaceConnections.forEach(move);
    m_parts->addrAssigns.forEach(move);
    m_parts->subBlocks.forEach([&](HABMBlock& block) { block.movePaths(before, after); });
}

std::unique_ptr<HABMBlock> HABMBlock::cloneTopBlock(const HABMBlock& block) {
    std::unique_ptr<HABMBlock> clone = createTopBlock("");
    clone->copyContent(block);
    clone->movePaths(block.getInstancePath(), "");
    return clone;
}

bool HABMBlock::mergeTopBlock(HABMBlock& top, const std::string& path, const HABMBlock& child,
                              const bool& flag) {
    HABMBlock& root = *top.getTopBlock();
    HABMBlock* const place =
        path.empty() ? nullptr : const_cast<HABMBlock*>(habm::blockAt(&root, path));
    if (place == nullptr || (!flag && !place->isBlockStub()) || child.getTopBlock() == &root ||
        place->level() + child.levelsBelow() > kMostLevels)
        return false;

    // The index is left out of the change and takes the new connections in afterwards.
    std::unique_ptr<HABMConnectionIndex> index = std::move(root.m_parts->connectionIndex);
    if (index != nullptr)
        index->removeBelow(*place);
    Parts before = std::exchange(*place->m_parts, Parts{});
    try {
        place->copyContent(child);
        place->movePaths(child.getInstancePath(), place->getInstancePath());
        place->setBlockStub(false);
    } catch (...) {
        *place->m_parts = std::move(before);
        throw; // the index is made anew when it is needed
    }
    root.m_parts->connectionIndex = std::move(index);
    HABMConnectionIndex::change(root, [&](HABMConnectionIndex& i) { i.addBelow(*place); });
    return true;
}
