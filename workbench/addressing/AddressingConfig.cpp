#include "workbench/addressing/AddressingConfig.h"

#include <cstdint>
#include <functional>
#include <set>
#include <string_view>
#include <utility>

#include "diagnostics/NearestName.h"
#include "workbench/text/TextStream.h"

namespace tq {

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
    InputTextStream stream(path);
    for (std::string part; std::getline(stream, part, '/');)
        parts.push_back(part);
    return parts;
}

} // namespace

/// Reads one file against one definition.
class AddressingConfig::Reader {
public:
    Reader(JsonFile file, const HABMBlock& definition, const DiagnosticSink& sink)
        : m_file(std::move(file)), m_full(definition), m_sink(sink) {}

    AddressingConfig read() {
        const JsonNode& root = m_file.root();
        m_file.expectKeys(root, {"name", "parameters", "instances", "assigns"});
        AddressingConfig config(textOr(root, "name", "config"));
        addParameters(root, m_full, *config.m_block);
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

    void warn(std::size_t offset, const char* id, const std::string& text,
              const std::string& expected) const {
        if (m_sink)
            m_sink(makeDiagnostic(Severity::Warning, id, m_file.placeOf(offset), text, expected));
    }

    /// `definition` is the one of the block that the parameters are for.
    void addParameters(const JsonNode& object, const HABMBlock& definition, HABMBlock& block) {
        const JsonNode* const parameters = object.find("parameters");
        if (parameters == nullptr)
            return;
        std::set<std::string, std::less<>> known;
        for (const HABMGeneric* const parameter : definition.getGenerics())
            known.insert(parameter->getName());
        for (const auto& member : m_file.object(*parameters)) {
            if (block.setParameter(member.name, value(member.value), true) == nullptr)
                m_file.fail(member.offset, "\"" + member.name + "\" can't name a parameter");
            if (!known.contains(member.name))
                warnOfParameter(member, {known.begin(), known.end()});
        }
    }

    void warnOfParameter(const JsonNode::Member& member,
                         const std::vector<std::string_view>& known) const {
        std::string expected;
        for (const std::string_view name : known)
            expected.append(expected.empty() ? "one of: " : ", ").append(name);
        if (const std::string_view nearest = nearestName(member.name, known); !nearest.empty())
            expected.append("; did you mean \"").append(nearest).append("\"?");
        warn(member.offset, "unknown-parameter",
             "the definition has no parameter \"" + member.name + "\"", expected);
    }

    void addInstances(const JsonNode& instances, HABMBlock& settings) {
        for (const auto& member : m_file.object(instances)) {
            HABMBlock* const target = m_full.getSubBlock(member.name);
            if (target == nullptr)
                m_file.fail(member.offset, "the definition has no instance \"" + member.name +
                                               "\"; it has: " + instanceNames());
            m_file.expectKeys(member.value, {"parameters", "registers"});
            HABMBlock* const block = settings.createSubBlock(member.name, member.name, false);
            if (block == nullptr)
                m_file.fail(member.offset, "the instance \"" + member.name + "\" is named twice");
            addParameters(member.value, *target, *block);
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
        const HABMAddrValue value = address(setting.value);
        reg->setValue(value);
        const unsigned width = known->getWidth();
        if (width != 0 && !(value < HABMAddrValue(std::uint64_t{1})) && value.log2() >= width)
            warn(setting.value.offset, "value-too-wide",
                 "the value has " + std::to_string(value.log2() + 1) + " bits, the register \"" +
                     setting.name + "\" " + std::to_string(width),
                 "");
    }

    /// Makes the register with its address block, memory map and sub-blocks.
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
        const HABMAddrBlock* const block = HABMPath::findAddrBlock(m_full, assign.blockPath);
        const HABMAddrSegment* const segment =
            HABMPath::findAddrSegment(m_full, assign.segmentPath);
        if (block == nullptr)
            m_file.fail(blockNode.offset,
                        "the definition has no address block \"" + assign.blockPath + "\"");
        if (segment == nullptr)
            m_file.fail(segmentNode.offset,
                        "the definition has no address segment \"" + assign.segmentPath + "\"");
        assign.name = textOr(node, "name", "assign_" + std::to_string(++m_assignCount));
        if (!claimAssignName(assign.name))
            m_file.fail(node.offset,
                        "an assign can't be named \"" + assign.name + "\", or another one is");
        assign.offset = addressOr(node, "offset", segment->getOffset());
        assign.range = addressOr(node, "range", block->getRange());
        assign.type = assignType(node);
        checkExtent(assign, *segment, node);
        return assign;
    }

    /// Warns of an assign that lies outside its segment, or even outside the address space.
    void checkExtent(const Assign& assign, const HABMAddrSegment& segment,
                     const JsonNode& node) const {
        const HABMAddrValue last = HABMAddrAperture(assign.offset, assign.range).getHighAddress();
        const HABMAddrAperture whole(segment.getOffset(), segment.getRange());
        const bool isInside = last.isValid() && !(assign.offset < whole.getStart()) &&
                              !(whole.getHighAddress() < last);
        if (isInside)
            return;
        const HABMAddrValue range = segment.getParent()->getRange();
        const bool isInSpace = last.isValid() && last < range;
        const JsonNode* const offset = node.find("offset");
        warn(offset != nullptr ? offset->offset : node.offset,
             isInSpace ? "outside-segment" : "outside-space",
             "the assign \"" + assign.name + "\" reaches beyond its " +
                 (isInSpace ? "segment" : "address space"),
             "an extent within " + whole.getStart().getPrettyHexStringValue(0) + " to " +
                 whole.getHighAddress().getPrettyHexStringValue(0));
    }

    /// Takes the name for an assign; false if none can have it or another one has.
    bool claimAssignName(const std::string& name) {
        return HABMPath::isName(name) && m_full.getAddrAssign(name) == nullptr &&
               m_assignNames.insert(name).second;
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
        return namesOf(m_full.getSubBlocks(),
                       [](HABMBlock& block) { return block.getInstanceName(); });
    }

    JsonFile m_file;
    const HABMBlock& m_full;
    const DiagnosticSink& m_sink;
    std::set<std::string> m_assignNames;
    int m_assignCount = 0;
};

AddressingConfig::AddressingConfig() : AddressingConfig("config") {}

AddressingConfig::AddressingConfig(const std::string& name)
    : m_block(HABMBlock::createTopBlock(name)) {}

AddressingConfig AddressingConfig::read(JsonFile file, const HABMBlock& definition,
                                        const DiagnosticSink& sink) {
    return Reader(std::move(file), definition, sink).read();
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

} // namespace tq
