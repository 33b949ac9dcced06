// Hard block metadata while memory runs out.

#include <gtest/gtest.h>

#include <cstdlib>
#include <stdexcept>

#include "hardblock/HBSHardBlockDataMgr.h"
#include "memory/trial.h"
#include "support/support.h"

using hardblock::HardBlockData;

namespace {

constexpr const char* kMetadata = R"({"a_hard_block_of_a_longer_name": {
    "interfaces": {"M_AXI": {"access_point": {"module": "a_module_of_a_longer_name",
        "parameters": {"ID_WIDTH": 4}, "port_maps": {"MAPPED[3:0]": "A[7:4]"}}}},
    "pins": {"clk": {"type": "wire", "direction": "in", "default_val": "0"},
             "bus": {"type": "vector", "size_left": 7, "size_right": 0, "default_val": []}}}})";

class Metadata : public testing::Test {
protected:
    Metadata() { setenv("TQ_DATA_PATH", folder.path().c_str(), 1); }

    static std::string describe(HardBlockData& block) {
        std::string text = block.getName();
        for (auto it = block.getPinsStartIterator(); it != block.getPinsEndIterator(); ++it)
            text += " " + (*it)->getName() + (*it)->getDirectionAsStr() + (*it)->getDefaultValue() +
                    std::to_string((*it)->getLeftSize());
        hardblock::Interface* const axi = block.getInterfaceByName("M_AXI");
        return text + (axi == nullptr
                           ? ""
                           : axi->getApModuleName() + axi->getParameterByName("ID_WIDTH") +
                                 axi->getPortMapByName("A[6]"));
    }

    support::TempDir folder;
    memory::NoMessages quiet;
};

/// What was read until memory ran out stays, but it is reported.
TEST_F(Metadata, IsLoadedWholeOrReported) {
    const std::string path = folder.write("blocks.json", kMetadata);
    memory::run({.operation = [&](const memory::Attempt& attempt) -> std::optional<std::string> {
                     auto* const manager = HBSHardBlockDataMgr::getHardBlockDataMgr();
                     if (!attempt([&] { return manager->createHardBlocks(path); }))
                         return std::nullopt;
                     return describe(*manager->getHardBlocksData().back());
                 },
                 .keeps = memory::Trial::Keeps::PartsToo});
}

TEST_F(Metadata, IsLookedUpRightly) {
    auto* const manager = HBSHardBlockDataMgr::getHardBlockDataMgr();
    ASSERT_TRUE(manager->createHardBlocks(folder.write("blocks.json", kMetadata)));
    memory::failEachAllocation([&](const memory::Attempt& attempt) {
        return attempt([&] {
            HardBlockData* const block =
                manager->getHardBlockByName("a_hard_block_of_a_longer_name");
            return block == nullptr ? std::optional<std::string>()
                                    : std::optional(describe(*block));
        });
    });
}

/// The first use reads the data area. A file of it that couldn't be read for want of memory is
/// reported, and stays out; a first use that raised reads all files again.
TEST_F(Metadata, OfTheDataAreaIsReadWholeOrReported) {
    folder.write("sce/hardblocks/one.json", kMetadata);
    folder.write("sce/hardblocks/two.json", kMetadata);
    bool isReported = false;
    ComMsgMgr::setSink([&](const ComMsg&) { isReported = true; });
    memory::run({.operation = [&](const memory::Attempt& attempt) -> std::optional<std::string> {
                     auto* const manager =
                         attempt([] { return HBSHardBlockDataMgr::getHardBlockDataMgr(); });
                     if (isReported)
                         return memory::hasFailed() ? std::nullopt : std::optional(attempt.right());
                     std::string text;
                     for (HardBlockData* const block : manager->getHardBlocksData())
                         text += describe(*block);
                     return text;
                 },
                 .fresh = true});
}

} // namespace
