// The report of a subsystem's addressing as seen from its surface.

#include <boost/algorithm/string/predicate.hpp>
#include <boost/algorithm/string/replace.hpp>
#include <boost/algorithm/string/trim.hpp>

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "HCRapidJsonReadWriteUtils.h"
#include "HUTFileWriteStream.h"
#include "addressing/CheckedPool.h"
#include "addressing/DataArea.h"
#include "addressing/HBSAddressing.h"
#include "addressing/HBSPointerIndex.h"
#include "base/JsonWriter.h"
#include "blockmodel/HABM.h"

namespace {

using Json = HCRapidJsonReadWriteUtils;
using hbs_addressing::CheckedPool;
using rapidjson::Value;

std::string displayPath(const std::string& path) {
    return boost::trim_left_copy_if(boost::trim_copy(path, std::locale::classic()),
                                    [](char c) { return c == '/'; });
}

std::string surfaceName(const std::string& path) {
    return boost::replace_all_copy(displayPath(path), "/", "_");
}

/// Number of address bits that span `range`.
std::string addressWidth(HABMAddrValue range) {
    return std::to_string(range.roundUpPow2().log2());
}

bool isHidden(const HABMBlock& block) {
    const HABMAttribute* const attribute = block.getAttribute("VISIBILE");
    return attribute != nullptr &&
           boost::iequals(attribute->getValue(), "FALSE", std::locale::classic());
}

/// Builds the document, part by part.
class SurfaceReport {
public:
    SurfaceReport(const HABMBlock& block, rapidjson::Document& document)
        : m_block(block), m_pool(document.GetAllocator()) {}

    Value build() {
        Value component = object();
        addIfFilled(component, "interface_ports", interfacePorts());
        addIfFilled(component, "addressing", addressing());
        Value components = object();
        addIfFilled(components, m_block.getModuleName(), std::move(component));
        Value report = object();
        addIfFilled(report, "components", std::move(components));
        return report;
    }

private:
    static Value object() { return Value(rapidjson::kObjectType); }

    void add(Value& to, const std::string& key, Value child) {
        Json::AddGenericValueProperty(
            to, key, child,
            m_pool.withRoomFor(CheckedPool::growthOf(to) + CheckedPool::bytesOf(key)));
    }

    void add(Value& to, const std::string& key, const std::string& text) {
        Json::AddStringProperty(to, key, text,
                                m_pool.withRoomFor(CheckedPool::growthOf(to) +
                                                   CheckedPool::bytesOf(key) +
                                                   CheckedPool::bytesOf(text)));
    }

    void addIfFilled(Value& to, const std::string& key, Value child) {
        if (!child.ObjectEmpty())
            add(to, key, std::move(child));
    }

    Value interfacePorts() {
        Value ports = object();
        for (HABMInterface* interface : m_block.getInterfaces())
            add(ports, interface->getInterfaceName(), interfacePort(*interface));
        return ports;
    }

    Value interfacePort(HABMInterface& interface) {
        Value port = object();
        add(port, "mode", HABMInterface::decodeInterfaceMode(interface.getInterfaceMode()));
        add(port, "vlnv", interface.getInterfaceVlnv());
        const bool isSource = interface.isSourceInterface();
        std::vector<std::string> references =
            isSource ? spacesBehind(interface) : mapsBehind(interface);
        std::sort(references.begin(), references.end());
        const std::string key = isSource ? "address_space_refs" : "memory_map_refs";
        Json::AddStringArrayProperty(port, key, references,
                                     m_pool.withRoomFor(CheckedPool::growthOf(port) +
                                                        CheckedPool::bytesOf(key) +
                                                        CheckedPool::bytesOf(references)));
        return port;
    }

    std::vector<std::string> spacesBehind(HABMInterface& interface) {
        std::vector<std::string> names;
        for (HABMInterface* source : interface.getSourceInterfaces()) {
            HABMAddrSpace* const space =
                source->getParent()->getAddrSpace(source->getAddrSpaceRef());
            if (space == nullptr)
                continue;
            m_interfacesOfSpace.insert(space, &interface);
            names.push_back(surfaceName(space->getPath()));
        }
        return names;
    }

    std::vector<std::string> mapsBehind(HABMInterface& interface) {
        std::vector<std::string> names;
        for (HABMInterface* target : interface.getTargetInterfaces()) {
            HABMMemoryMap* const map = target->getParent()->getMemoryMap(target->getMemoryMapRef());
            if (map != nullptr)
                names.push_back(surfaceName(map->getPath()));
        }
        return names;
    }

    Value addressing() {
        Value maps = object();
        for (HABMMemoryMap* map : m_block.findMemoryMaps("", true))
            if (map->getParent() != &m_block)
                add(maps, surfaceName(map->getPath()), memoryMap(*map));

        groupAssigns();
        Value spaces = object();
        for (HABMAddrSpace* space : m_block.findAddrSpaces("", true))
            if (space->getParent() != &m_block)
                add(spaces, surfaceName(space->getPath()), addressSpace(*space));

        Value both = object();
        addIfFilled(both, "memory_maps", std::move(maps));
        addIfFilled(both, "address_spaces", std::move(spaces));
        return both;
    }

    /// What maps and spaces have in common.
    template <class Ranged>
    Value rangedEntry(Ranged& ranged) {
        Value entry = object();
        const std::string path = ranged.getPath();
        add(entry, "name", surfaceName(path));
        add(entry, "display_name", displayPath(path));
        addRange(entry, ranged.getRange());
        return entry;
    }

    void addRange(Value& entry, HABMAddrValue range) {
        add(entry, "range", range.getAbrvStringValue());
        add(entry, "width", addressWidth(range));
    }

