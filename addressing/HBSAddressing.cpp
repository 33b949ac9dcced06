// Definitions: read, expanded and cached.

#include "addressing/HBSAddressing.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <vector>

#include "ComMsgMgr.h"
#include "HUTFile.h"
#include "addressing/DataArea.h"
#include "blockmodel/HABMUtils.h"

namespace {

constexpr unsigned kMask = 0x20000000;

/// The hard block's name in its VLNV; absent, with a message, if that can't be split.
std::optional<std::string> parseHardblockName(const std::string& vlnv) {
    std::string vendor, library, name, version;
    if (HABMUtils::splitVLNV(vlnv, vendor, library, name, version))
        return name;
    ComMsgMgr::sendMsg::eval(1, __FILE__, __LINE__, "hbs", kMask, "@91-45@%s", vlnv);
    return std::nullopt;
}

HUTFile definitionFile(const std::string& name) {
    static const std::string directory = hbs_addressing::findHardblockDirectory();
    return HUTFile(hbs_addressing::hardblockFile(directory, name, ".bmj"));
}

/// Reads a definition and merges the definitions of its stubs into it, recursively.
class Expansion {
public:
    explicit Expansion(const tq::DiagnosticSink& sink) : m_sink(sink) {}

    /// Empty if the definition can't be read.
    std::unique_ptr<HABMBlock> expand(const std::string& vlnv) {
        const std::optional<std::string> name = parseHardblockName(vlnv);
        return name ? expandNamed(*name) : nullptr;
    }

private:
    std::unique_ptr<HABMBlock> expandNamed(const std::string& name) {
        ++m_expanded;
        std::unique_ptr<HABMBlock> top = read(name);
        if (!top)
            return top;
        m_names.push_back(name);
        for (HABMBlock* subBlock : top->getSubBlocks())
            if (subBlock->isBlockStub())
                mergeStub(*top, *subBlock);
        m_names.pop_back();
        return top;
    }

    [[nodiscard]] std::unique_ptr<HABMBlock> read(const std::string& name) {
        if (!m_sink)
            return HABMBlock::readTopBlock(definitionFile(name));
        if (m_unreadable.contains(name))
            return nullptr;
        std::unique_ptr<HABMBlock> top = HABMBlock::readTopBlock(definitionFile(name), m_sink);
        if (!top)
            m_unreadable.insert(name);
        return top;
    }

    /// Empty, so that the stub stays, if its definition can't be read, is being expanded around it,
    /// or is beyond a bound.
    std::unique_ptr<HABMBlock> expandStub(const std::string& vlnv, const std::string& path) {
        const std::optional<std::string> name = parseHardblockName(vlnv);
        if (!name || std::find(m_names.begin(), m_names.end(), *name) != m_names.end())
            return nullptr;
        if (m_names.size() < kMostNested && m_expanded < kMostExpanded)
            return expandNamed(*name);
        if (!m_isBoundReported)
            sendUnmerged(vlnv, path);
        m_isBoundReported = true;
        return nullptr;
    }

    void mergeStub(HABMBlock& top, HABMBlock& stub) {
        // Copies, as the merge replaces what the stub has.
        const std::string vlnv = stub.getModuleVlnv();
        const std::string path = stub.getInstancePath();
        const std::unique_ptr<HABMBlock> child = expandStub(vlnv, path);
        if (!child)
            return;
        const std::string enablement = stub.getEnablement();
        const HABMAddrValue baseAddress = stub.getBaseAddress();
        if (!HABMBlock::mergeTopBlock(top, path, *child, true))
            sendUnmerged(vlnv, path);
        // The surrounding definition decides whether and where its sub-block exists.
        stub.setEnablement(enablement);
        stub.setBaseAddress(baseAddress);
    }

    static void sendUnmerged(const std::string& vlnv, const std::string& path) {
        ComMsgMgr::sendMsg::eval(2, __FILE__, __LINE__, "hbs", kMask, "@91-44@%s%s", vlnv, path);
    }

    // Bounds for hostile data: a chain must not use up the stack, nor a fan of stubs the memory.
    static constexpr std::size_t kMostNested = 2000;
    static constexpr std::size_t kMostExpanded = 65536;

    const tq::DiagnosticSink& m_sink;
    std::set<std::string> m_unreadable; ///< that the sink was told of, once for all their stubs
    std::size_t m_expanded = 0;
    bool m_isBoundReported = false;   ///< once for all the stubs beyond it
    std::vector<std::string> m_names; ///< the hard blocks around the one being expanded
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
    return createSubsystemDefinition(vlnv, context, tq::DiagnosticSink());
}

const HABMBlock* HBSAddressing::createSubsystemDefinition(const std::string& vlnv,
                                                          const std::string& context,
                                                          const tq::DiagnosticSink& sink) {
    if (vlnv.empty() || context.empty())
        return nullptr;
    // Never destroyed: the blocks outlive every user, at exit too.
    using Definitions = std::map<std::string, const HABMBlock*>;
    static auto& cache = *new std::map<std::string, Definitions>;
    if (const auto known = cache.find(context); known != cache.end())
        if (const auto entry = known->second.find(vlnv); entry != known->second.end())
            return entry->second;

    std::unique_ptr<HABMBlock> expanded = Expansion(sink).expand(vlnv);
    if (!expanded)
        return nullptr;
    const HABMBlock* const block = expanded.get();
    writeDebugDefinition(*block);
    Definitions entry{{vlnv, block}};
    cache[context].merge(entry); // can't fail, so that no context is left without a definition
    static_cast<void>(expanded.release());
    return block;
}

std::unique_ptr<HABMBlock> HBSAddressing::decorateSubsystemInstance(const HABMBlock& block,
                                                                    const HUTFile& /*file*/) {
    return HABMBlock::cloneTopBlock(block);
}

bool HBSAddressing::generateHardwareHandoff(const HABMBlock& /*block*/, const HUTFile& /*file*/) {
    return false;
}
