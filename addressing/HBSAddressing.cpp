// Definitions: read, expanded and cached.

#include "addressing/HBSAddressing.h"

#include <algorithm>
#include <map>
#include <optional>
#include <vector>

#include "ComMsgMgr.h"
#include "HUTFile.h"
#include "addressing/DataArea.h"
#include "blockmodel/HABMUtils.h"

namespace {

constexpr unsigned kMask = 0x20000000;

/// The hard block's name in its VLNV; absent, with a message, if that can't be split.
std::optional<std::string> hardblockName(const std::string& vlnv) {
    std::string vendor, library, name, version;
    if (HABMUtils::splitVLNV(vlnv, vendor, library, name, version))
        return name;
    ComMsgMgr::sendMsg::eval(1, __FILE__, __LINE__, "hbs", kMask, "@91-45@%s", vlnv);
    return std::nullopt;
}

std::unique_ptr<HABMBlock> readDefinition(const std::string& name) {
    static const std::string directory = hbs_addressing::findHardblockDirectory();
    return HABMBlock::readTopBlock(HUTFile(hbs_addressing::hardblockFile(directory, name, ".bmj")));
}

/// Expands definitions with all that their stubs stand for.
class Expansion {
public:
    /// Empty if the definition can't be read, is one of those that are just being expanded, or lies
    /// beyond the bounds.
    std::unique_ptr<HABMBlock> expand(const std::string& vlnv) {
        const std::optional<std::string> name = hardblockName(vlnv);
        if (!name || std::find(m_names.begin(), m_names.end(), *name) != m_names.end() ||
            m_names.size() >= kMostNested || m_expanded++ >= kMostExpanded)
            return nullptr;
        std::unique_ptr<HABMBlock> top = readDefinition(*name);
        if (!top)
            return top;
        m_names.push_back(*name);
        for (HABMBlock* subBlock : top->getSubBlocks())
            if (subBlock->isBlockStub())
                mergeStub(*top, *subBlock);
        m_names.pop_back();
        return top;
    }

private:
    void mergeStub(HABMBlock& top, HABMBlock& stub) {
        const std::string vlnv = stub.getModuleVlnv();
        const std::string path = stub.getInstancePath();
        const std::unique_ptr<HABMBlock> child = expand(vlnv);
        if (!child)
            return;
        const std::string enablement = stub.getEnablement();
        const HABMAddrValue baseAddress = stub.getBaseAddress();
        if (!HABMBlock::mergeTopBlock(top, path, *child, true))
            ComMsgMgr::sendMsg::eval(2, __FILE__, __LINE__, "hbs", kMask, "@91-44@%s%s", vlnv,
                                     path);
        // What the surrounding definition says of its sub-block wins over what the child says.
        stub.setEnablement(enablement);
        stub.setBaseAddress(baseAddress);
    }

    // Bounds for hostile data: a chain must not use up the stack, nor a fan of stubs the memory.
    static constexpr std::size_t kMostNested = 2000;
    static constexpr std::size_t kMostExpanded = 65536;

    std::size_t m_expanded = 0;
    std::vector<std::string> m_names; ///< the hard blocks on the way from the top to here
};

void writeDebugDefinition(const HABMBlock& block) {
    if (hbs_addressing::isDebugOn())
        HABMBlock::writeTopBlock(
            HUTFile(hbs_addressing::workingFile(block.getModuleName() + "_hbs_definition.bmj")),
            block, true);
}

} // namespace

const HABMBlock* HBSAddressing::createSubsystemDefinition(const std::string& vlnv,
                                                          const std::string& context) {
    if (vlnv.empty() || context.empty())
        return nullptr;
    // Never destroyed: the blocks outlive every user, at exit too.
    using Definitions = std::map<std::string, const HABMBlock*>;
    static auto& cache = *new std::map<std::string, Definitions>;
    if (const auto known = cache.find(context); known != cache.end())
        if (const auto entry = known->second.find(vlnv); entry != known->second.end())
            return entry->second;

    std::unique_ptr<HABMBlock> expanded = Expansion().expand(vlnv);
    if (!expanded)
        return nullptr;
    const HABMBlock* const block = expanded.get();
    cache[context][vlnv] = block;
    static_cast<void>(expanded.release());
    writeDebugDefinition(*block);
    return block;
}

std::unique_ptr<HABMBlock> HBSAddressing::decorateSubsystemInstance(const HABMBlock& block,
                                                                    const HUTFile& /*file*/) {
    return HABMBlock::cloneTopBlock(block);
}

bool HBSAddressing::generateHardwareHandoff(const HABMBlock& /*block*/, const HUTFile& /*file*/) {
    return false;
}