    Value memoryMap(HABMMemoryMap& map) {
        Value entry = rangedEntry(map);
        Value blocks = object();
        for (HABMAddrBlock* block : map.getAddrBlocks())
            add(blocks, block->getName(), addressBlock(*block));
        addIfFilled(entry, "address_blocks", std::move(blocks));
        return entry;
    }

    Value addressBlock(HABMAddrBlock& block) {
        Value entry = object();
        add(entry, "name", block.getName());
        add(entry, "display_name", displayPath(block.getPath()));
        add(entry, "base_address", block.getOffset().getPrettyHexStringValue(0));
        addRange(entry, block.getRange());
        add(entry, "usage", HABMAddrBlock::decodeMemoryType(block.getMemoryType()));
        add(entry, "offset_base_param", "C_S_AXI_BASEADDR");
        add(entry, "offset_high_param", "C_S_AXI_HIGHADDR");
        return entry;
    }

    Value addressSpace(HABMAddrSpace& space) {
        Value entry = rangedEntry(space);
        if (isHidden(*space.getParent()))
            add(entry, "visible", Value(false));
        Value localMap = object();
        addIfFilled(localMap, "address_blocks", localBlocks(space));
        addIfFilled(entry, "local_memory_map", std::move(localMap));
        addIfFilled(entry, "segments", assignedSegments(space));
        return entry;
    }

    /// The space's segments, each as seen through each interface that the space is reached by.
    Value localBlocks(HABMAddrSpace& space) {
        Value blocks = object();
        const auto* interfaces = m_interfacesOfSpace.find(&space);
        if (interfaces == nullptr)
            return blocks;
        for (HABMAddrSegment* segment : space.getAddrSegments())
            for (const HABMInterface* interface : *interfaces)
                add(blocks, interface->getInterfaceName() + "_" + segment->getName(),
                    localBlock(*segment, *interface));
        return blocks;
    }

    Value localBlock(HABMAddrSegment& segment, const HABMInterface& interface) {
        Value entry = object();
        add(entry, "name", interface.getInterfaceName() + ":" + segment.getName());
        add(entry, "display_name", segment.getName());
        add(entry, "base_address", segment.getOffset().getPrettyHexStringValue(0));
        addRange(entry, segment.getRange());
        add(entry, "usage", HABMAddrSegment::decodeMemoryType(segment.getMemoryType()));
        return entry;
    }

    struct AssignedBlock {
        HABMAddrAssign* assign;
        const HABMAddrSegment* segment;
    };

    /// An assign belongs to the space of the segment where it ends. Filtering all assigns of the
    /// design for each space, and looking up their ends each time, would make the report quadratic.
    void groupAssigns() {
        for (HABMAddrAssign* assign : m_block.findAddrAssigns("", true))
            if (const HABMAddrSegment* segment = assign->getTargetAddrSegment())
                m_assignsOfSpace[segment->getParent()].push_back({assign, segment});
    }

    Value assignedSegments(const HABMAddrSpace& space) {
        Value segments = object();
        const auto group = m_assignsOfSpace.find(&space);
        if (group == m_assignsOfSpace.end())
            return segments;
        for (const AssignedBlock& assigned : group->second)
            if (const HABMAddrBlock* block = assigned.assign->getSourceAddrBlock())
                addAssign(segments, *assigned.assign, *block, *assigned.segment);
        return segments;
    }

    /// How entries of "segments" name an address block.
    struct BlockTexts {
        std::string key;
        std::string reference;
    };

    /// Made once per block, as a memory is assigned to every space that sees it.
    const BlockTexts& textsOf(const HABMAddrBlock& block) {
        const auto [entry, isNew] = m_textsOfBlock.try_emplace(&block);
        if (isNew) {
            const std::string place =
                surfaceName(block.getParent()->getPath()) + "/" + block.getName();
            entry->second = {"SEG_" + surfaceName(place), "./" + place};
        }
        return entry->second;
    }

    void addAssign(Value& segments, HABMAddrAssign& assign, const HABMAddrBlock& block,
                   const HABMAddrSegment& segment) {
        const BlockTexts& texts = textsOf(block);
        Value entry = object();
        add(entry, "address_block", texts.reference);
        add(entry, "offset", assign.getOffset().getPrettyHexStringValue(0));
        add(entry, "range", assign.getRange().getAbrvStringValue());
        add(entry, "memory_type", HABMAddrSegment::decodeMemoryType(segment.getMemoryType()));
        if (static_cast<int>(assign.getAssignType()) == kInternalAssign)
            add(entry, "is_internal", "true");
        add(segments, texts.key, std::move(entry));
    }

    static constexpr int kInternalAssign = 2;

    const HABMBlock& m_block;
    CheckedPool m_pool;
    HBSPointerIndex<HABMAddrSpace, HABMInterface> m_interfacesOfSpace;
    std::unordered_map<const HABMAddrSpace*, std::vector<AssignedBlock>> m_assignsOfSpace;
    std::unordered_map<const HABMAddrBlock*, BlockTexts> m_textsOfBlock;
};

void writeDebugReport(const std::string& module, const rapidjson::Document& document) {
    HUTFileWriteStream stream(hbs_addressing::workingFile(module + "_addressing.json"), 2);
    rapidjson::OStreamWrapper wrapper(stream);
    JsonPrettyWriter<rapidjson::OStreamWrapper> writer(wrapper);
    document.Accept(writer);
    stream.close();
}

} // namespace

void HBSAddressing::generateSurfaceLevelAddressing(const HABMBlock& block,
                                                   rapidjson::Document& document) {
    const bool isDebugOn = hbs_addressing::isDebugOn();
    static_cast<Value&>(document) = SurfaceReport(block, document).build();
    if (isDebugOn)
        writeDebugReport(block.getModuleName(), document);
}
