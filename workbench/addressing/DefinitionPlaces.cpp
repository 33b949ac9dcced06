#include "workbench/addressing/DefinitionPlaces.h"

namespace tq {

std::string definitionNameOf(const HABMBlock& block) {
    std::string vendor, library, name, version;
    HABMUtils::splitVLNV(block.getModuleVlnv(), vendor, library, name, version);
    return name;
}

Place DefinitionPlaces::find(const HABMBlock& owner, const std::string& table,
                             const HBSTablePlaces::Row& row, const std::string& key) {
    const std::string name = m_isOn ? definitionNameOf(owner) : "";
    return name.empty() ? Place() : m_places.find(name, table, row, key);
}

Place DefinitionPlaces::of(const HABMAddrBlock& block, const std::string& key) {
    const HABMMemoryMap& map = *block.getParent();
    return find(*map.getParent(), "data/addrblocks.txt",
                {{"addrblock", block.getName()}, {"memorymap", map.getName()}}, key);
}

Place DefinitionPlaces::of(const HABMRegister& reg, const std::string& key) {
    const HABMAddrBlock& block = *reg.getParent();
    return find(*block.getParent()->getParent(), "data/registers.txt",
                {{"register", reg.getName()}, {"addrblock", block.getName()}}, key);
}

Place DefinitionPlaces::of(const HABMAddrSegment& segment, const std::string& key) {
    const HABMAddrSpace& space = *segment.getParent();
    return find(*space.getParent(), "data/addrsegments.txt",
                {{"addrsegment", segment.getName()}, {"addrspace", space.getName()}}, key);
}

Place DefinitionPlaces::of(const HABMInterface& interface, const std::string& key) {
    return find(*interface.getParent(), "data/interfaces.txt",
                {{"interface", interface.getInterfaceName()}}, key);
}

Place DefinitionPlaces::of(const HABMBlock& block, const std::string& key) {
    const HABMBlock* const around = block.getParent();
    return around == nullptr
               ? ofFile(block)
               : find(*around, "data/instances.txt", {{"instance", block.getInstanceName()}}, key);
}

Place DefinitionPlaces::ofFile(const HABMBlock& block) {
    const std::string name = m_isOn ? definitionNameOf(block) : "";
    return name.empty() ? Place() : m_places.ofFile(name);
}

} // namespace tq
