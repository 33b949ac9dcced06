#include "host/AddressingConfig.h"

#include <sstream>
#include <utility>

namespace host {

namespace {

template <class Named, class NameOf>
std::string namesOf(const std::vector<Named*>& objects, NameOf nameOf) {
    std::string names;
    for (Named* object : objects)
        names += (names.empty() ? "" : ", ") + nameOf(*object);
    return names.empty() ? "none" : names;
}

std::vector<std::string> splitPath(const std::string& path) {
    std::vector<std::string> parts;
    std::istringstream stream(path);
    for (std::string part; std::getline(stream, part, '/');)
        parts.push_back(part);
    return parts;
}

} // namespace

/// Reads one file against one definition.
class AddressingConfig::Reader {
public:
    Reader(JsonFile file, const HABMBlock& definition)
        : m_file(std::move(file)), m_full(HABMBlock::cloneTopBlock(definition)) {}

    AddressingConfig read() {
        const JsonNode& root = m_file.root();
        m_file.expectKeys(root, {"name", "parameters", "instances", "assigns"});
        AddressingConfig config(textOr(root, "name", "config"));
        addParameters(root, *config.m_block);
        if (const JsonNode* instances = root.find("instances"))
            addInstances(*instances, *config.m_block->createSubBlock("inst", "inst", false));
        if (const JsonNode* assigns = root.find("assigns"))
            for (const JsonNode& node : m_file.array(*assigns))
                config.m_assigns.push_back(assign(node));
        return config;
    }

private:
    std::string textOr(const JsonNode& object, const char* key, const std::string& fallback) {
        const JsonNode* const node = object.find(key);
        return node == nullptr ? fallback : m_file.string(*node);
    }

    /// A number's digits serve as text.
    const std::string& value(const JsonNode& node) {
        return node.kind == JsonNode::Kind::Number ? node.text : m_file.string(node);
    }

    HABMAddrValue address(const JsonNode& node) {
        const HABMAddrValue result(value(node));
        if (!result.isValid())
            m_file.fail(node.offset, "expected an address or a size such as \"0x1000\" or \"64K\"");
        return result;
    }

    HABMAddrValue addressOr(const JsonNode& object, const char* key,
                            const HABMAddrValue& fallback) {
        const JsonNode* const node = object.find(key);
        return node == nullptr ? fallback : address(*node);
    }

    void addParameters(const JsonNode& object, HABMBlock& block) {
        if (const JsonNode* parameters = object.find("parameters"))
            for (const auto& member : m_file.object(*parameters))
                if (block.setParameter(member.name, value(member.value), true) == nullptr)
                    m_file.fail(member.offset, "\"" + member.name + "\" can't name a parameter");
    }

    void addInstances(const JsonNode& instances, HABMBlock& settings) {
        for (const auto& member : m_file.object(instances)) {
            HABMBlock* const target = m_full->getSubBlock(member.name);
            if (target == nullptr)
                m_file.fail(member.offset, "the definition has no instance \"" + member.name +
                                               "\"; it has: " + instanceNames());
            m_file.expectKeys(member.value, {"parameters", "registers"});
            HABMBlock* const block = settings.createSubBlock(member.name, member.name, false);
            if (block == nullptr)
                m_file.fail(member.offset, "the instance \"" + member.name + "\" is named twice");
            addParameters(member.value, *block);
            if (const JsonNode* registers = member.value.find("registers"))
                for (const auto& setting : m_file.object(*registers))
                    addRegister(setting, *target, *block);
        }
    }

    void addRegister(const JsonNode::Member& setting, const HABMBlock& target, HABMBlock& block) {
        const HABMRegister* const known = target.findRegister(setting.name, true);
        if (known == nullptr)
            m_file.fail(setting.offset,
                        "the instance has no register \"" + setting.name + "\"; it has: " +
                            namesOf(target.findRegisters("", true),
                                    [](HABMRegister& reg) { return reg.getName(); }));
        HABMRegister* const reg =
            createRegister(block, HABMPath::get_relative_path(target, known->getPath()));
        if (reg == nullptr)
            m_file.fail(setting.offset, "the register \"" + setting.name + "\" is set twice");
        reg->setValue(address(setting.value));
    }

