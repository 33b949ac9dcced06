// The stores of the objects that own others, a block's excepted.
#pragma once

#include "blockmodel/HABMAddrBlock.h"
#include "blockmodel/HABMAddrSegment.h"
#include "blockmodel/HABMAddrSpace.h"
#include "blockmodel/HABMInterface.h"
#include "blockmodel/HABMMemoryMap.h"
#include "blockmodel/HABMNamedStore.h"
#include "blockmodel/HABMPortMap.h"
#include "blockmodel/HABMRegister.h"

struct HABMInterface::Children {
    HABMNamedStore<HABMPortMap> portMaps;
};

struct HABMAddrBlock::Children {
    HABMNamedStore<HABMRegister> registers;
};

struct HABMMemoryMap::Children {
    HABMNamedStore<HABMAddrBlock> blocks;
};

struct HABMAddrSpace::Children {
    HABMNamedStore<HABMAddrSegment> segments;
};
