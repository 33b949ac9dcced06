// What a block holds besides its place in the tree.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "blockmodel/HABMAddrAssign.h"
#include "blockmodel/HABMAddrSpace.h"
#include "blockmodel/HABMAttribute.h"
#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMConnectionIndex.h"
#include "blockmodel/HABMInterface.h"
#include "blockmodel/HABMInterfaceConnection.h"
#include "blockmodel/HABMMemoryMap.h"
#include "blockmodel/HABMNamedStore.h"
#include "blockmodel/HABMParameter.h"
#include "blockmodel/HABMPort.h"
#include "blockmodel/HABMPortConnection.h"

/// A merge moves them out, to have them back if it fails, and fills fresh ones in their place.
struct HABMBlock::Parts {
    std::string moduleName;
    std::string moduleVlnv;
    std::string enablement;
    HABMAddrValue baseAddress{0};
    bool isStub = false;

    HABMNamedStore<HABMBlock, HABMLooseObjects> subBlocks;
    HABMNamedStore<HABMPort> ports;
    HABMNamedStore<HABMInterface, HABMLooseObjects> interfaces;
    HABMNamedStore<HABMPortConnection, HABMLooseObjects> portConnections;
    HABMNamedStore<HABMInterfaceConnection, HABMLooseObjects> interfaceConnections;
    HABMNamedStore<HABMParameter> parameters;
    HABMNamedStore<HABMAttribute> attributes;
    HABMNamedStore<HABMMemoryMap> memoryMaps;
    HABMNamedStore<HABMAddrSpace> addrSpaces;
    HABMNamedStore<HABMAddrAssign> addrAssigns;

    /// Numbers for the names of connections that came without one.
    unsigned nextPortConnection = 1;
    unsigned nextInterfaceConnection = 1;

    /// This block's own registers by bare name, the first of each; made when first asked for and
    /// kept true from then on.
    using RegistersByName = std::unordered_map<std::string_view, HABMRegister*>;
    std::unique_ptr<RegistersByName> registersByName;
    /// Of a top block alone; made when first asked for.
    std::unique_ptr<HABMConnectionIndex> connectionIndex;
};
