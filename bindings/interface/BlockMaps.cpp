// The block model: memory maps with their registers, and address spaces.

#include "bindings/core/Describe.h"
#include "bindings/interface/BlockParts.h"

namespace tq::bindings {

template <>
struct TextsOf<HABMAddrBlock::MemoryType> {
    using Memory = HABMAddrBlock::MemoryType;
    static constexpr std::array table = {std::pair{Memory::Register, "register"},
                                         std::pair{Memory::Memory, "memory"},
                                         std::pair{Memory::Reserved, "reserved"}};
};
template <>
struct TextsOf<HABMAddrSegment::MemoryType> {
    using Memory = HABMAddrSegment::MemoryType;
    static constexpr std::array table = {std::pair{Memory::Data, "data"},
                                         std::pair{Memory::Instruction, "instruction"},
                                         std::pair{Memory::Both, "both"}};
};
template <>
struct TextsOf<HABMRegister::RegisterAccess> {
    using Access = HABMRegister::RegisterAccess;
    static constexpr std::array table = {std::pair{Access::ReadWrite, "read_write"},
                                         std::pair{Access::ReadOnly, "read_only"},
                                         std::pair{Access::WriteOnly, "write_only"}};
};
template <>
struct TextsOf<HABMAddrAssign::AssignType> {
    static constexpr std::array table = {std::pair{HABMAddrAssign::Normal, "normal"},
                                         std::pair{HABMAddrAssign::Excluded, "excluded"},
                                         std::pair{HABMAddrAssign::Internal, "internal"}};
};

namespace {

HABMAddrBlock& createAddrBlock(HABMMemoryMap& map, const std::string& name,
                               const HABMAddrValue& offset, const HABMAddrValue& range) {
    HABMAddrBlock& made = expectMade(map.createAddrBlock(name), name);
    made.setAperture({offset, range});
    return made;
}
HABMAddrSegment& createAddrSegment(HABMAddrSpace& space, const std::string& name,
                                   const HABMAddrValue& offset, const HABMAddrValue& range) {
    HABMAddrSegment& made = expectMade(space.createAddrSegment(name), name);
    made.setAperture({offset, range});
    return made;
}
HABMRegister& createRegister(HABMAddrBlock& block, const std::string& name,
                             const HABMAddrValue& offset) {
    HABMRegister& made = expectMade(block.createRegister(name), name);
    made.setOffset(offset);
    return made;
}

} // namespace

void describeBlockMaps(Interface& interface) {
    using M = HABMMemoryMap;
    Describe<M>("HABMMemoryMap", "model memorymap", "memory map", "A memory map of a block.")
        .called<&pathOf<M>>()
        .property<&M::getName>("name", "The map's name.")
        .property<&M::getPath>("path", "/instance/map.")
        .property<&M::getRange, &M::setRange>("range", "Extent in bytes.")
        .property<&M::getAddrBlocks>("addrBlocks", "Its address blocks.")
        .method<&createAddrBlock>("createAddrBlock",
                                  {required("name"), required("offset"), required("range")},
                                  "A new address block.");
    interface.add(infoOf<M>());

    using B = HABMAddrBlock;
    Describe<B>("HABMAddrBlock", "model addrblock", "address block",
                "A range of a memory map that holds registers or memory.")
        .called<&pathOf<B>>()
        .property<&B::getName>("name", "The address block's name.")
        .property<&B::getPath>("path", "/instance/map/block.")
        .property<&B::getOffset>("offset", "Start in the memory map.")
        .property<&B::getRange>("range", "Size in bytes.")
        .property<&B::getMemoryType, &B::setMemoryType>("memoryType",
                                                        "register, memory or reserved.")
        .property<&B::getRegisters>("registers", "Its registers.")
        .method<&createRegister>("createRegister", {required("name"), required("offset")},
                                 "A new register.");
    interface.add(infoOf<B>());

    using R = HABMRegister;
    Describe<R>("HABMRegister", "model register", "register", "A register of an address block.")
        .called<&pathOf<R>>()
        .property<&R::getName>("name", "The register's name.")
        .property<&R::getPath>("path", "/instance/map/block/register.")
        .property<&R::getOffset, &R::setOffset>("offset", "Offset in the address block.")
        .property<&R::getReset, &R::setReset>("reset", "Reset value, or none.")
        .property<&R::getWidth, &R::setWidth>("width", "Width in bits.")
        .property<&R::getAccess, &R::setAccess>("access", "read_write, read_only or write_only.")
        .property<&R::getValue, &R::setValue>("value", "The given value, else the reset value.");
    interface.add(infoOf<R>());

    using S = HABMAddrSpace;
    Describe<S>("HABMAddrSpace", "model addrspace", "address space", "What an initiator sees.")
        .called<&pathOf<S>>()
        .property<&S::getName>("name", "The space's name.")
        .property<&S::getPath>("path", "/instance/space.")
        .property<&S::getRange, &S::setRange>("range", "Extent in bytes.")
        .property<&S::getAddrSegments>("addrSegments", "Its segments.")
        .method<&createAddrSegment>("createAddrSegment",
                                    {required("name"), required("offset"), required("range")},
                                    "A new segment.");
    interface.add(infoOf<S>());

    using G = HABMAddrSegment;
    Describe<G>("HABMAddrSegment", "model addrsegment", "segment", "A window of an address space.")
        .called<&pathOf<G>>()
        .property<&G::getName>("name", "The segment's name.")
        .property<&G::getPath>("path", "/instance/space/segment.")
        .property<&G::getOffset>("offset", "Start in the address space.")
        .property<&G::getRange>("range", "Size in bytes.")
        .property<&G::getMemoryType, &G::setMemoryType>("memoryType", "data, instruction or both.");
    interface.add(infoOf<G>());

    using A = HABMAddrAssign;
    Describe<A>("HABMAddrAssign", "model addrassign", "address assign",
                "Says that an address block appears in an address space.")
        .called<&nameBelow<A>>()
        .property<&A::getName>("name", "The assign's name.")
        .property<&A::getAssignType, &A::setAssignType>("assignType",
                                                        "normal, excluded or internal.")
        .property<&A::getOffset, &A::setOffset>("offset", "Where the block starts in the space.")
        .property<&A::getRange, &A::setRange>("range", "Its size in bytes.")
        .property<&A::getSourceAddrBlock>("sourceAddrBlock", "The address block, or none.")
        .property<&A::getTargetAddrSegment>("targetAddrSegment", "The segment, or none.");
    interface.add(infoOf<A>());
}

} // namespace tq::bindings
