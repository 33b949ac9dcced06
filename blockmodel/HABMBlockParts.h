// What a block holds besides its place in the tree.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "blockmodel/HABMAddrAssign.h"
#include "blockmodel/HABMAttribute.h"
#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMChildren.h"
#include "blockmodel/HABMConnectionIndex.h"
#include "blockmodel/HABMInterfaceConnection.h"
#include "blockmodel/HABMParameter.h"
#include "blockmodel/HABMPort.h"
#include "blockmodel/HABMPortConnection.h"

struct HABMBlock::Fields {
    std::string moduleName;
    std::string moduleVlnv;
    std::string enablement;
    HABMAddrValue baseAddress{0};
    bool isStub = false;
};

struct HABMBlock::Children {
    HABMNamedStore<HABMParameter> parameters;
    HABMNamedStore<HABMAttribute> attributes;
    HABMNamedStore<HABMPort> ports;
    HABMNamedStore<HABMMemoryMap> memoryMaps;
    HABMNamedStore<HABMAddrSpace> addrSpaces;
    HABMNamedStore<HABMInterface, HABMLooseObjects> interfaces;
    HABMNamedStore<HABMPortConnection, HABMLooseObjects> portConnections;
    HABMNamedStore<HABMInterfaceConnection, HABMLooseObjects> interfaceConnections;
    HABMNamedStore<HABMAddrAssign> addrAssigns;
    HABMNamedStore<HABMBlock, HABMLooseObjects> subBlocks;
};

/// A merge moves them out, to restore them if it fails, and fills fresh ones in their place.
struct HABMBlock::Parts : Fields, Children {
    /// Numbers for the names of connections that are created without one.
    unsigned nextPortConnection = 1;
    unsigned nextInterfaceConnection = 1;

    /// A cache: this block's own registers by bare name, the first of each. Built at the first
    /// query and updated from then on.
    using RegistersByName = std::unordered_map<std::string_view, HABMRegister*>;
    std::unique_ptr<RegistersByName> registersByName;
    /// Likewise; of a top block alone.
    std::unique_ptr<HABMConnectionIndex> connectionIndex;
};

inline auto HABMObjectAccess::fieldsOf(HABMBlock& block) -> HABMBlock::Fields& {
    return *block.m_parts;
}

inline auto HABMObjectAccess::fieldsOf(const HABMBlock& block) -> const HABMBlock::Fields& {
    return *block.m_parts;
}

inline auto HABMObjectAccess::childrenOf(const HABMBlock& block) -> const HABMBlock::Children& {
    return *block.m_parts;
}
