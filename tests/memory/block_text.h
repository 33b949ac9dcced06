// What a block holds, as text: quicker than its file, which is synced.
#pragma once

#include <string>

#include "blockmodel/HABM.h"

namespace memory {

inline std::string textOf(const HABMMemoryMap& map) {
    std::string text = " map " + map.getPath();
    for (const HABMAddrBlock* block : map.getAddrBlocks()) {
        text += " block " + block->getName();
        for (const HABMRegister* reg : block->getRegisters())
            text += " " + reg->getName() + "=" + reg->getValue().getHexStringValue(0);
    }
    return text;
}

inline std::string textOf(const HABMBlock& block) {
    std::string text = "{" + block.getInstanceName() + " " + block.getModuleVlnv() + " " +
                       block.getEnablement() + " " + block.getBaseAddress().getHexStringValue(0);
    for (const HABMGeneric* parameter : block.getGenerics())
        text += " " + parameter->getName() + "=" + parameter->getValue();
    for (const HABMPort* port : block.getPorts())
        text += " port " + port->getPortName();
    for (const HABMInterface* interface : block.getInterfaces())
        text += " interface " + interface->getInterfaceName() + interface->getInterfaceVlnv() +
                interface->getMemoryMapRef() + interface->getAddrSpaceRef() +
                std::to_string(interface->getPortMaps().size()) +
                std::to_string(interface->getApertures().size());
    for (const HABMMemoryMap* map : block.getMemoryMaps())
        text += textOf(*map);
    for (const HABMAddrSpace* space : block.getAddrSpaces()) {
        text += " space " + space->getPath();
        for (const HABMAddrSegment* segment : space->getAddrSegments())
            text += " segment " + segment->getName();
    }
    for (const HABMInterfaceConnection* connection : block.getInterfaceConnections())
        text += " " + connection->getSourcePath() + ">" + connection->getTargetPath();
    for (const HABMPortConnection* connection : block.getPortConnections())
        text += " " + connection->getSourcePath() + ">" +
                std::to_string(connection->getTargetPaths().size());
    for (const HABMAddrAssign* assign : block.getAddrAssigns())
        text += " assign " + assign->getName();
    for (const HABMBlock* subBlock : block.getSubBlocks())
        text += textOf(*subBlock);
    return text + "}";
}

} // namespace memory
