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
std::vector<std::string> namesOf(const std::vector<Named*>& objects, NameOf nameOf) {
    std::vector<std::string> names;
    names.reserve(objects.size());
    for (const Named* const object : objects)
        names.push_back(nameOf(*object));
    return names;
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text.empty() ? "none" : text;
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
    Reader(JsonFile file, const HABMBlock& definition, const DiagnosticSink& sink, Purpose purpose)
        : m_file(std::move(file)), m_full(definition), m_sink(sink),
          m_isCheck(purpose == Purpose::Check) {}

    AddressingConfig read() {
        const JsonNode& root = m_file.root();
        m_file.expectKeys(root, {"name", "parameters", "instances", "assigns"});
        AddressingConfig config(textOr(root, "name", "config"));
        addParameters(root, m_full, *config.m_block);
        if (const JsonNode* instances = root.find("instances"))
            addInstances(*instances, *config.m_block->createSubBlock("inst", "inst", false));
        if (const JsonNode* assigns = root.find("assigns"))
            for (const JsonNode& node : m_file.array(*assigns))
                addAssign(node, config.m_assigns);
        config.m_assignOffsets = std::move(m_assignOffsets);
        config.m_registerOffsets = std::move(m_registerOffsets);
        config.m_file = std::move(m_file);
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

    /// `subject` is what a check's finding is about.
    void warn(std::size_t offset, const std::string& id, const std::string& subject,
              const std::string& text, const std::string& expected,
              Severity severity = Severity::Warning) const {
        if (m_sink)
            m_sink(makeDiagnostic(severity, m_isCheck ? id + ":" + subject : id,
                                  m_file.placeOf(offset), text, expected));
    }

    /// What the definition doesn't have: tells a check, else refuses the file with `refusal`.
    void missing(std::size_t offset, const std::string& id, const std::string& subject,
                 const std::string& text, const std::string& name,
                 const std::vector<std::string>& known, const std::string& refusal) const {
        if (!m_isCheck)
            m_file.fail(offset, refusal);
        warn(offset, id, subject, text, expectedOf(name, {known.begin(), known.end()}),
             Severity::Error);
    }

    /// The known names, and the nearest one to what was typed.
    static std::string expectedOf(const std::string& name,
                                  const std::vector<std::string_view>& known) {
        std::string expected;
        for (const std::string_view entry : known)
            expected.append(expected.empty() ? "one of: " : ", ").append(entry);
        if (const std::string_view nearest = nearestName(name, known); !nearest.empty())
            expected.append("; did you mean \"").append(nearest).append("\"?");
        return expected;
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
                warn(member.offset, "unknown-parameter", member.name,
                     "the definition has no parameter \"" + member.name + "\"",
                     expectedOf(member.name, {known.begin(), known.end()}),
                     m_isCheck ? Severity::Error : Severity::Warning);
        }
    }

    void addInstances(const JsonNode& instances, HABMBlock& settings) {
        for (const auto& member : m_file.object(instances)) {
            HABMBlock* const target = m_full.getSubBlock(member.name);
            if (target == nullptr) {
                missing(member.offset, "unknown-instance", member.name,
                        "the definition has no instance \"" + member.name + "\"", member.name,
                        instanceNames(),
                        "the definition has no instance \"" + member.name +
                            "\"; it has: " + joined(instanceNames()));
                continue;
            }
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
        if (known == nullptr) {
            const std::vector<std::string> names = registerNames(target);
            return missing(
                setting.offset, "unknown-register", target.getInstanceName() + "/" + setting.name,
                "the instance \"" + target.getInstanceName() + "\" has no register \"" +
                    setting.name + "\"",
                setting.name, names,
                "the instance has no register \"" + setting.name + "\"; it has: " + joined(names));
        }
        HABMRegister* const reg =
            createRegister(block, HABMPath::get_relative_path(target, known->getPath()));
        if (reg == nullptr)
            m_file.fail(setting.offset, "the register \"" + setting.name + "\" is set twice");
        m_registerOffsets.emplace(known->getPath(), setting.offset);
        const HABMAddrValue value = address(setting.value);
        reg->setValue(value);
        const unsigned width = known->getWidth();
        if (width != 0 && !(value < HABMAddrValue(std::uint64_t{1})) && value.log2() >= width)
            warn(setting.value.offset, "value-too-wide",
                 target.getInstanceName() + "/" + known->getName(),
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
    void addAssign(const JsonNode& node, std::vector<Assign>& assigns) {
        m_file.expectKeys(node, {"name", "block", "segment", "offset", "range", "type"});
        const JsonNode& blockNode = m_file.require(node, "block");
        const JsonNode& segmentNode = m_file.require(node, "segment");
        Assign assign;
        assign.blockPath = m_file.string(blockNode);
        assign.segmentPath = m_file.string(segmentNode);
        const HABMAddrBlock* const block = HABMPath::findAddrBlock(m_full, assign.blockPath);
        const HABMAddrSegment* const segment =
            HABMPath::findAddrSegment(m_full, assign.segmentPath);
        const std::string name = textOr(node, "name", "assign_" + std::to_string(++m_assignCount));
        if (block == nullptr)
            missing(blockNode.offset, "assign-nowhere", name,
                    "the assign \"" + name + "\" is of an address block that doesn't exist",
                    assign.blockPath, addrBlockPaths(),
                    "the definition has no address block \"" + assign.blockPath + "\"");
        if (segment == nullptr)
            missing(segmentNode.offset, "assign-nowhere", name,
                    "the assign \"" + name + "\" is to an address segment that doesn't exist",
                    assign.segmentPath, addrSegmentPaths(),
                    "the definition has no address segment \"" + assign.segmentPath + "\"");
        if (block != nullptr && segment != nullptr)
            addAssign(node, assign, name, *block, *segment, assigns);
    }

    void addAssign(const JsonNode& node, Assign assign, const std::string& name,
                   const HABMAddrBlock& block, const HABMAddrSegment& segment,
                   std::vector<Assign>& assigns) {
        assign.name = name;
        if (!claimAssignName(assign.name))
            m_file.fail(node.offset,
                        "an assign can't be named \"" + assign.name + "\", or another one is");
        assign.offset = addressOr(node, "offset", segment.getOffset());
        assign.range = addressOr(node, "range", block.getRange());
        assign.type = assignType(node);
        if (!m_isCheck)
            checkExtent(assign, segment, node);
        const JsonNode* const offset = node.find("offset");
        m_assignOffsets.emplace(assign.name, offset != nullptr ? offset->offset : node.offset);
        assigns.push_back(std::move(assign));
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
             isInSpace ? "outside-segment" : "outside-space", assign.name,
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

    [[nodiscard]] std::vector<std::string> instanceNames() const {
        return namesOf(m_full.getSubBlocks(),
                       [](const HABMBlock& block) { return block.getInstanceName(); });
    }

    static std::vector<std::string> registerNames(const HABMBlock& target) {
        return namesOf(target.findRegisters("", true),
                       [](const HABMRegister& reg) { return reg.getName(); });
    }

    [[nodiscard]] std::vector<std::string> addrBlockPaths() const {
        std::vector<std::string> paths;
        for (const HABMMemoryMap* const map : m_full.findMemoryMaps("", true))
            for (const HABMAddrBlock* const block : map->getAddrBlocks())
                paths.push_back(block->getPath());
        return paths;
    }

    [[nodiscard]] std::vector<std::string> addrSegmentPaths() const {
        std::vector<std::string> paths;
        for (const HABMAddrSpace* const space : m_full.findAddrSpaces("", true))
            for (const HABMAddrSegment* const segment : space->getAddrSegments())
                paths.push_back(segment->getPath());
        return paths;
    }

    JsonFile m_file;
    const HABMBlock& m_full;
    const DiagnosticSink& m_sink;
    bool m_isCheck;
    Offsets m_assignOffsets;
    Offsets m_registerOffsets;
    std::set<std::string> m_assignNames;
    int m_assignCount = 0;
};

AddressingConfig::AddressingConfig() : AddressingConfig("config") {}

AddressingConfig::AddressingConfig(const std::string& name)
    : m_block(HABMBlock::createTopBlock(name)) {}

AddressingConfig AddressingConfig::read(JsonFile file, const HABMBlock& definition,
                                        const DiagnosticSink& sink, Purpose purpose) {
    return Reader(std::move(file), definition, sink, purpose).read();
}

Place AddressingConfig::placeOfAssign(const std::string& name) const {
    return placeIn(m_assignOffsets, name);
}

Place AddressingConfig::placeOfRegister(const std::string& path) const {
    return placeIn(m_registerOffsets, path);
}

Place AddressingConfig::placeIn(const Offsets& offsets, const std::string& name) const {
    const auto found = offsets.find(name);
    return found == offsets.end() ? Place() : m_file->placeOf(found->second);
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
