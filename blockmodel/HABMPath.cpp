#include "blockmodel/HABMPath.h"

#include "blockmodel/HABMAddrSpace.h"
#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMInterface.h"
#include "blockmodel/HABMMemoryMap.h"
#include "blockmodel/HABMPathText.h"
#include "blockmodel/HABMPort.h"

namespace {

/// True for the path of an object below the one at `owner`.
bool leadsBelow(std::string_view path, std::string_view owner) {
    return path.size() > owner.size() + 1 && path.starts_with(owner) && path[owner.size()] == '/';
}

} // namespace

namespace habm {

bool isName(std::string_view name) {
    return !name.empty() && name.find('/') == std::string_view::npos;
}

SplitPath splitOff(std::string_view path, std::size_t count) {
    SplitPath split{path, {}};
    while (count-- > 0) {
        const std::size_t slash = split.block.rfind('/');
        if (slash == std::string_view::npos)
            return {};
        split.names[count] = split.block.substr(slash + 1);
        split.block = split.block.substr(0, slash);
    }
    return split;
}

const HABMBlock* blockAt(const HABMBlock* top, std::string_view path) {
    const HABMBlock* block = top;
    while (block != nullptr && !path.empty()) {
        if (path.front() != '/')
            return nullptr;
        path.remove_prefix(1);
        const std::string_view name = path.substr(0, path.find('/'));
        block = block->getSubBlock(std::string(name));
        path.remove_prefix(name.size());
    }
    return block;
}

HABMInterface* interfaceAt(const HABMBlock* top, std::string_view path) {
    const SplitPath split = splitOff(path, 1);
    const HABMBlock* const block = blockAt(top, split.block);
    return block == nullptr ? nullptr : block->getInterface(std::string(split.names[0]));
}

HABMPort* portAt(const HABMBlock* top, std::string_view path) {
    const SplitPath split = splitOff(path, 1);
    const HABMBlock* const block = blockAt(top, split.block);
    return block == nullptr ? nullptr : block->getPort(std::string(split.names[0]));
}

HABMAddrBlock* addrBlockAt(const HABMBlock* top, std::string_view path) {
    const SplitPath split = splitOff(path, 2);
    const HABMBlock* const block = blockAt(top, split.block);
    const HABMMemoryMap* const map =
        block == nullptr ? nullptr : block->getMemoryMap(std::string(split.names[0]));
    return map == nullptr ? nullptr : map->getAddrBlock(std::string(split.names[1]));
}

HABMAddrSegment* addrSegmentAt(const HABMBlock* top, std::string_view path) {
    const SplitPath split = splitOff(path, 2);
    const HABMBlock* const block = blockAt(top, split.block);
    const HABMAddrSpace* const space =
        block == nullptr ? nullptr : block->getAddrSpace(std::string(split.names[0]));
    return space == nullptr ? nullptr : space->getAddrSegment(std::string(split.names[1]));
}

std::string fromTop(const HABMBlock& owner, const std::string& path) {
    return path.starts_with('/') ? path : owner.getInstancePath() + "/" + path;
}

void move(std::string& path, std::string_view before, std::string_view after) {
    if (leadsBelow(path, before))
        path.replace(0, before.size(), after);
}

} // namespace habm

bool HABMPath::isName(const std::string& name) {
    return habm::isName(name);
}

const HABMBlock* HABMPath::findBlock(const HABMBlock& block, const std::string& path) {
    return habm::blockAt(block.getTopBlock(), path);
}

HABMPort* HABMPath::findPort(const HABMBlock& block, const std::string& path) {
    return habm::portAt(block.getTopBlock(), path);
}

HABMInterface* HABMPath::findInterface(const HABMBlock& block, const std::string& path) {
    return habm::interfaceAt(block.getTopBlock(), path);
}

HABMAddrBlock* HABMPath::findAddrBlock(const HABMBlock& block, const std::string& path) {
    return habm::addrBlockAt(block.getTopBlock(), path);
}

HABMAddrSegment* HABMPath::findAddrSegment(const HABMBlock& block, const std::string& path) {
    return habm::addrSegmentAt(block.getTopBlock(), path);
}

std::string HABMPath::get_relative_path(const HABMBlock& block, const std::string& path) {
    const std::string owner = block.getInstancePath();
    return leadsBelow(path, owner) ? path.substr(owner.size() + 1) : "";
}
