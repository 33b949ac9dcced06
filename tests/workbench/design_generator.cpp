#include "workbench/design_generator.h"

namespace designs {

namespace {

HABMAddrValue number(std::uint64_t value) {
    return HABMAddrValue(value);
}

unsigned roll(Dice& dice, unsigned sides) {
    return static_cast<unsigned>(dice() % sides);
}

HABMInterface& addInterface(HABMBlock& block, const std::string& name, const std::string& mode,
                            const std::string& reference) {
    HABMInterface& made = *block.createInterface(name, false);
    made.setInterfaceMode(HABMInterface::encodeInterfaceMode(mode));
    (mode == "master" ? made.setAddrSpaceRef(reference) : made.setMemoryMapRef(reference));
    return made;
}

void connect(HABMBlock& top, const std::string& source, const std::string& target) {
    HABMInterfaceConnection& made = *top.createInterfaceConnection("", false);
    made.setSourcePath(source);
    made.setTargetPath(target);
}

HABMAddrAssign& assign(HABMBlock& top, const std::string& name, const std::string& block,
                       std::uint64_t offset, std::uint64_t range) {
    HABMAddrAssign& made = *top.createAddrAssign(name);
    made.setSourcePath(block);
    made.setTargetPath("/cpu0/data/low");
    made.setOffset(number(offset));
    made.setRange(number(range));
    return made;
}

void addProcessor(HABMBlock& top, const std::string& name, std::uint64_t window) {
    HABMBlock& cpu = *top.createSubBlock(name, "cpu", false);
    HABMAddrSpace& space = *cpu.createAddrSpace("data");
    space.setRange(HABMAddrValue("4G"));
    space.createAddrSegment("low")->setAperture({number(0), number(window)});
    space.createAddrSegment("high")->setAperture({number(0x20000000), number(0x1000)});
    addInterface(cpu, "M", "master", "data");
}

void addRegisters(Dice& dice, HABMAddrBlock& block, std::uint64_t size, bool isClean) {
    std::uint64_t offset = 0;
    for (unsigned i = 0; i < 8 && offset + 8 <= size; ++i) {
        HABMRegister& reg = *block.createRegister("R" + std::to_string(i));
        const unsigned width = 8U << roll(dice, 4);
        reg.setWidth(width);
        offset = isClean ? (offset + width / 8 - 1) / (width / 8) * (width / 8) : roll(dice, 64);
        reg.setOffset(number(offset));
        offset += width / 8 + roll(dice, 2) * 4;
    }
}

HABMBlock& peripheral(HABMBlock& top, const char* name = "p0") {
    return *top.getSubBlock(name);
}

HABMAddrBlock& regs(HABMBlock& top, const char* name = "p0") {
    return *peripheral(top, name).getMemoryMap("m")->getAddrBlock("regs");
}

HABMRegister& addRegister(HABMBlock& top, std::uint64_t offset) {
    HABMRegister& made = *regs(top).createRegister("NEW");
    made.setOffset(number(offset));
    return made;
}

void makeStub(HABMBlock& top, const char* vlnv) {
    HABMBlock& stub = *peripheral(top).createSubBlock("stub", "stub", false);
    stub.setModuleVlnv(vlnv);
    stub.setBlockStub(true);
}

} // namespace

std::unique_ptr<HABMBlock> makeDesign(Dice& dice, bool isClean) {
    auto top = HABMBlock::createTopBlock("top");
    top->setModuleVlnv("v:l:top:1.0");
    addProcessor(*top, "cpu0", 0x10000000);
    addProcessor(*top, "cpu1", isClean ? 0x10000000 : 0x1800);
    addInterface(*top, "S_AXI", "slave", "");
    const unsigned count = 3 + roll(dice, 7);
    for (unsigned i = 0; i < count; ++i) {
        const std::string name = "p" + std::to_string(i);
        const std::uint64_t size = 0x40ULL << roll(dice, 6);
        HABMBlock& block = *top->createSubBlock(name, "peripheral", false);
        block.setBaseAddress(number(isClean ? 0x10000 * (i + 1) : 0x400 * roll(dice, 16)));
        HABMAddrBlock& made = *block.createMemoryMap("m")->createAddrBlock("regs");
        made.setAperture({number(0), number(size)});
        addRegisters(dice, made, size, isClean);
        addInterface(block, "S", "slave", "m");
        connect(*top, "/S_AXI", "/" + name + "/S");
        connect(*top, "/cpu1/M", "/" + name + "/S");
        if (!isClean && roll(dice, 3) == 0)
            connect(*top, "/cpu0/M", "/" + name + "/S");
        if (roll(dice, 2) == 0) {
            HABMAddrAssign& made2 =
                assign(*top, "a" + std::to_string(i), "/" + name + "/m/regs",
                       isClean ? 0x1000000 + 0x10000 * i : 0x100 * roll(dice, 64), size);
            if (!isClean && roll(dice, 4) == 0)
                made2.setAssignType(HABMAddrAssign::Excluded);
        }
    }
    return top;
}

// An assign named by a fault has a name of its own, and lies where no other does.
const std::array<Fault, 18> kFaults{{
    {"overlap:p0/p1",
     [](HABMBlock& top) { peripheral(top, "p1").setBaseAddress(peripheral(top).getBaseAddress()); },
     nullptr},
    {"overlap:p1/p2", nullptr,
     [](HABMBlock& top) {
         assign(top, "x", "/p1/m/regs", 0x5000000, 0x40);
         assign(top, "y", "/p2/m/regs", 0x5000020, 0x20);
     }},
    {"assigned-twice:p0/m/regs", nullptr,
     [](HABMBlock& top) {
         assign(top, "x", "/p0/m/regs", 0x5000000, 0x40);
         assign(top, "y", "/p0/m/regs", 0x5000000, 0x40);
     }},
    {"outside-segment:x", nullptr,
     [](HABMBlock& top) { assign(top, "x", "/p0/m/regs", 0x0FFFFFF0, 0x40); }},
    {"outside-space:x", nullptr,
     [](HABMBlock& top) { assign(top, "x", "/p0/m/regs", 0xFFFFFFF0, 0x40); }},
    {"outside-space:cpu0/data/high",
     [](HABMBlock& top) {
         peripheral(top, "cpu0").getAddrSpace("data")->setRange(HABMAddrValue("512M"));
     },
     nullptr},
    {"assign-off:x", nullptr,
     [](HABMBlock& top) {
         assign(top, "x", "/p1/m/regs", 0x5000000, 0x40).setTargetPath("/gone/data/low");
     }},
    {"assign-nowhere:x", nullptr,
     [](HABMBlock& top) { assign(top, "x", "/p0/m/none", 0x5000000, 0x40); }},
    {"outside-block:p0/m/regs/NEW",
     [](HABMBlock& top) { addRegister(top, regs(top).getRange().getLowBits()); }, nullptr},
    {"register-overlap:p0/m/regs/NEW",
     [](HABMBlock& top) { addRegister(top, 0).setWidth(regs(top).getRegister("R0")->getWidth()); },
     nullptr},
    {"misaligned:p0/m/regs/NEW",
     [](HABMBlock& top) {
         regs(top).setAperture({number(0), number(0x1000)});
         addRegister(top, 0x802);
     },
     nullptr},
    {"aperture-size:p0/m/regs",
     [](HABMBlock& top) {
         regs(top).setAperture({number(0), number(0x1800)});
     },
     nullptr},
    {"aperture-alignment:p0/m/regs",
     [](HABMBlock& top) {
         regs(top).setAperture({number(8), number(0x1000)});
     },
     nullptr},
    {"no-size:p9/m/regs",
     [](HABMBlock& top) {
         top.createSubBlock("p9", "peripheral", true)->createMemoryMap("n");
         HABMBlock& block = peripheral(top, "p9");
         if (block.getMemoryMap("m") == nullptr)
             block.createMemoryMap("m")->createAddrBlock("regs");
         else
             regs(top, "p9").setAperture({number(0), number(0)});
     },
     nullptr},
    {"no-address:p0/m/far",
     [](HABMBlock& top) {
         peripheral(top).getMemoryMap("m")->createAddrBlock("far")->setAperture(
             {HABMAddrValue("0x7FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"), number(16)});
     },
     nullptr},
    {"unresolved-stub:p0/stub", [](HABMBlock& top) { makeStub(top, "v:l:none:1.0"); }, nullptr},
    {"recursive-definition:p0/stub", [](HABMBlock& top) { makeStub(top, "v:l:top:2.0"); }, nullptr},
    {"aperture-size:extra/regs",
     [](HABMBlock& top) {
         top.createMemoryMap("extra")->createAddrBlock("regs")->setAperture(
             {HABMAddrValue("0x900000000"), number(3)});
     },
     nullptr},
}};

} // namespace designs