    /// Makes the register with all that it stands in.
    static HABMRegister* createRegister(HABMBlock& below, const std::string& path) {
        const std::vector<std::string> parts = splitPath(path);
        HABMBlock* block = &below;
        for (std::size_t i = 0; i + 3 < parts.size(); ++i) {
            HABMBlock* const known = block->getSubBlock(parts[i]);
            block = known != nullptr ? known : block->createSubBlock(parts[i], parts[i], false);
        }
        const std::string& mapName = parts.at(parts.size() - 3);
        const std::string& blockName = parts.at(parts.size() - 2);
        HABMMemoryMap* const knownMap = block->getMemoryMap(mapName);
        HABMMemoryMap* const map = knownMap != nullptr ? knownMap : block->createMemoryMap(mapName);
        HABMAddrBlock* const knownBlock = map->getAddrBlock(blockName);
        return (knownBlock != nullptr ? knownBlock : map->createAddrBlock(blockName))
            ->createRegister(parts.back());
    }

    /// Tried on the whole definition first, so that a wrong path is told from a switched-off block.
    Assign assign(const JsonNode& node) {
        m_file.expectKeys(node, {"name", "block", "segment", "offset", "range", "type"});
        const JsonNode& blockNode = m_file.require(node, "block");
        const JsonNode& segmentNode = m_file.require(node, "segment");
        Assign assign;
        assign.blockPath = m_file.string(blockNode);
        assign.segmentPath = m_file.string(segmentNode);
        const HABMAddrBlock* const block = blockAt(assign.blockPath);
        const HABMAddrSegment* const segment = segmentAt(assign.segmentPath);
        if (block == nullptr)
            m_file.fail(blockNode.offset,
                        "the definition has no address block \"" + assign.blockPath + "\"");
        if (segment == nullptr)
            m_file.fail(segmentNode.offset,
                        "the definition has no address segment \"" + assign.segmentPath + "\"");
        assign.name = textOr(node, "name", "assign_" + std::to_string(++m_assignCount));
        if (m_full->createAddrAssign(assign.name) == nullptr)
            m_file.fail(node.offset,
                        "an assign can't be named \"" + assign.name + "\", or another one is");
        assign.offset = addressOr(node, "offset", segment->getOffset());
        assign.range = addressOr(node, "range", block->getRange());
        assign.type = assignType(node);
        return assign;
    }

    const HABMAddrBlock* blockAt(const std::string& path) {
        m_probe->setSourcePath(path);
        return m_probe->getSourceAddrBlock();
    }

    const HABMAddrSegment* segmentAt(const std::string& path) {
        m_probe->setTargetPath(path);
        return m_probe->getTargetAddrSegment();
    }

    HABMAddrAssign::AssignType assignType(const JsonNode& node) {
        const std::string text = textOr(node, "type", "normal");
        const HABMAddrAssign::AssignType type = HABMAddrAssign::encodeAssignType(text);
        if (HABMAddrAssign::decodeAssignType(type) != text)
            m_file.fail(node.find("type")->offset,
                        "expected \"normal\", \"internal\" or \"excluded\"");
        return type;
    }

    std::string instanceNames() {
        return namesOf(m_full->getSubBlocks(),
                       [](HABMBlock& block) { return block.getInstanceName(); });
    }

    JsonFile m_file;
    std::unique_ptr<HABMBlock> m_full;
    /// Resolves paths on the clone, as every assign does.
    HABMAddrAssign* m_probe = m_full->createAddrAssign("probe of the config's paths");
    int m_assignCount = 0;
};

AddressingConfig::AddressingConfig() : AddressingConfig("config") {}

AddressingConfig::AddressingConfig(const std::string& name)
    : m_block(HABMBlock::createTopBlock(name)) {}

AddressingConfig AddressingConfig::read(JsonFile file, const HABMBlock& definition) {
    return Reader(std::move(file), definition).read();
}

void AddressingConfig::addAssignsTo(HABMBlock& subsystem) const {
    for (const Assign& assign : m_assigns)
        addAssign(subsystem, assign);
}

void AddressingConfig::addAssign(HABMBlock& subsystem, const Assign& assign) {
    HABMAddrAssign* const created = subsystem.createAddrAssign(assign.name);
    if (created == nullptr)
        return;
    created->setSourcePath(assign.blockPath);
    created->setTargetPath(assign.segmentPath);
    created->setOffset(assign.offset);
    created->setRange(assign.range);
    created->setAssignType(assign.type);
}

} // namespace host
