// Definitions: read, expanded and cached.

#include "addressing/HBSAddressing.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <utility>
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

/// Reads a definition and merges the definitions of its stubs into it. Each is merged where it will
/// stay before its own stubs are looked at: merging finished trees would copy the innermost block
/// once for every level around it.
class Expansion {
public:
    explicit Expansion(const tq::DiagnosticSink& sink) : m_sink(sink) {}

    /// Empty if the definition can't be read.
    std::unique_ptr<HABMBlock> expand(const std::string& vlnv) {
        const std::optional<std::string> name = parseHardblockName(vlnv);
        std::unique_ptr<HABMBlock> top = name ? read(*name) : nullptr;
        if (top)
            expandStubsOf(*top, *name);
        return top;
    }

private:
    [[nodiscard]] std::unique_ptr<HABMBlock> read(const std::string& name) {
        ++m_read;
        if (!m_sink)
            return HABMBlock::readTopBlock(definitionFile(name));
        if (m_unreadable.contains(name))
            return nullptr;
        std::unique_ptr<HABMBlock> top = HABMBlock::readTopBlock(definitionFile(name), m_sink);
        if (!top)
            m_unreadable.insert(name);
        return top;
    }

    void expandStubsOf(HABMBlock& block, const std::string& name) {
        m_names.push_back(name);
        for (HABMBlock* subBlock : block.getSubBlocks())
            if (subBlock->isBlockStub())
                expandStub(*subBlock);
        m_names.pop_back();
    }

    /// The stub stays if its definition can't be read, is being expanded around it, or is beyond a
    /// bound.
    void expandStub(HABMBlock& stub) {
        // A copy, as the merge replaces what the stub has.
        const std::string vlnv = stub.getModuleVlnv();
        const std::optional<std::string> name = parseHardblockName(vlnv);
        // Definitions are found by this name alone. One that is being expanded around the stub
        // contains itself, and expanding it again would never end.
        if (!name || std::find(m_names.begin(), m_names.end(), *name) != m_names.end())
            return;
        if (m_read >= kMostRead) {
            if (!std::exchange(m_isBoundReported, true))
                reportUnmerged(vlnv, stub,
                               "more than " + std::to_string(kMostRead) +
                                   " definitions are needed");
        } else if (const std::unique_ptr<HABMBlock> child = read(*name)) {
            if (merge(*child, stub))
                expandStubsOf(stub, *name);
            else
                reportUnmerged(vlnv, stub,
                               "the blocks would be nested deeper than " +
                                   std::to_string(HABMBlock::kMostLevels) + " levels");
        }
    }

    static bool merge(const HABMBlock& child, HABMBlock& stub) {
        const std::string enablement = stub.getEnablement();
        const HABMAddrValue baseAddress = stub.getBaseAddress();
        const bool isMerged =
            HABMBlock::mergeTopBlock(*stub.getTopBlock(), stub.getInstancePath(), child, true);
        // The surrounding definition decides whether and where its sub-block exists.
        stub.setEnablement(enablement);
        stub.setBaseAddress(baseAddress);
        return isMerged;
    }

    /// The stub's path is that in the definition which holds it.
    void reportUnmerged(const std::string& vlnv, const HABMBlock& stub, const std::string& reason) {
        const std::string path = "/" + stub.getInstanceName();
        if (!m_sink)
            return ComMsgMgr::sendMsg::eval(2, __FILE__, __LINE__, "hbs", kMask, "@91-44@%s%s",
                                            vlnv, path);
        m_sink(tq::makeDiagnostic(tq::Severity::Error, "beyond-bound",
                                  tq::placeOfFile(definitionFile(m_names.back()).getFullPath()),
                                  "the definition \"" + vlnv + "\" is left out of \"" + path +
                                      "\": " + reason));
    }

    // Bound for hostile data: definitions that each name several others grow exponentially.
    // `HABMBlock::kMostLevels` bounds how deep they nest.
    static constexpr std::size_t kMostRead = 65536;

    const tq::DiagnosticSink& m_sink;
    std::set<std::string> m_unreadable; ///< reported to the sink, once for all their stubs
    std::size_t m_read = 0;
    bool m_isBoundReported = false;   ///< once for all the stubs beyond it
    std::vector<std::string> m_names; ///< the hard blocks around the stub being expanded
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
    // Never destroyed: users may still hold blocks at exit.
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
