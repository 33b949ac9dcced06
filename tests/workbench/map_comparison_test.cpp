// Two maps that differ in one thing differ in that alone, be they built or saved.

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "workbench/addressing/AddressMapJson.h"
#include "workbench/addressing/MapComparison.h"
#include "workbench/design_generator.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tq::AddressMap;

std::vector<std::string> textsOf(const std::vector<tq::MapDifference>& differences) {
    std::vector<std::string> texts;
    for (const tq::MapDifference& one : differences)
        texts.push_back(one.kind + " " + one.path + " " + one.before + ">" + one.after +
                        (one.reason.empty() ? "" : " " + one.reason));
    return texts;
}

/// The differences of two instances, which are the same for the maps' files.
std::vector<std::string> compared(const HABMBlock& definition, const HABMBlock& before,
                                  const HABMBlock& after) {
    const AddressMap a(definition, before);
    const AddressMap b(definition, after);
    const auto saved = [](const AddressMap& map) {
        return tq::JsonFile::parse("saved.json", tq::addressMapJson(map, true));
    };
    const std::vector<std::string> texts = textsOf(tq::compareMaps(a, b));
    EXPECT_EQ(texts, textsOf(tq::compareMaps(saved(a), saved(b))));
    return texts;
}

HABMRegister& reg(HABMBlock& top, const char* name) {
    return *top.getSubBlock("p1")->getMemoryMap("m")->getAddrBlock("regs")->getRegister(name);
}

struct Change {
    void (*make)(HABMBlock& definition);
    const char* difference;
};

TEST(MapComparison, TellsEachChangeAndNothingElse) {
    designs::Dice dice(5);
    for (const Change& change :
         {Change{[](HABMBlock&) {}, nullptr},
          Change{[](HABMBlock& top) { top.getSubBlock("p1")->setBaseAddress(HABMAddrValue("1G")); },
                 "moved p1/m/regs 0x20000>0x40000000"},
          Change{[](HABMBlock& top) {
                     top.getSubBlock("p1")->getMemoryMap("m")->getAddrBlock("regs")->setAperture(
                         {HABMAddrValue("0"), HABMAddrValue("64K")});
                 },
                 "resized p1/m/regs 0x40>0x10000"},
          Change{[](HABMBlock& top) { top.createMemoryMap("x")->createAddrBlock("y"); },
                 "appeared x/y >0x0"},
          Change{[](HABMBlock& top) {
                     HABMInterface& made = *top.getSubBlock("p1")->createInterface("T", false);
                     made.setInterfaceMode(HABMInterface::InterfaceMode::Slave);
                     made.setMemoryMapRef("m");
                 },
                 "interfaces p1/m/regs S from S_AXI>S, T from S_AXI"},
          Change{[](HABMBlock& top) { reg(top, "A").setValue(HABMAddrValue("0x7")); },
                 "value p1/m/regs/A 0x0>0x7"},
          Change{[](HABMBlock& top) { reg(top, "A").setOffset(HABMAddrValue("0x20")); },
                 "moved p1/m/regs/A 0x30>0x20"},
          Change{[](HABMBlock& top) { reg(top, "A").setWidth(8); }, "resized p1/m/regs/A 32>8"},
          Change{[](HABMBlock& top) {
                     reg(top, "A").getParent()->createRegister("B")->setOffset(
                         HABMAddrValue("0x38"));
                 },
                 "appeared p1/m/regs/B >0x38"},
          Change{[](HABMBlock& top) {
                     HABMAddrAssign& made = *top.createAddrAssign("new");
                     made.setSourcePath("/p1/m/regs");
                     made.setTargetPath("/cpu0/data/low");
                     made.setOffset(HABMAddrValue("0x5000000"));
                     made.setRange(HABMAddrValue("64"));
                 },
                 "assign cpu0/data: p1/m/regs >0x5000000 to 0x500003F normal"}})
        for (int round = 0; round < 20; ++round) {
            const auto before = designs::makeDesign(dice, true);
            // What the changes are told to start from.
            for (HABMAddrAssign* const assign : before->getAddrAssigns())
                if (assign->getSourcePath() == "/p1/m/regs")
                    assign->setSourcePath("/p0/m/regs");
            HABMAddrBlock& block =
                *before->getSubBlock("p1")->getMemoryMap("m")->getAddrBlock("regs");
            block.setAperture({HABMAddrValue("0"), HABMAddrValue("64")});
            HABMRegister& made = *block.createRegister("A");
            made.setOffset(HABMAddrValue("0x30"));
            made.setReset(HABMAddrValue("0x0"));
            const auto after = HABMBlock::cloneTopBlock(*before);
            change.make(*after);
            // Each map with the definition it comes from.
            const AddressMap a(*before, *before);
            const AddressMap b(*after, *after);
            const auto texts = textsOf(tq::compareMaps(a, b));
            const auto back = tq::compareMaps(b, a);
            if (change.difference == nullptr) {
                EXPECT_THAT(texts, IsEmpty());
                continue;
            }
            ASSERT_THAT(texts, ElementsAre(change.difference));
            ASSERT_EQ(1U, back.size());
            EXPECT_EQ(tq::compareMaps(a, b)[0].before, back[0].after);
        }
}

TEST(MapComparison, TellsWhichValuesSwitchedABlock) {
    const auto definition = HABMBlock::createTopBlock("top");
    HABMBlock& block = *definition->createSubBlock("u", "u", false);
    block.setEnablement("register_value(CTRL_EN) == 1");
    HABMAddrBlock& regs = *block.createMemoryMap("m")->createAddrBlock("r");
    regs.setAperture({HABMAddrValue("0"), HABMAddrValue("64")});
    for (const char* name : {"CTRL_EN", "CTRL"})
        regs.createRegister(name)->setReset(HABMAddrValue("0x1"));
    const auto on = HABMBlock::cloneTopBlock(*definition);
    const auto off = HABMBlock::cloneTopBlock(*definition);
    off->removeSubBlock("u");
    // What is off keeps its values in the config.
    const auto config = HABMBlock::createTopBlock("config");
    HABMBlock& set = *config->createSubBlock("inst", "", false)->createSubBlock("u", "", false);
    HABMAddrBlock& values = *set.createMemoryMap("m")->createAddrBlock("r");
    for (const char* name : {"CTRL_EN", "CTRL"})
        values.createRegister(name)->setValue(HABMAddrValue("0x0"));
    EXPECT_THAT(textsOf(tq::compareMaps(AddressMap(*definition, *on),
                                        AddressMap(*definition, *off, config.get()))),
                ElementsAre("off u/m/r on>off stays if register_value(CTRL_EN) == 1; CTRL_EN is "
                            "0x1 and 0x0",
                            "value u/m/r/CTRL 0x1>0x0", "value u/m/r/CTRL_EN 0x1>0x0"));
    EXPECT_THAT(compared(*definition, *on, *on), IsEmpty());
}

/// Faults that the checks find are changes too; a file has what a map has.
TEST(MapComparison, FindsTheSameInSavedMaps) {
    designs::Dice dice(6);
    for (int round = 0; round < 100; ++round) {
        const auto before = designs::makeDesign(dice, round % 2 == 0);
        const auto after = HABMBlock::cloneTopBlock(*before);
        after->removeSubBlock("p" + std::to_string(dice() % 3));
        EXPECT_THAT(compared(*before, *before, *after), testing::Not(IsEmpty()));
    }
}

} // namespace
